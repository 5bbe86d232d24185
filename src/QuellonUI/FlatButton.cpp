#include "QuellonUI/FlatButton.h"

#include <QMouseEvent>
#include <QPainter>

namespace quellon {

namespace {

constexpr double radius = 6.0;
constexpr int sidePadding = 10;
constexpr int topPadding = 5;

QColor withOpacity(QColor colour, double opacity)
{
    colour.setAlphaF(static_cast<float>(opacity));
    return colour;
}

} // namespace

FlatButton::FlatButton(QWidget* parent) : QPushButton(parent)
{
    setFont(Fonts::caption());
    setAttribute(Qt::WA_Hover);
    // A click leaves the focus where it is: the button may go with it, and the focus would pass to whatever is next.
    setFocusPolicy(Qt::TabFocus);
    // The style's own size would leave room for a frame.
    setStyleSheet(QStringLiteral("padding: %1px %2px; border: 0; min-width: 0").arg(topPadding).arg(sidePadding));
    connect(this, &QPushButton::pressed, this, [this] { counts_ = !held_; });
    connect(this, &QPushButton::clicked, this, [this] {
        if (counts_) Q_EMIT chosen();
    });
}

void FlatButton::setKind(Kind kind)
{
    if (kind == kind_) return;
    kind_ = kind;
    update();
}

void FlatButton::setTheme(const Theme& theme)
{
    theme_ = theme;
    update();
}

void FlatButton::setHeld(bool held)
{
    if (held == held_) return;
    held_ = held;
    update();
}

void FlatButton::lapse()
{
    counts_ = false;
}

void FlatButton::mouseMoveEvent(QMouseEvent* event)
{
    // A pressed mouse that leaves and comes back is told as pressed anew, and is the same press.
    const bool counts = counts_;
    QPushButton::mouseMoveEvent(event);
    counts_ = counts;
}

QColor FlatButton::fill() const
{
    constexpr double destructiveFill = 0.15;
    constexpr double plainFill = 0.18;
    switch (kind_) {
    case Kind::primary:
        return theme_.accent;
    case Kind::destructive:
        return withOpacity(theme_.bad, destructiveFill);
    case Kind::plain:
        break;
    }
    return withOpacity(Qt::gray, plainFill);
}

QColor FlatButton::textColour() const
{
    switch (kind_) {
    case Kind::primary:
        return Qt::white;
    case Kind::destructive:
        return theme_.bad;
    case Kind::plain:
        break;
    }
    return theme_.text;
}

void FlatButton::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double pressedOpacity = 0.6;
    constexpr double hoverOpacity = 0.85;
    constexpr double heldOpacity = 0.4;
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(held_ ? heldOpacity : isDown() ? pressedOpacity : underMouse() ? hoverOpacity : 1.0);
    const QRectF area = QRectF{rect()}.adjusted(1, 1, -1, -1);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill());
    painter.drawRoundedRect(area, radius, radius);
    if (hasFocus()) {
        painter.setPen(QPen{theme_.accent, 2});
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(area, radius, radius);
    }
    painter.setPen(textColour());
    painter.drawText(rect(), static_cast<int>(Qt::AlignCenter),
                     fontMetrics().elidedText(text(), Qt::ElideRight, width() - sidePadding));
}

} // namespace quellon
