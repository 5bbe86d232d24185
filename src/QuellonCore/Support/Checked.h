#pragma once

#include <cstdint>

namespace quellon {

/// `a` + `b`; `fatal` when the sum does not fit.
[[nodiscard]] std::uint64_t checkedAdd(std::uint64_t a, std::uint64_t b);

/// `value` cut towards zero; `fatal` when it is not finite, negative, or too large for the result.
[[nodiscard]] std::uint64_t checkedWhole(double value);

} // namespace quellon
