#pragma once

#include "QuellonCore/Support/Time.h"

#include <string>
#include <string_view>

namespace date {
class time_zone;
}

namespace quellon {

/// The questions to a moment that need a time zone. A small value; the zones live as long as the process.
class Calendar {
public:
    /// The calendar of UTC.
    Calendar() = default;

    /// The calendar of the zone with this IANA name, such as "Europe/Berlin". UTC when the system does not know it.
    explicit Calendar(const std::string& zoneName);

    /// The time of day as "HH:MM:SS", the fraction of a second dropped. The years 1 to 9999 are told apart, what lies
    /// beyond them is not; a date that is no number reads "00:00:00".
    [[nodiscard]] std::string clockTime(Date date) const;

private:
    const date::time_zone* zone_ = nullptr; ///< Null for UTC.
};

} // namespace quellon
