#include "QuellonUI/Kit/Pressable.h"

#include "QuellonUI/Theme.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace quellon {

namespace {

/// The button that the mouse pressed last; only to be compared.
const Pressable* pressedLast = nullptr;

} // namespace

Pressable::Pressable(QWidget* parent) : QAbstractButton(parent)
{
    setAttribute(Qt::WA_Hover);
    // A click leaves the focus where it is: the button may go with it, and the focus would pass to whatever is next.
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QAbstractButton::pressed, this, [this] { counts_ = !held_; });
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (counts_) Q_EMIT chosen();
    });
}

Pressable::~Pressable()
{
    if (pressedLast == this) pressedLast = nullptr;
}

void Pressable::setTitle(const QString& title, const QString& accessibleName)
{
    // Qt would take an ampersand for the mark of a shortcut.
    QString text = title;
    text.replace(QLatin1Char{'&'}, QLatin1String{"&&"});
    if (text != this->text()) {
        setText(text);
        updateGeometry();
    }
    const QString& name = accessibleName.isEmpty() ? title : accessibleName;
    if (name != this->accessibleName()) setAccessibleName(name);
}

void Pressable::setHeld(bool held)
{
    if (held == held_) return;
    held_ = held;
    update();
}

void Pressable::lapse()
{
    counts_ = false;
}

void Pressable::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!enter) {
        QAbstractButton::keyPressEvent(event);
        return;
    }
    // A key that is kept down presses once.
    if (!event->isAutoRepeat()) click();
}

void Pressable::mousePressEvent(QMouseEvent* event)
{
    pressedLast = this;
    QAbstractButton::mousePressEvent(event);
}

void Pressable::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (pressedLast == this) mousePressEvent(event);
}

void Pressable::mouseMoveEvent(QMouseEvent* event)
{
    // A pressed mouse that leaves and comes back is told as pressed anew, and is the same press.
    const bool counts = counts_;
    QAbstractButton::mouseMoveEvent(event);
    counts_ = counts;
}

bool Pressable::event(QEvent* event)
{
    if (event->type() == QEvent::FocusIn) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // What comes back from another window or a menu is as it was.
        const bool returns = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
        if (!returns) fromKeyboard_ = reason != Qt::MouseFocusReason;
    }
    return QAbstractButton::event(event);
}

double Pressable::opacity() const
{
    constexpr double faint = 0.4;
    return held_ || !isEnabled() ? faint : 1.0;
}

bool Pressable::showsFocus() const
{
    return hasFocus() && fromKeyboard_;
}

void Pressable::drawFocus(QPainter& painter, const QRectF& area, double radius) const
{
    constexpr double width = 2.0;
    constexpr double half = width / 2;
    painter.save();
    painter.setPen(QPen{Theme::of(palette()).accent, width});
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area.adjusted(half, half, -half, -half), radius - half, radius - half);
    painter.restore();
}

void Pressable::drawHover(QPainter& painter, const QRectF& area, double radius) const
{
    if (!isEnabled() || (!isDown() && !underMouse())) return;
    const Theme& theme = Theme::of(palette());
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(isDown() ? theme.pressed : theme.hover);
    painter.drawRoundedRect(area, radius, radius);
    painter.restore();
}

} // namespace quellon
