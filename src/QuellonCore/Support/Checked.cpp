#include "QuellonCore/Support/Checked.h"

#include "QuellonCore/Support/Fatal.h"

#include <cmath>
#include <limits>

namespace quellon {

std::uint64_t checkedAdd(std::uint64_t a, std::uint64_t b)
{
    if (b > std::numeric_limits<std::uint64_t>::max() - a) fatal("byte counter overflow");
    return a + b;
}

bool fitsWhole(double value)
{
    constexpr double limit = 18'446'744'073'709'551'616.0; // 2^64, the first value that does not fit
    return value > -1.0 && value < limit;
}

std::uint64_t checkedWhole(double value)
{
    if (!fitsWhole(value)) fatal("number does not fit a byte count");
    return static_cast<std::uint64_t>(value);
}

std::int64_t checkedSigned(std::uint64_t value)
{
    if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) fatal("signed counter overflow");
    return static_cast<std::int64_t>(value);
}

std::int64_t checkedAdd(std::int64_t a, std::int64_t b)
{
    using Limits = std::numeric_limits<std::int64_t>;
    if (b > 0 ? a > Limits::max() - b : a < Limits::min() - b) fatal("signed counter overflow");
    return a + b;
}

std::int64_t checkedSubtract(std::int64_t a, std::int64_t b)
{
    using Limits = std::numeric_limits<std::int64_t>;
    if (b > 0 ? a < Limits::min() + b : a > Limits::max() + b) fatal("signed counter overflow");
    return a - b;
}

std::int64_t checkedWholeSigned(double value)
{
    constexpr double limit = 9'223'372'036'854'775'808.0; // 2^63, the first value that does not fit
    if (!(value >= -limit && value < limit)) fatal("number does not fit a whole number of 64 bits");
    return static_cast<std::int64_t>(value);
}

std::int64_t nearestWhole(double value)
{
    constexpr double limit = 9'223'372'036'854'775'808.0; // 2^63, the first value that does not fit
    if (!std::isfinite(value)) fatal("a number that is not finite is no whole number");
    if (value >= limit) return std::numeric_limits<std::int64_t>::max();
    if (value < -limit) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

} // namespace quellon
