#include "QuellonUI/Kit/Card.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

void Card::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double radius = 10.0;
    constexpr double half = 0.5;
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.separator);
    painter.setBrush(theme.card);
    painter.drawRoundedRect(QRectF{rect()}.adjusted(half, half, -half, -half), radius, radius);
}

} // namespace quellon
