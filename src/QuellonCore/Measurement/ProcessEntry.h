#pragma once

#include <cstdint>
#include <string>

namespace quellon {

/// One row of the process table.
struct ProcessEntry {
    std::int32_t pid = 0;
    std::uint32_t uid = 0; ///< The owning user.
    std::int32_t pgid = 0; ///< The process group.
    std::string command;   ///< As a rule the full path of the executable; may hold blanks.

    bool operator==(const ProcessEntry&) const = default;
};

} // namespace quellon
