#pragma once

#include <chrono>

namespace quellon {

/// A duration in seconds, with its fraction.
using Seconds = std::chrono::duration<double>;

/// The clock that dates belong to: seconds since 2001-01-01 00:00:00 UTC. It can't be read; only a host knows the time.
struct ReferenceClock {
    using rep = double;
    using period = Seconds::period;
    using duration = Seconds;
    using time_point = std::chrono::time_point<ReferenceClock>;
    static constexpr bool is_steady = false;
};

/// A moment. `Date{}` is the reference date, 2001-01-01 00:00:00 UTC.
using Date = ReferenceClock::time_point;

/// Seconds from 1970-01-01 to the reference date.
inline constexpr Seconds referenceDateSince1970{978'307'200.0};

/// Earlier than every date that a clock gives.
inline constexpr Date distantPast{Seconds{-63'114'076'800.0}};

} // namespace quellon
