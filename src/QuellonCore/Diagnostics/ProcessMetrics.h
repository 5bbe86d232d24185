#pragma once

#include <cstddef>
#include <cstdint>

namespace quellon {

/// What a process weighs.
struct ProcessMetrics {
    std::uint64_t residentBytes = 0;  ///< Memory in use, shared pages included.
    std::uint64_t footprintBytes = 0; ///< Memory that only this process uses; `residentBytes` where not told.
    std::size_t threadCount = 0;
    bool operator==(const ProcessMetrics&) const = default;
};

} // namespace quellon
