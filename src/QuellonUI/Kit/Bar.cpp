#include "QuellonUI/Kit/Bar.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace quellon {

namespace {

constexpr int thickness = 5;
constexpr int steps = 1000;

} // namespace

Bar::Bar(QWidget* parent) : QProgressBar(parent)
{
    setRange(0, steps);
    QProgressBar::setValue(0);
    setTextVisible(false);
    setFixedHeight(thickness);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Bar::setValue(double fraction, Tint tint)
{
    if (fraction == fraction_ && tint == tint_) return;
    fraction_ = fraction;
    tint_ = tint;
    QProgressBar::setValue(static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * steps)));
    update();
}

QSize Bar::sizeHint() const
{
    return {thickness, thickness};
}

QSize Bar::minimumSizeHint() const
{
    return sizeHint();
}

void Bar::paintEvent(QPaintEvent* /*event*/)
{
    const Theme& theme = Theme::of(palette());
    const QRectF area{rect()};
    const double radius = area.height() / 2;
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(area, radius, radius);
    if (fraction_ <= 0.0) return;
    QRectF filled = area;
    filled.setWidth(std::max(area.height(), area.width() * std::min(fraction_, 1.0)));
    if (layoutDirection() == Qt::RightToLeft) filled.moveRight(area.right());
    painter.setBrush(theme.tint(tint_));
    painter.drawRoundedRect(filled, radius, radius);
}

} // namespace quellon
