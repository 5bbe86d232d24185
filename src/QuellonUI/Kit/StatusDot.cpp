#include "QuellonUI/Kit/StatusDot.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

StatusDot::StatusDot(QWidget* parent) : QWidget(parent)
{
    constexpr int side = 14;
    setFixedSize(side, side);
}

void StatusDot::setTint(Tint tint)
{
    if (tint == tint_) return;
    tint_ = tint;
    update();
}

QColor StatusDot::colour() const
{
    return Theme::of(palette()).tint(tint_);
}

void StatusDot::paintEvent(QPaintEvent* /*event*/)
{
    constexpr int haloAlpha = 60;
    constexpr double halo = 3.0;
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor faint = colour();
    faint.setAlpha(haloAlpha);
    painter.setBrush(faint);
    painter.drawEllipse(rect());
    painter.setBrush(colour());
    painter.drawEllipse(QRectF{rect()}.adjusted(halo, halo, -halo, -halo));
}

} // namespace quellon
