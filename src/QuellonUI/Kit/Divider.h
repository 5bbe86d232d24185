#pragma once

#include <QWidget>

namespace quellon {

/// A fine line from left to right.
class Divider final : public QWidget {
    Q_OBJECT
public:
    explicit Divider(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quellon
