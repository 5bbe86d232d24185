#pragma once

#include <chrono>

namespace quellon::StopLifeline {

/// How long after a stop the lifeline holds; by then the freeze is on record and has its watchdog.
inline constexpr std::chrono::seconds span{10};

/// Sees to it that the process behind this descriptor goes on should we die, by whatever cause, within `span`. Called
/// before the process is stopped, so that there is no moment at which it is frozen and nobody knows of it. Any thread.
/// Where the system has no room for another process it does nothing.
void tie(int process);

} // namespace quellon::StopLifeline
