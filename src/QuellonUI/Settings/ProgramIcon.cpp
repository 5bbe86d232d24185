#include "QuellonUI/Settings/ProgramIcon.h"

#include <QPainter>
#include <QSvgRenderer>

namespace quellon {

ProgramIcon::ProgramIcon(int points, QWidget* parent) : QWidget(parent)
{
    setFixedSize(points, points);
}

void ProgramIcon::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer{QStringLiteral(":/icons/quellon.svg")}.render(&painter, QRectF{rect()});
}

} // namespace quellon
