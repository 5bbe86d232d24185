#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// A 128-bit identifier.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    /// The 36-character upper-case text.
    [[nodiscard]] std::string text() const;

    /// Reads the 36-character text in either case; absent for anything else.
    [[nodiscard]] static std::optional<UUID> parse(std::string_view text);

    auto operator<=>(const UUID&) const = default;
};

} // namespace quellon
