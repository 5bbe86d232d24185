#pragma once

#include <ostream>
#include <string_view>

namespace quellon {

/// The exit status of a script that ended, and of one that can't be read or done.
inline constexpr int replaySucceeded = 0;
inline constexpr int replayRefused = 2;

/// Runs a script in a world of its own, line by line, up to the first one that can't be read or done. Writes what
/// happens to `out`, and what is wrong with that line to `errors`. Returns the exit status.
[[nodiscard]] int runReplayScript(std::string_view text, std::ostream& out, std::ostream& errors);

} // namespace quellon
