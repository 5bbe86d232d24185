#pragma once

#include <QFrame>

namespace quellon {

/// A raised surface with rounded corners that holds other widgets.
class Card : public QFrame {
    Q_OBJECT
public:
    explicit Card(QWidget* parent = nullptr) : QFrame(parent) {}

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quellon
