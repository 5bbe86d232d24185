#include "QuellonUI/Settings/Form/ListRow.h"

#include "QuellonUI/Theme.h"

#include <QPainter>

namespace quellon {

void ListRow::setFirst(bool first)
{
    if (first == first_) return;
    first_ = first;
    update();
}

void ListRow::paintEvent(QPaintEvent* /*event*/)
{
    if (first_) return;
    QPainter painter{this};
    painter.fillRect(QRect{0, 0, width(), 1}, Theme::of(palette()).separator);
}

} // namespace quellon
