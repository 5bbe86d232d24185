#pragma once

#include "ReplaySession.h"

#include <cstddef>
#include <functional>
#include <ostream>
#include <string_view>
#include <vector>

namespace quellon {

/// What one line of a script does.
struct ReplayStep {
    std::size_t line = 0; ///< Its number, from 1.
    std::function<void(ReplaySession&)> act;
};

/// Every line of a script, checked as far as that can be done before any of it runs. Throws a `ReplayError` that names
/// the first line that can't be read.
[[nodiscard]] std::vector<ReplayStep> readReplayScript(std::string_view text);

/// The exit status of a script that ended, and of one that can't be read or done.
inline constexpr int replaySucceeded = 0;
inline constexpr int replayRefused = 2;

/// Runs a script in a world of its own. Writes what happens to `out`, and what is wrong with the script to `errors`.
/// Returns the exit status.
[[nodiscard]] int runReplayScript(std::string_view text, std::ostream& out, std::ostream& errors);

} // namespace quellon
