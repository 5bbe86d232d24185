#pragma once

#include "QuellonUI/Theme.h"

#include <QFrame>

namespace quellon {

/// A raised surface with rounded corners that holds other widgets.
class Card final : public QFrame {
    Q_OBJECT
public:
    explicit Card(QWidget* parent = nullptr) : QFrame(parent) {}

    void setTheme(const Theme& theme);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor fill_;
    QColor line_;
};

} // namespace quellon
