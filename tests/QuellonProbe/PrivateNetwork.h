#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quellon::testing {

/// What came of a piece of work in a network namespace of its own.
struct PrivateRun {
    std::string text;                ///< what the work returned
    std::optional<std::string> lack; ///< why it could not be done here; then there is no text
};

/// Runs `ip` with each of the lines in a new network namespace, then `work`, in a child process, so that nothing of
/// this machine changes. Lacks are a kernel that gives no such namespace to this user, no `ip`, or a line it refuses.
[[nodiscard]] PrivateRun inPrivateNetwork(const std::vector<std::string>& lines,
                                          const std::function<std::string()>& work);

} // namespace quellon::testing
