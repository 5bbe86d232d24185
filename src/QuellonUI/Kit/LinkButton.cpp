#include "QuellonUI/Kit/LinkButton.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

namespace {

constexpr double radius = 5.0;
constexpr int topPadding = 2;
constexpr int symbolGap = 6;

} // namespace

LinkButton::LinkButton(const QFont& font, QWidget* parent) : Pressable(parent)
{
    setFont(font);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void LinkButton::setTint(Tint tint)
{
    if (tint == tint_) return;
    tint_ = tint;
    update();
}

void LinkButton::setSymbol(std::string_view name)
{
    if (name == symbol_) return;
    symbol_ = name;
    updateGeometry();
    update();
}

int LinkButton::symbolSide() const
{
    return symbol_.empty() ? 0 : fontMetrics().height() - 1;
}

int LinkButton::symbolRoom() const
{
    return symbol_.empty() ? 0 : symbolSide() + symbolGap;
}

QSize LinkButton::sizeHint() const
{
    const int width = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    return {width + symbolRoom() + 2 * sidePadding, fontMetrics().height() + 2 * topPadding};
}

QSize LinkButton::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() + symbolRoom() + 2 * sidePadding, sizeHint().height()};
}

void LinkButton::paintEvent(QPaintEvent* /*event*/)
{
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity());
    drawHover(painter, QRectF{rect()}, radius);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, radius);
    const QColor colour = theme.textTint(tint_);
    QRect area = rect().adjusted(sidePadding, 0, -sidePadding, 0);
    if (!symbol_.empty()) {
        const int side = symbolSide();
        drawSymbol(painter, {area.left(), (height() - side) / 2}, symbol_, side, colour);
        area.setLeft(area.left() + symbolRoom());
    }
    painter.setPen(colour);
    painter.drawText(area, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic),
                     fontMetrics().elidedText(text(), Qt::ElideRight, area.width(), Qt::TextShowMnemonic));
}

} // namespace quellon
