#pragma once

#include "QuellonCore/Host/Clock.h"
#include "QuellonHost/Posix/TimeZone.h"

#include <string>
#include <utility>

namespace quellon {

/// The system's wall clock and time zone.
class SystemClock final : public Clock {
public:
    /// `processes` tells of the variable TZ.
    explicit SystemClock(const ProcessControl& processes) : processes_{processes} {}

    [[nodiscard]] Date now() const override
    {
        const Seconds since1970 = std::chrono::system_clock::now().time_since_epoch();
        return Date{since1970 - referenceDateSince1970};
    }

    /// Reads a link each time, and the zone's rules only when it leads elsewhere than before.
    [[nodiscard]] Calendar calendar() const override
    {
        std::string zone = TimeZone::current(processes_);
        if (zone != zone_) {
            calendar_ = Calendar{zone};
            zone_ = std::move(zone);
        }
        return calendar_;
    }

private:
    const ProcessControl& processes_;
    mutable std::string zone_;
    mutable Calendar calendar_;
};

} // namespace quellon
