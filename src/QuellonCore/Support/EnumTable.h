#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace quellon {

/// One case of an enumeration with its raw text (what files hold) and its label (what people read).
template <typename Enum>
struct EnumRow {
    Enum value;
    std::string_view raw;
    std::string_view label;
};

/// The cases of an enumeration in their order. Reading, writing, listing and tests walk this table.
template <typename Enum, std::size_t N>
struct EnumTable {
    std::array<EnumRow<Enum>, N> rows;

    /// The row of a case. The table holds every case.
    [[nodiscard]] constexpr const EnumRow<Enum>& row(Enum value) const
    {
        std::size_t i = 0;
        while (rows[i].value != value) ++i;
        return rows[i];
    }
    [[nodiscard]] constexpr std::string_view raw(Enum value) const { return row(value).raw; }
    [[nodiscard]] constexpr std::string_view label(Enum value) const { return row(value).label; }

    /// The case with this raw text, compared byte by byte; absent for an unknown text.
    [[nodiscard]] constexpr std::optional<Enum> parse(std::string_view raw) const
    {
        for (const auto& each : rows) {
            if (each.raw == raw) return each.value;
        }
        return std::nullopt;
    }
};

} // namespace quellon
