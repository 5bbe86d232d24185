#pragma once

class QScreen;
class QWidget;

namespace quellon {

/// Moves a window that has its size to where it stands at first: in the middle of the screen's free area.
void centre(QWidget& window, const QScreen& screen);

} // namespace quellon
