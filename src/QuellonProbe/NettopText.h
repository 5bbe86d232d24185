#pragma once

#include "QuellonProbe/ConnectionList.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The names that an answer needs; each clean for a row.
struct NettopNames {
    std::function<std::string_view(std::int32_t pid)> process;
    std::function<std::string_view(std::uint32_t index)> interface;
};

/// The answer of the role `nettop`: the header, then for each owner a row with its sums and one row for each of its
/// connections. `rows` are ascending by owner; `time` stands at the front of each row, "HH:MM:SS.uuuuuu". An owner
/// without a name is called "unknown", an interface without one "?".
[[nodiscard]] std::string nettopText(const std::vector<ConnectionRow>& rows, std::string_view time,
                                     const NettopNames& names);

/// The time of day where the user is, as "HH:MM:SS.uuuuuu".
[[nodiscard]] std::string timeOfDay();

} // namespace quellon
