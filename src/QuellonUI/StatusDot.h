#pragma once

#include <QColor>
#include <QWidget>

namespace quellon {

/// A coloured dot with a halo. Says nothing by itself: the text beside it does.
class StatusDot final : public QWidget {
    Q_OBJECT
public:
    explicit StatusDot(QWidget* parent = nullptr);

    void setColour(const QColor& colour);
    [[nodiscard]] const QColor& colour() const { return colour_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor colour_;
};

} // namespace quellon
