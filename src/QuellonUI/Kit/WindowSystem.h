#pragma once

namespace quellon {

/// Whether windows can be translucent: always, but on an X server on which nobody composes the windows. Asked anew at
/// each call.
[[nodiscard]] bool hasCompositor();
/// Whether a program may say where its windows stand: not on Wayland.
[[nodiscard]] bool canPlaceWindows();
/// Whether the place of the pointer is known wherever it is: in a session of Wayland only over windows of X11 programs,
/// or over our own.
[[nodiscard]] bool seesPointerEverywhere();

} // namespace quellon
