#pragma once

class QPainter;
class QRect;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionMenuItem;
class QStyleOptionSlider;

/// How the parts of the toolkit's own controls are drawn.
namespace quellon::StyleDrawing {

/// The ground of a push button, with the ring when it has the keyboard.
void button(const QStyleOptionButton& option, QPainter& painter);
/// The ground of a field for text.
void field(const QStyleOption& option, QPainter& painter);
void checkBox(const QStyleOption& option, QPainter& painter);
void radioButton(const QStyleOption& option, QPainter& painter);
/// The ring around what has the keyboard.
void focus(const QStyleOption& option, QPainter& painter);
/// The line around an area.
void frame(const QStyleOption& option, QPainter& painter);
/// The ground of a menu or of a tool tip.
void panel(const QStyleOption& option, QPainter& painter);
/// The ground of a tool button, only where the pointer is.
void hover(const QStyleOption& option, QPainter& painter);
/// The ground of a row in a list.
void row(const QStyleOption& option, QPainter& painter);
/// The sign that something opens.
void arrow(const QStyleOption& option, QPainter& painter);
/// The ground of a combo box, with its sign in `arrowArea`.
void comboBox(const QStyleOptionComboBox& option, const QRect& arrowArea, QPainter& painter);
/// The thumb of a scroll bar.
void thumb(const QStyleOptionSlider& option, const QRect& area, QPainter& painter);
void menuItem(const QStyleOptionMenuItem& option, QPainter& painter);

/// From the left edge of a menu's item to its text.
inline constexpr int menuTextLeft = 30;
inline constexpr int menuTextRight = 14;

} // namespace quellon::StyleDrawing
