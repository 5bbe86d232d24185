#pragma once

#include <cstdint>

namespace quellon {

/// `a` + `b`; `fatal` when the sum does not fit.
[[nodiscard]] std::uint64_t checkedAdd(std::uint64_t a, std::uint64_t b);

/// Whether `value` cut towards zero fits 64 bits: above -1 and below 2^64.
[[nodiscard]] bool fitsWhole(double value);

/// `value` cut towards zero; `fatal` when it is not finite, is -1 or less, or too large for the result.
[[nodiscard]] std::uint64_t checkedWhole(double value);

/// `value` as a signed number; `fatal` when it is 2^63 or more.
[[nodiscard]] std::int64_t checkedSigned(std::uint64_t value);

/// `a` + `b`, `a` - `b`; `fatal` when the result does not fit.
[[nodiscard]] std::int64_t checkedAdd(std::int64_t a, std::int64_t b);
[[nodiscard]] std::int64_t checkedSubtract(std::int64_t a, std::int64_t b);

/// `value` cut towards zero; `fatal` when it is not finite or does not fit.
[[nodiscard]] std::int64_t checkedWholeSigned(double value);

/// `value` cut towards zero; the nearest number that fits when it is too large or too small. `fatal` when it is not
/// finite.
[[nodiscard]] std::int64_t nearestWhole(double value);

} // namespace quellon
