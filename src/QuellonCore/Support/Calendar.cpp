#include "QuellonCore/Support/Calendar.h"

#include <date/tz.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <exception>

namespace quellon {

namespace {

const date::time_zone* find(const std::string& name)
{
    // The library reports a missing zone, and a missing database too, by throwing.
    try {
        return date::locate_zone(name);
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// The whole second that `date` lies in, held within the years 1 to 9999.
date::sys_seconds second(Date date)
{
    constexpr date::sys_seconds first = date::sys_days{date::year{1} / 1 / 1};
    constexpr date::sys_seconds last =
        date::sys_days{date::year{9999} / 12 / 31} + std::chrono::hours{24} - std::chrono::seconds{1};
    const double count = (date.time_since_epoch() + referenceDateSince1970).count();
    if (std::isnan(count)) return {};
    const double held = std::clamp(count, static_cast<double>(first.time_since_epoch().count()),
                                   static_cast<double>(last.time_since_epoch().count()));
    return date::sys_seconds{std::chrono::seconds{static_cast<std::int64_t>(std::floor(held))}};
}

} // namespace

Calendar::Calendar(const std::string& zoneName) : zone_(find(zoneName)) {}

std::string Calendar::clockTime(Date date) const
{
    const date::sys_seconds moment = second(date);
    const auto offset = zone_ != nullptr ? zone_->get_info(moment).offset : std::chrono::seconds{0};
    const date::sys_seconds local = moment + offset;
    const date::hh_mm_ss<std::chrono::seconds> time{local - date::floor<date::days>(local)};
    return fmt::format("{:02}:{:02}:{:02}", time.hours().count(), time.minutes().count(), time.seconds().count());
}

} // namespace quellon
