#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

namespace quellon {

/// Where the panel of a tray item belongs: by the item that was clicked. Hosts tell where that was, but some tell
/// nonsense, and all of them in device pixels; so `reported` counts only where it lies on one of the `screens`, near
/// (`trayNearness`) one of its edges, as trays do, and near the cursor. Otherwise it is the cursor. One that may have
/// moved on (`isCursorCurrent`) says nothing against what is reported.
[[nodiscard]] QPoint trayAnchor(QPoint reported, QPoint cursor, bool isCursorCurrent, const QList<QRect>& screens);

/// In device-independent pixels: the height of the tallest panels in use.
inline constexpr int trayNearness = 64;

} // namespace quellon
