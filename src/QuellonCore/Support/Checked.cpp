#include "QuellonCore/Support/Checked.h"

#include "QuellonCore/Support/Fatal.h"

#include <limits>

namespace quellon {

std::uint64_t checkedAdd(std::uint64_t a, std::uint64_t b)
{
    if (b > std::numeric_limits<std::uint64_t>::max() - a) fatal("byte counter overflow");
    return a + b;
}

std::uint64_t checkedWhole(double value)
{
    constexpr double limit = 18'446'744'073'709'551'616.0; // 2^64, the first value that does not fit
    if (!(value > -1.0 && value < limit)) fatal("number does not fit a byte count");
    return static_cast<std::uint64_t>(value);
}

} // namespace quellon
