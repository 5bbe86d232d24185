#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace quellon {

/// Where a panel of this size stands for what it was called from at `anchor`: centred at it, at the top of the free
/// area of the screen when the anchor is in the upper half and otherwise at the bottom, and wholly within the area.
/// What is higher than the area is cut to its height; what is wider begins at its left.
[[nodiscard]] QRect panelPlace(const QPoint& anchor, const QSize& size, const QRect& freeArea);

} // namespace quellon
