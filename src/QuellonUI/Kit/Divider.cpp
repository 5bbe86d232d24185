#include "QuellonUI/Kit/Divider.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

Divider::Divider(QWidget* parent) : QWidget(parent)
{
    setFixedHeight(1);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Divider::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter{this};
    painter.fillRect(rect(), Theme::of(palette()).separator);
}

} // namespace quellon
