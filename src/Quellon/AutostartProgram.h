#pragma once

#include "Quellon/ProgramOptions.h"

/// What "--autostart" does: no guard, no view.
namespace quellon::AutostartProgram {

/// Switches the start with the session on or off, or prints "on" or "off". Gives the exit status.
[[nodiscard]] int run(AutostartCommand command);

} // namespace quellon::AutostartProgram
