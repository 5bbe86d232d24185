#include "QuellonUI/StatusDot.h"

#include <QPainter>

namespace quellon {

StatusDot::StatusDot(QWidget* parent) : QWidget(parent)
{
    constexpr int side = 14;
    setFixedSize(side, side);
}

void StatusDot::setColour(const QColor& colour)
{
    if (colour == colour_) return;
    colour_ = colour;
    update();
}

void StatusDot::paintEvent(QPaintEvent* /*event*/)
{
    constexpr int haloAlpha = 60;
    constexpr double halo = 3.0;
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor faint = colour_;
    faint.setAlpha(haloAlpha);
    painter.setBrush(faint);
    painter.drawEllipse(rect());
    painter.setBrush(colour_);
    painter.drawEllipse(QRectF{rect()}.adjusted(halo, halo, -halo, -halo));
}

} // namespace quellon
