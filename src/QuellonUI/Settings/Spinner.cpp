#include "QuellonUI/Settings/Spinner.h"

#include "QuellonUI/Theme.h"

#include <QPainter>
#include <QTimerEvent>

namespace quellon {

namespace {

constexpr int side = 16;
constexpr int steps = 12;
constexpr int stepTime = 80; // in milliseconds

} // namespace

Spinner::Spinner(QWidget* parent) : QProgressBar(parent)
{
    setRange(0, 0);
    setTextVisible(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Spinner::sizeHint() const
{
    return {side, side};
}

void Spinner::showEvent(QShowEvent* event)
{
    QProgressBar::showEvent(event);
    timer_.start(stepTime, this);
}

void Spinner::hideEvent(QHideEvent* event)
{
    QProgressBar::hideEvent(event);
    timer_.stop();
}

void Spinner::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != timer_.timerId()) return QProgressBar::timerEvent(event);
    turn_ = (turn_ + 1) % steps;
    update();
}

void Spinner::paintEvent(QPaintEvent* /*event*/)
{
    constexpr double width = 2.0;
    constexpr int sixteenths = 16 * 360;
    constexpr int span = sixteenths / 4;
    const Theme& theme = Theme::of(palette());
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = QRectF{rect()}.adjusted(width, width, -width, -width);
    painter.setPen(QPen{theme.track, width});
    painter.drawEllipse(area);
    painter.setPen(QPen{theme.accent, width, Qt::SolidLine, Qt::RoundCap});
    painter.drawArc(area, -turn_ * sixteenths / steps, span);
}

} // namespace quellon
