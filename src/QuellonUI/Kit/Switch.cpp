#include "QuellonUI/Kit/Switch.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

namespace {

constexpr QSize slot{38, 22};
constexpr int ring = 3; ///< Room for the focus ring around the slot.

} // namespace

Switch::Switch(QWidget* parent) : Pressable(parent)
{
    setCheckable(true);
    setFixedSize(sizeHint());
    connect(this, &QAbstractButton::toggled, this, &Switch::keepState);
}

void Switch::setOn(bool on)
{
    if (on == on_) return;
    on_ = on;
    setChecked(on);
}

/// A screen reader's request to toggle changes the state without a click.
void Switch::keepState(bool checked)
{
    if (checked == on_) return;
    setChecked(on_);
    click();
}

QSize Switch::sizeHint() const
{
    return slot + QSize{2 * ring, 2 * ring};
}

void Switch::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double knobInset = 2.0;
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity());
    const QRectF area = QRectF{rect()}.adjusted(ring, ring, -ring, -ring);
    painter.setPen(Qt::NoPen);
    painter.setBrush(on_ ? theme.good : theme.switchOff);
    painter.drawRoundedRect(area, area.height() / 2, area.height() / 2);
    drawHover(painter, area, area.height() / 2);
    if (showsFocus()) drawFocus(painter, QRectF{rect()}, QRectF{rect()}.height() / 2);
    QRectF knob = area.adjusted(knobInset, knobInset, -knobInset, -knobInset);
    const bool right = on_ != (layoutDirection() == Qt::RightToLeft);
    if (right) knob.setLeft(knob.right() - knob.height());
    knob.setWidth(knob.height());
    constexpr int shadowAlpha = 50;
    painter.setBrush(QColor{0, 0, 0, shadowAlpha});
    painter.drawEllipse(knob.adjusted(-0.5, 0.0, 0.5, 1.0));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
}

} // namespace quellon
