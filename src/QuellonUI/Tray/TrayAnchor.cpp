#include "QuellonUI/Tray/TrayAnchor.h"

#include <algorithm>
#include <cstdlib>

namespace quellon {

QPoint trayAnchor(QPoint reported, QPoint cursor, bool isCursorCurrent, const QList<QRect>& screens)
{
    const QPoint apart = reported - cursor;
    const bool isNearCursor = std::abs(apart.x()) <= trayNearness && std::abs(apart.y()) <= trayNearness;
    const auto isAtEdge = [reported](const QRect& screen) {
        const QMargins inset{trayNearness, trayNearness, trayNearness, trayNearness};
        return screen.contains(reported) && !screen.marginsRemoved(inset).contains(reported);
    };
    const bool isLikely = isNearCursor || !isCursorCurrent;
    return isLikely && std::any_of(screens.begin(), screens.end(), isAtEdge) ? reported : cursor;
}

} // namespace quellon
