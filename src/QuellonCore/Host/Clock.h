#pragma once

#include "QuellonCore/Support/Calendar.h"
#include "QuellonCore/Support/Time.h"

namespace quellon {

/// Seam: what time it is, and where the user lives.
class Clock {
public:
    virtual ~Clock() = default;
    /// The wall clock. It can jump in either direction. Any thread.
    [[nodiscard]] virtual Date now() const = 0;
    /// The calendar of the user's time zone, which may change while the program runs. Main thread only.
    [[nodiscard]] virtual Calendar calendar() const = 0;
};

} // namespace quellon
