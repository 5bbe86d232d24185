#pragma once

#include <charconv>
#include <concepts>
#include <optional>
#include <string_view>
#include <system_error>

namespace quellon {

/// Reads a field that is a whole decimal number and nothing else: an optional sign, then at least one digit, leading
/// zeros allowed. For an unsigned `Number` a minus is only read before zero. Absent for an empty field, any other
/// character (blanks too), and a value that does not fit. This is the one rule for numbers in the tools' texts.
template <std::integral Number>
[[nodiscard]] std::optional<Number> parseWhole(std::string_view field)
{
    const bool negative = field.starts_with('-');
    std::string_view digits = field;
    if (negative || field.starts_with('+')) digits.remove_prefix(1);
    if (digits.empty() || digits.front() < '0' || digits.front() > '9') return std::nullopt;
    // The sign goes along only where it means something; in front of an unsigned number it must stand before zero.
    const std::string_view text = negative && std::signed_integral<Number> ? field : digits;
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    if (negative && std::unsigned_integral<Number> && value != 0) return std::nullopt;
    return value;
}

} // namespace quellon
