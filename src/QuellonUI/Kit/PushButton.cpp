#include "QuellonUI/Kit/PushButton.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

namespace {

constexpr double radius = 6.0;
constexpr int sidePadding = 12;
constexpr int topPadding = 5;

QColor withOpacity(QColor colour, float opacity)
{
    colour.setAlphaF(opacity);
    return colour;
}

QColor fill(PushButton::Kind kind, const Theme& theme)
{
    constexpr float destructiveFill = 0.15F;
    switch (kind) {
    case PushButton::Kind::primary:
        return theme.accentFill;
    case PushButton::Kind::destructive:
        return withOpacity(theme.bad, destructiveFill);
    case PushButton::Kind::plain:
        break;
    }
    return theme.control;
}

QColor textColour(PushButton::Kind kind, const Theme& theme)
{
    switch (kind) {
    case PushButton::Kind::primary:
        return Qt::white;
    case PushButton::Kind::destructive:
        return theme.badText;
    case PushButton::Kind::plain:
        break;
    }
    return theme.text;
}

} // namespace

PushButton::PushButton(const QFont& font, QWidget* parent) : Pressable(parent)
{
    setFont(font);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

void PushButton::setKind(Kind kind)
{
    if (kind == kind_) return;
    kind_ = kind;
    update();
}

QSize PushButton::sizeHint() const
{
    const int width = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    return {width + 2 * sidePadding, fontMetrics().height() + 2 * topPadding};
}

QSize PushButton::minimumSizeHint() const
{
    return sizeHint();
}

void PushButton::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double gap = 1.0; // between the ground and the focus ring's outer edge
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity());
    const QRectF area = QRectF{rect()}.adjusted(gap, gap, -gap, -gap);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill(kind_, theme));
    painter.drawRoundedRect(area, radius, radius);
    drawHover(painter, area, radius);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, radius + gap);
    painter.setPen(textColour(kind_, theme));
    constexpr int inset = sidePadding / 2;
    painter.drawText(rect(), static_cast<int>(Qt::AlignCenter | Qt::TextHideMnemonic),
                     fontMetrics().elidedText(text(), Qt::ElideRight, width() - 2 * inset, Qt::TextShowMnemonic));
}

} // namespace quellon
