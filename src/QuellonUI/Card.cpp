#include "QuellonUI/Card.h"

#include <QPainter>

namespace quellon {

void Card::setTheme(const Theme& theme)
{
    fill_ = theme.card;
    line_ = theme.separator;
    update();
}

void Card::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double radius = 10.0;
    constexpr double half = 0.5;
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(line_);
    painter.setBrush(fill_);
    painter.drawRoundedRect(QRectF{rect()}.adjusted(half, half, -half, -half), radius, radius);
}

} // namespace quellon
