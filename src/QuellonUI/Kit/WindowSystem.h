#pragma once

namespace quellon {

/// Whether windows can be translucent: always, but on an X server on which nobody composes the windows. Asked anew at
/// each call.
[[nodiscard]] bool hasCompositor();
/// Whether a program may say where its windows stand: not on Wayland.
[[nodiscard]] bool canPlaceWindows();

} // namespace quellon
