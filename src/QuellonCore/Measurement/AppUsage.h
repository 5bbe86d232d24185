#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace quellon {

/// What one application moved over some window.
struct AppUsage {
    std::string app; ///< Its label.
    std::uint64_t bytes = 0;
    std::set<std::int32_t> pids; ///< The processes that carried the bytes.
    bool operator==(const AppUsage&) const = default;
};

} // namespace quellon
