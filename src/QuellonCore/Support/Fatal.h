#pragma once

#include <string_view>

namespace quellon {

/// Ends the program with exit status 70 after writing "fatal: {what}" to standard error. For states that arithmetic
/// must never reach, such as a byte counter that overflows; never for what comes from outside.
[[noreturn]] void fatal(std::string_view what);

/// What `fatal` does first from now on, such as giving the terminal back; null for nothing. It must not fail in turn.
void setFatalCleanup(void (*cleanup)());

} // namespace quellon
