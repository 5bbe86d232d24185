#include "QuellonUI/Toasts/ToastButton.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

namespace {

constexpr int sidePadding = 10;
constexpr int topPadding = 5;
constexpr double radius = 6.0;
constexpr double pressedOpacity = 0.6;

QColor groundColour(const ToastButtonStyle& style, const Theme& theme)
{
    QColor colour = Qt::gray;
    if (style.ground() == ToastButtonStyle::Ground::accent) colour = theme.accentFill;
    if (style.ground() == ToastButtonStyle::Ground::red) colour = theme.bad;
    colour.setAlphaF(static_cast<float>(style.groundOpacity()));
    return colour;
}

QColor textColour(const ToastButtonStyle& style, const Theme& theme)
{
    switch (style.text()) {
    case ToastButtonStyle::Text::white:
        return Qt::white;
    case ToastButtonStyle::Text::red:
        return theme.badText;
    case ToastButtonStyle::Text::primary:
        break;
    }
    return theme.text;
}

} // namespace

ToastButton::ToastButton(QWidget* parent) : Pressable(parent)
{
    setFont(Fonts::medium(Fonts::caption()));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ToastButton::setStyleOf(const ToastButtonStyle& style)
{
    if (style == style_) return;
    style_ = style;
    update();
}

QSize ToastButton::sizeHint() const
{
    const int width = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    return {width + 2 * sidePadding, fontMetrics().height() + 2 * topPadding};
}

QSize ToastButton::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

void ToastButton::paintEvent(QPaintEvent* /*event*/)
{
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isDown() ? pressedOpacity : opacity());
    painter.setPen(Qt::NoPen);
    painter.setBrush(groundColour(style_, theme));
    painter.drawRoundedRect(rect(), radius, radius);
    drawHover(painter, QRectF{rect()}, radius);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, radius);
    painter.setPen(textColour(style_, theme));
    painter.drawText(rect(), static_cast<int>(Qt::AlignCenter | Qt::TextHideMnemonic),
                     fontMetrics().elidedText(text(), Qt::ElideRight, width() - sidePadding, Qt::TextShowMnemonic));
}

} // namespace quellon
