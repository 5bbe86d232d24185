#pragma once

#include "Quellon/ProgramOptions.h"

/// The desktop program, where it is built in.
namespace quellon::DesktopProgram {

/// Whether there is one and a display is announced for it.
[[nodiscard]] bool isAvailable();

/// Opens the window, runs until the end and gives the exit status. Where the display can't be reached it does not
/// return: the process begins anew, as what `chooseView` says for a place without a display. Only where `isAvailable`.
[[nodiscard]] int run(char** arguments, const ProgramOptions& options);

} // namespace quellon::DesktopProgram
