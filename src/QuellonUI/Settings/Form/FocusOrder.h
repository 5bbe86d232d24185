#pragma once

class QWidget;

namespace quellon::FocusOrder {

/// Lets the Tab key walk through the window in the order of its widgets' children, which is that in which a screen
/// reader goes through them.
void follow(QWidget& window);

/// The next widget (or the one before) that Tab goes to, within `area` and round in a circle; null without one.
[[nodiscard]] QWidget* next(QWidget& area, bool forward);

} // namespace quellon::FocusOrder
