#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The version of a program or a system: up to four whole numbers, of which missing ones count as zero.
struct AppVersion {
    static constexpr std::size_t mostComponents = 4;

    std::vector<std::int64_t> components; ///< As they were written; 1 to `mostComponents` of them.

    /// Reads a text such as "1.10.2", ASCII white space around it allowed. Absent for anything else: an empty piece, a
    /// character that is no ASCII digit, a fifth number, a number beyond 64 bits.
    [[nodiscard]] static std::optional<AppVersion> parse(std::string_view text);

    /// The numbers in decimal, joined by dots.
    [[nodiscard]] std::string text() const;

    /// 1.2 and 1.2.0.0 are equal; 1.10 is newer than 1.9.
    std::strong_ordering operator<=>(const AppVersion& other) const;
    bool operator==(const AppVersion& other) const { return (*this <=> other) == 0; }
};

} // namespace quellon
