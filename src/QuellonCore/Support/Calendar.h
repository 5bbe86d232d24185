#pragma once

#include "QuellonCore/Support/Time.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace date {
class time_zone;
}

namespace quellon {

/// A day of the local calendar.
struct CalendarDay {
    int year = 0;
    int month = 0; ///< 1 to 12.
    int day = 0;   ///< 1 to 31.
    auto operator<=>(const CalendarDay&) const = default;
};

/// The questions to a moment that need a time zone. A small value; the zones live as long as the process. The years 1
/// to 9999 are told apart, what lies beyond them is held at their edge; a date that is no number counts as 1970-01-01
/// 00:00:00 UTC. When clocks change is what the system's database lists: up to the year 2037 in its "fat" form; in its
/// "slim" form up to the last change of the zone's rules, behind which the clocks of this calendar stand still.
class Calendar {
public:
    /// The calendar of UTC.
    Calendar() = default;

    /// The calendar of the zone with this IANA name, such as "Europe/Berlin". UTC when the system does not know it.
    explicit Calendar(const std::string& zoneName);

    /// The local day that `date` lies in.
    [[nodiscard]] CalendarDay day(Date date) const;

    /// The moment when the local clock first shows this day and time of day, or a later one. So a time that the clock
    /// skips gives the first moment behind the gap, a midnight that does not exist the first moment of its day, a day
    /// that a zone left out the first moment of the next one; and of a time that occurs twice the first counts. Absent
    /// when there is no such day in any year, such as 30 February, the year is not in 1 to 9999, or the time is not
    /// from 0 to below 24 hours.
    [[nodiscard]] std::optional<Date> moment(CalendarDay day, Seconds timeOfDay = Seconds{0.0}) const;

    /// The first moment of the local day that `date` lies in.
    [[nodiscard]] Date startOfDay(Date date) const;

    /// The same local time of day so many days later (earlier when negative), with the fraction of its second; where
    /// that does not exist or occurs twice, as `moment` says. No days give `date` itself. Absent beyond the years 1 to
    /// 9999.
    [[nodiscard]] std::optional<Date> addingDays(Date date, std::int64_t days) const;

    /// The same local day of the month and time of day so many months later; the last day of the month where that is
    /// shorter. Otherwise as `addingDays`.
    [[nodiscard]] std::optional<Date> addingMonths(Date date, std::int64_t months) const;

    /// So many seconds later. Absent beyond the years 1 to 9999.
    [[nodiscard]] std::optional<Date> addingSeconds(Date date, std::int64_t seconds) const;

    /// How many whole days lie from `from` to `to`, by their local days and times of day: 2 from any time of the third
    /// to the same time of the fifth, and one less a second before, however long the clock made the days between. The
    /// first moment of a day counts as its midnight, also where the clock skips that. Negative when `to` is earlier,
    /// cut towards zero.
    [[nodiscard]] std::int64_t wholeDays(Date from, Date to) const;

    /// The time of day as "HH:MM:SS", the fraction of a second dropped.
    [[nodiscard]] std::string clockTime(Date date) const;

    /// The time of day as "HH:MM".
    [[nodiscard]] std::string hourAndMinute(Date date) const;

private:
    const date::time_zone* zone_ = nullptr; ///< Null for UTC.
};

} // namespace quellon
