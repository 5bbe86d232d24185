#include "QuellonCore/Support/Calendar.h"

#include <date/tz.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <exception>

namespace quellon {

namespace {

using std::chrono::hours;
using std::chrono::seconds;

constexpr date::local_seconds firstSecond = date::local_days{date::year{1} / 1 / 1};
constexpr date::local_seconds lastSecond = date::local_days{date::year{9999} / 12 / 31} + hours{24} - seconds{1};

constexpr Seconds wholeDay{86'400.0};

/// More days, and more months, than lie between any two dates that are told apart.
constexpr std::int64_t tooManyDays = 4'000'000;

/// No zone's clock is further from UTC than this, or was.
constexpr hours farthestOffset{48};

const date::time_zone* find(const std::string& name)
{
    // The library reports a missing zone, a missing database and a file that is cut short by throwing (and ends the
    // program for one that holds something else). A zone is only read when it is first asked, so that is done here.
    try {
        const date::time_zone* zone = date::locate_zone(name);
        (void)zone->get_info(date::sys_seconds{});
        return zone;
    } catch (const std::exception&) {
        return nullptr;
    }
}

bool isInYears(date::local_seconds local)
{
    return local >= firstSecond && local <= lastSecond;
}

/// The whole second that `date` lies in, held to where every local year that is told apart is in reach.
date::sys_seconds second(Date date)
{
    constexpr auto first = static_cast<double>((firstSecond - farthestOffset).time_since_epoch().count());
    constexpr auto last = static_cast<double>((lastSecond + farthestOffset).time_since_epoch().count());
    const double count = (date.time_since_epoch() + referenceDateSince1970).count();
    if (std::isnan(count)) return {};
    return date::sys_seconds{seconds{static_cast<std::int64_t>(std::floor(std::clamp(count, first, last)))}};
}

Date toDate(date::sys_seconds moment)
{
    return Date{Seconds{moment.time_since_epoch()} - referenceDateSince1970};
}

/// What of `date` lies behind its whole second: from 0 to below 1; 0 for what is held at an edge.
Seconds fraction(Date date)
{
    const Seconds rest = date - toDate(second(date));
    return rest >= Seconds{0.0} && rest < Seconds{1.0} ? rest : Seconds{0.0};
}

/// What the local clock shows. A null `zone` is UTC, here and below.
date::local_seconds local(const date::time_zone* zone, Date date)
{
    const date::sys_seconds moment = second(date);
    const seconds offset = zone != nullptr ? zone->get_info(moment).offset : seconds{0};
    return std::clamp(date::local_seconds{moment.time_since_epoch() + offset}, firstSecond, lastSecond);
}

/// When the local clock first shows `local` or later. Walks the stretches between the clock's changes, which takes two
/// steps at most where they lie days apart.
date::sys_seconds firstShowing(const date::time_zone* zone, date::local_seconds local)
{
    const date::sys_seconds inUTC{local.time_since_epoch()};
    if (zone == nullptr) return inUTC;
    auto stretch = zone->get_info(inUTC - farthestOffset);
    while (true) {
        const date::sys_seconds candidate = std::max(stretch.begin, inUTC - stretch.offset);
        if (candidate < stretch.end) return candidate;
        stretch = zone->get_info(stretch.end);
    }
}

/// `firstShowing` with a fraction of a second, which only a time that exists has.
std::optional<Date> momentOf(const date::time_zone* zone, date::local_seconds local, Seconds fraction)
{
    if (!isInYears(local)) return std::nullopt;
    const Date moment = toDate(firstShowing(zone, local));
    return quellon::local(zone, moment) == local ? moment + fraction : moment;
}

date::year_month_day yearMonthDay(date::local_seconds local)
{
    return date::year_month_day{date::floor<date::days>(local)};
}

seconds timeOfDay(date::local_seconds local)
{
    return local - date::floor<date::days>(local);
}

} // namespace

Calendar::Calendar(const std::string& zoneName) : zone_(find(zoneName)) {}

CalendarDay Calendar::day(Date date) const
{
    const auto fields = yearMonthDay(local(zone_, date));
    return {static_cast<int>(fields.year()), static_cast<int>(static_cast<unsigned>(fields.month())),
            static_cast<int>(static_cast<unsigned>(fields.day()))};
}

std::optional<Date> Calendar::moment(CalendarDay day, Seconds timeOfDay) const
{
    if (day.year < 1 || day.year > 9999 || day.month < 1 || day.month > 12 || day.day < 1 || day.day > 31)
        return std::nullopt;
    const auto fields = date::year{day.year} / day.month / day.day;
    if (!fields.ok() || !(timeOfDay >= Seconds{0.0} && timeOfDay < wholeDay)) return std::nullopt;
    const auto whole = date::floor<seconds>(timeOfDay);
    return momentOf(zone_, date::local_days{fields} + whole, timeOfDay - whole);
}

Date Calendar::startOfDay(Date date) const
{
    return toDate(firstShowing(zone_, date::floor<date::days>(local(zone_, date))));
}

std::optional<Date> Calendar::addingDays(Date date, std::int64_t days) const
{
    if (days == 0) return addingSeconds(date, 0);
    if (days < -tooManyDays || days > tooManyDays) return std::nullopt;
    return momentOf(zone_, local(zone_, date) + date::days{days}, fraction(date));
}

std::optional<Date> Calendar::addingMonths(Date date, std::int64_t months) const
{
    if (months == 0) return addingSeconds(date, 0);
    if (months < -tooManyDays || months > tooManyDays) return std::nullopt;

    const date::local_seconds from = local(zone_, date);
    const auto fields = yearMonthDay(from);
    const std::int64_t month = std::int64_t{static_cast<int>(fields.year())} * 12 + months - 1 +
                               std::int64_t{static_cast<unsigned>(fields.month())};
    const std::int64_t year = month / 12;
    if (year < 1 || year > 9999) return std::nullopt;

    const auto target = date::year{static_cast<int>(year)} / static_cast<int>(month % 12 + 1);
    const date::year_month_day last{target / date::last};
    return momentOf(zone_, date::local_days{target / std::min(fields.day(), last.day())} + timeOfDay(from),
                    fraction(date));
}

std::optional<Date> Calendar::addingSeconds(Date date, std::int64_t seconds) const
{
    const Date from = std::isnan(date.time_since_epoch().count()) ? toDate({}) : date;
    const Date later = from + Seconds{static_cast<double>(seconds)};
    const date::sys_seconds moment = second(later);
    const auto offset = zone_ != nullptr ? zone_->get_info(moment).offset : std::chrono::seconds{0};
    if (!isInYears(date::local_seconds{moment.time_since_epoch() + offset})) return std::nullopt;
    return later;
}

std::int64_t Calendar::wholeDays(Date from, Date to) const
{
    if (to < from) return -wholeDays(to, from);

    const auto timeIn = [this](Date date, date::local_seconds shown) {
        return date == startOfDay(date) ? Seconds{0.0} : Seconds{timeOfDay(shown)} + fraction(date);
    };
    const date::local_seconds start = local(zone_, from);
    const date::local_seconds end = local(zone_, to);
    const std::int64_t days = (date::floor<date::days>(end) - date::floor<date::days>(start)).count();
    // A clock that is set back shows an earlier time later.
    return std::max<std::int64_t>(0, timeIn(to, end) < timeIn(from, start) ? days - 1 : days);
}

std::string Calendar::clockTime(Date date) const
{
    const date::hh_mm_ss<seconds> time{timeOfDay(local(zone_, date))};
    return fmt::format("{:02}:{:02}:{:02}", time.hours().count(), time.minutes().count(), time.seconds().count());
}

std::string Calendar::hourAndMinute(Date date) const
{
    const date::hh_mm_ss<seconds> time{timeOfDay(local(zone_, date))};
    return fmt::format("{:02}:{:02}", time.hours().count(), time.minutes().count());
}

} // namespace quellon
