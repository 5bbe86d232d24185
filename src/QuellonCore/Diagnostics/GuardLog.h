#pragma once

#include "QuellonCore/Support/Time.h"

#include <string_view>

/// Names on the system's log of diagnostics.
namespace quellon::GuardLog {

/// What all lines of this program are filed under.
inline constexpr std::string_view subsystem = "com.brennix.quellon";
/// The category of ticks.
inline constexpr std::string_view sampling = "sampling";
/// The category of child processes.
inline constexpr std::string_view shell = "shell";
/// A command that takes this long, or longer, is logged as slow.
inline constexpr Seconds slowCommandThreshold{1.0};

} // namespace quellon::GuardLog
