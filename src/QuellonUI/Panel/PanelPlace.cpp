#include "QuellonUI/Panel/PanelPlace.h"

#include <algorithm>

namespace quellon {

QRect panelPlace(const QPoint& anchor, const QSize& size, const QRect& freeArea)
{
    const int height = std::min(size.height(), freeArea.height());
    const int rightmost = freeArea.left() + freeArea.width() - size.width();
    const int left = std::max(std::min(anchor.x() - size.width() / 2, rightmost), freeArea.left());
    const bool atTop = anchor.y() < freeArea.top() + freeArea.height() / 2;
    const int top = atTop ? freeArea.top() : freeArea.top() + freeArea.height() - height;
    return {left, top, size.width(), height};
}

} // namespace quellon
