#include "ReplayFields.h"

#include "QuellonCore/Support/Numbers.h"

#include <date/date.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace quellon {

namespace {

using std::chrono::hours;
using std::chrono::minutes;

/// Takes so many digits off the front; absent when they are not there.
std::optional<int> takeDigits(std::string_view& rest, std::size_t count)
{
    const std::string_view digits = rest.substr(0, count);
    const bool areDigits = std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (digits.size() < count || !areDigits) return std::nullopt;
    rest.remove_prefix(count);
    return parseWhole<int>(digits);
}

bool take(std::string_view& rest, char expected)
{
    if (!rest.starts_with(expected)) return false;
    rest.remove_prefix(1);
    return true;
}

/// "10:00" in hours and minutes of a day.
std::optional<minutes> takeHourAndMinute(std::string_view& rest)
{
    constexpr int hoursOfDay = 24;
    constexpr int minutesOfHour = 60;
    const auto hour = takeDigits(rest, 2);
    if (!hour || !take(rest, ':')) return std::nullopt;
    const auto minute = takeDigits(rest, 2);
    if (!minute || *hour >= hoursOfDay || *minute >= minutesOfHour) return std::nullopt;
    return hours{*hour} + minutes{*minute};
}

std::optional<date::sys_days> takeDay(std::string_view& rest)
{
    const auto year = takeDigits(rest, 4);
    if (!year || !take(rest, '-')) return std::nullopt;
    const auto month = takeDigits(rest, 2);
    if (!month || !take(rest, '-')) return std::nullopt;
    const auto day = takeDigits(rest, 2);
    if (!day) return std::nullopt;
    const date::year_month_day result{date::year{*year}, date::month{static_cast<unsigned>(*month)},
                                      date::day{static_cast<unsigned>(*day)}};
    if (!result.ok() || *year == 0) return std::nullopt;
    return date::sys_days{result};
}

/// ":00" or ":00.25" in seconds of a minute.
std::optional<Seconds> takeSeconds(std::string_view& rest)
{
    constexpr int secondsOfMinute = 60;
    constexpr double digitWorth = 10.0;
    if (!take(rest, ':')) return std::nullopt;
    const auto whole = takeDigits(rest, 2);
    if (!whole || *whole >= secondsOfMinute) return std::nullopt;
    double seconds = *whole;
    if (!take(rest, '.')) return Seconds{seconds};
    double scale = 1.0;
    double fraction = 0.0;
    auto digit = takeDigits(rest, 1);
    if (!digit) return std::nullopt;
    for (; digit; digit = takeDigits(rest, 1)) {
        fraction = fraction * digitWorth + *digit;
        scale *= digitWorth;
    }
    seconds += fraction / scale;
    return Seconds{seconds};
}

/// "Z" or "+01:00", as what is to be taken off to get UTC.
std::optional<minutes> takeOffset(std::string_view& rest)
{
    if (take(rest, 'Z')) return minutes{0};
    const bool west = rest.starts_with('-');
    if (!west && !rest.starts_with('+')) return std::nullopt;
    rest.remove_prefix(1);
    const auto offset = takeHourAndMinute(rest);
    return offset ? std::optional{west ? -*offset : *offset} : std::nullopt;
}

} // namespace

std::optional<Date> parseIsoDate(std::string_view text)
{
    const auto day = takeDay(text);
    if (!day || !take(text, 'T')) return std::nullopt;
    const auto time = takeHourAndMinute(text);
    if (!time) return std::nullopt;
    const auto seconds = takeSeconds(text);
    if (!seconds) return std::nullopt;
    const auto offset = takeOffset(text);
    if (!offset || !text.empty()) return std::nullopt;
    return Date{Seconds{(*day + *time - *offset).time_since_epoch()} + *seconds - referenceDateSince1970};
}

ReplayFields::ReplayFields(const Json& json, std::string what) : json_{json}, what_{std::move(what)}
{
    if (!json.is_object()) refuse("not an object");
}

const Json& ReplayFields::requiredJson(const char* key)
{
    const Json* json = optionalJson(key);
    if (json == nullptr) refuse("\"" + std::string{key} + "\" is missing");
    return *json;
}

const Json* ReplayFields::optionalJson(const char* key)
{
    asked_.insert(key);
    const auto found = json_.find(key);
    return found != json_.end() ? &*found : nullptr;
}

Date ReplayFields::requiredDate(const char* key)
{
    const auto date = parseIsoDate(required<std::string>(key));
    if (!date) refuse("\"" + std::string{key} + "\" is no date like 2026-03-15T10:00:00Z");
    return *date;
}

Seconds ReplayFields::duration(const char* key, const Json& json) const
{
    constexpr Seconds most = hours{24 * 365 * 100};
    const auto seconds = read<Seconds>(key, json);
    if (!(seconds >= Seconds{0.0}) || seconds > most) {
        refuse("\"" + std::string{key} + "\" is no number of seconds from 0 to a hundred years");
    }
    return seconds;
}

void ReplayFields::finish() const
{
    for (const auto& [key, value] : json_.items()) {
        if (!asked_.contains(key)) refuse("\"" + key + "\" is not known");
    }
}

void ReplayFields::refuse(const std::string& why) const
{
    throw ReplayError{what_ + ": " + why};
}

} // namespace quellon
