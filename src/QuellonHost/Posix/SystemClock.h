#pragma once

#include "QuellonCore/Host/Clock.h"

namespace quellon {

/// The system's wall clock.
class SystemClock final : public Clock {
public:
    [[nodiscard]] Date now() const override
    {
        const Seconds since1970 = std::chrono::system_clock::now().time_since_epoch();
        return Date{since1970 - referenceDateSince1970};
    }
};

} // namespace quellon
