#pragma once

#include <cstdint>

namespace quellon {

/// Adds up all byte counts of one file while it is read. Sums that don't fit end the program, which no file may bring
/// about, so a file is refused whose counts come to more than `largest`.
class FiledSum {
public:
    /// Far beyond what can be transferred, and far enough from the largest number for all that is added later.
    static constexpr std::uint64_t largest = std::uint64_t{1} << 62;

    /// False, and nothing is added, when the sum would exceed `largest`.
    [[nodiscard]] constexpr bool add(std::uint64_t bytes)
    {
        if (bytes > largest - sum_) return false;
        sum_ += bytes;
        return true;
    }

private:
    std::uint64_t sum_ = 0;
};

} // namespace quellon
