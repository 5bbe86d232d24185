#include "QuellonUI/Kit/IconButton.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

namespace {

constexpr int padding = 4;
constexpr double radius = 6.0;

} // namespace

IconButton::IconButton(int points, QWidget* parent) : Pressable(parent), points_(points)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void IconButton::setSymbol(std::string_view name, Tint tint)
{
    if (name == symbol_ && tint == tint_) return;
    symbol_ = name;
    tint_ = tint;
    update();
}

void IconButton::setLabel(const QString& label)
{
    if (label == accessibleName()) return;
    setAccessibleName(label);
    setToolTip(toolTipOf(label));
}

QSize IconButton::sizeHint() const
{
    return {points_ + 2 * padding, points_ + 2 * padding};
}

void IconButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity());
    drawHover(painter, QRectF{rect()}, radius);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, radius);
    drawSymbol(painter, {(width() - points_) / 2, (height() - points_) / 2}, symbol_, points_,
               Theme::of(palette()).tint(tint_));
}

} // namespace quellon
