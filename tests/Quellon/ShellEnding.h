#pragma once

#include <string>

namespace quellon {

/// What shell commands printed, and how they ended.
struct ShellEnding {
    std::string output;
    int status = -1; ///< 128 and the signal's number when a signal ended it.

    /// Runs them to their end.
    [[nodiscard]] static ShellEnding of(const std::string& commands);
};

} // namespace quellon
