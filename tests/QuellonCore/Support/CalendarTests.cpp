#include "QuellonCore/Support/Calendar.h"
#include "QuellonCore/Support/Zones.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <optional>
#include <random>
#include <string>

namespace quellon {
namespace {

/// 2026-03-29 00:00:00 UTC; clocks in Germany go from 2 to 3 o'clock one hour later.
constexpr Date dayOfSummerTime{Seconds{1'774'742'400.0 - 978'307'200.0}};

TEST(Calendar, clockTime)
{
    using namespace std::chrono_literals;
    struct Case {
        const char* name;
        const char* zone;
        Date date;
        const char* text;
    };
    constexpr double huge = std::numeric_limits<double>::max();
    const Case cases[] = {
        {"the reference date", "UTC", Date{}, "00:00:00"},
        {"a fraction is dropped", "UTC", Date{Seconds{3661.999}}, "01:01:01"},
        {"below zero too", "UTC", Date{Seconds{-0.25}}, "23:59:59"},
        {"the last second before summer time", "Europe/Berlin", dayOfSummerTime + 1h - 1s, "01:59:59"},
        {"the first of summer time", "Europe/Berlin", dayOfSummerTime + 1h, "03:00:00"},
        {"a zone of three quarters of an hour", "Asia/Kathmandu", Date{}, "05:45:00"},
        {"west of Greenwich, the day before", "America/New_York", Date{}, "19:00:00"},
        {"an unknown zone is UTC", "Middle/Nowhere", Date{Seconds{60}}, "00:01:00"},
        {"an empty name is UTC", "", Date{Seconds{60}}, "00:01:00"},
        {"a path is no name", "../../etc/passwd", Date{Seconds{60}}, "00:01:00"},
        {"distant past", "UTC", distantPast, "00:00:00"},
        {"before all years", "UTC", Date{Seconds{-huge}}, "00:00:00"},
        {"after all years", "UTC", Date{Seconds{huge}}, "23:59:59"},
        {"no number", "UTC", Date{Seconds{std::numeric_limits<double>::quiet_NaN()}}, "00:00:00"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Calendar{std::string{c.zone}}.clockTime(c.date), c.text);
    }
    EXPECT_EQ(Calendar{}.clockTime(Date{Seconds{1}}), "00:00:01");
}

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = std::numeric_limits<double>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(Calendar, hourAndMinute)
{
    EXPECT_EQ(Calendar{}.hourAndMinute(Date{Seconds{3'659.999}}), "01:00");
    EXPECT_EQ(zone("Asia/Kathmandu").hourAndMinute(Date{}), "05:45");
    EXPECT_EQ(zone("Europe/Berlin").hourAndMinute(dayOfSummerTime + std::chrono::hours{1}), "03:00");
    EXPECT_EQ(Calendar{}.hourAndMinute(Date{Seconds{infinite}}), "23:59");
}

TEST(Calendar, momentOfUTC)
{
    struct Case {
        const char* name;
        CalendarDay day;
        double time;
        std::optional<double> seconds;
    };
    const Case cases[] = {
        {"the reference date", {2001, 1, 1}, 0, 0},
        {"a second before", {2000, 12, 31}, 86'399, -1},
        {"a fraction of a second", {2001, 1, 1}, 0.25, 0.25},
        {"the start of 1970", {1970, 1, 1}, 0, -978'307'200},
        {"a leap day", {2024, 2, 29}, 0, 730'857'600},
        {"the leap day of 2000", {2000, 2, 29}, 0, -26'524'800},
        {"the first day of all", {1, 1, 1}, 0, -63'113'904'000},
        {"the last second of all", {9999, 12, 31}, 86'399, 252'423'993'599},
        {"no leap year", {2026, 2, 29}, 0, std::nullopt},
        {"no leap year at a century", {2100, 2, 29}, 0, std::nullopt},
        {"a day that no year has", {2026, 2, 30}, 0, std::nullopt},
        {"day 0", {2026, 1, 0}, 0, std::nullopt},
        {"a negative day", {2026, 1, -1}, 0, std::nullopt},
        {"day 32", {2026, 1, 32}, 0, std::nullopt},
        {"day 257, which is 1 in a byte", {2026, 1, 257}, 0, std::nullopt},
        {"month 0", {2026, 0, 1}, 0, std::nullopt},
        {"month 13", {2026, 13, 1}, 0, std::nullopt},
        {"year 0", {0, 12, 31}, 0, std::nullopt},
        {"year 10000", {10'000, 1, 1}, 0, std::nullopt},
        {"24 o'clock", {2026, 1, 1}, 86'400, std::nullopt},
        {"before the day", {2026, 1, 1}, -0.5, std::nullopt},
        {"no number", {2026, 1, 1}, noNumber, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto moment = Calendar{}.moment(c.day, Seconds{c.time});
        EXPECT_EQ(moment, c.seconds ? std::optional{Date{Seconds{*c.seconds}}} : std::nullopt);
        if (moment) { EXPECT_EQ(Calendar{}.day(*moment), c.day); }
    }
}

TEST(Calendar, momentWhereTheClockChanges)
{
    struct Case {
        const char* name;
        const char* zone;
        CalendarDay day;
        int hour;
        int minute;
        double second;
        Date moment;
    };
    const Case cases[] = {
        {"before the gap", "Europe/Berlin", {2026, 3, 29}, 1, 59, 59.5, utc(2026, 3, 29, 0, 59, 59.5)},
        {"first of the gap", "Europe/Berlin", {2026, 3, 29}, 2, 0, 0, utc(2026, 3, 29, 1)},
        {"in the gap, without the fraction", "Europe/Berlin", {2026, 3, 29}, 2, 30, 0.5, utc(2026, 3, 29, 1)},
        {"behind the gap", "Europe/Berlin", {2026, 3, 29}, 3, 0, 0.5, utc(2026, 3, 29, 1, 0, 0.5)},
        {"before the hour that occurs twice", "Europe/Berlin", {2026, 10, 25}, 1, 59, 0, utc(2026, 10, 24, 23, 59)},
        {"first of the hour that occurs twice", "Europe/Berlin", {2026, 10, 25}, 2, 0, 0, utc(2026, 10, 25, 0)},
        {"the first of two", "Europe/Berlin", {2026, 10, 25}, 2, 30, 0.5, utc(2026, 10, 25, 0, 30, 0.5)},
        {"behind the two", "Europe/Berlin", {2026, 10, 25}, 3, 0, 0, utc(2026, 10, 25, 2)},
        {"a midnight that is skipped", "America/Santiago", {2026, 9, 6}, 0, 0, 0, utc(2026, 9, 6, 4)},
        {"after it", "America/Santiago", {2026, 9, 6}, 1, 0, 0, utc(2026, 9, 6, 4)},
        {"before it", "America/Santiago", {2026, 9, 5}, 23, 59, 59, utc(2026, 9, 6, 3, 59, 59)},
        {"midnight after an hour that occurs twice", "America/Santiago", {2026, 4, 5}, 0, 0, 0, utc(2026, 4, 5, 4)},
        {"the hour before", "America/Santiago", {2026, 4, 4}, 23, 30, 0, utc(2026, 4, 5, 2, 30)},
        {"a skipped midnight in Paraguay", "America/Asuncion", {2024, 10, 6}, 0, 0, 0, utc(2024, 10, 6, 4)},
        {"a skipped midnight in Egypt", "Africa/Cairo", {2026, 4, 24}, 0, 0, 0, utc(2026, 4, 23, 22)},
        {"the hour that occurs twice in Egypt", "Africa/Cairo", {2026, 10, 29}, 23, 15, 0, utc(2026, 10, 29, 20, 15)},
        {"a skipped midnight in Lebanon", "Asia/Beirut", {2026, 3, 29}, 0, 15, 0, utc(2026, 3, 28, 22)},
        {"the hour before midnight is skipped", "America/Nuuk", {2026, 3, 28}, 23, 30, 0, utc(2026, 3, 29, 1)},
        {"its midnight exists", "America/Nuuk", {2026, 3, 29}, 0, 0, 0, utc(2026, 3, 29, 1)},
        {"a gap of half an hour", "Australia/Lord_Howe", {2026, 10, 4}, 2, 15, 0, utc(2026, 10, 3, 15, 30)},
        {"an offset of three quarters", "Asia/Kathmandu", {2026, 1, 1}, 0, 0, 0, utc(2025, 12, 31, 18, 15)},
        {"before Nepal changed it", "Asia/Kathmandu", {1985, 12, 31}, 0, 0, 0, utc(1985, 12, 30, 18, 30)},
        {"the midnight that Nepal skipped", "Asia/Kathmandu", {1986, 1, 1}, 0, 0, 0, utc(1985, 12, 31, 18, 30)},
        {"behind Nepal's gap", "Asia/Kathmandu", {1986, 1, 1}, 0, 20, 0, utc(1985, 12, 31, 18, 35)},
        {"a day that was left out", "Pacific/Apia", {2011, 12, 30}, 0, 0, 0, utc(2011, 12, 30, 10)},
        {"its noon", "Pacific/Apia", {2011, 12, 30}, 12, 0, 0, utc(2011, 12, 30, 10)},
        {"the last second before", "Pacific/Apia", {2011, 12, 29}, 23, 59, 59, utc(2011, 12, 30, 9, 59, 59)},
        {"the day behind", "Pacific/Apia", {2011, 12, 31}, 0, 0, 0, utc(2011, 12, 30, 10)},
        {"a midnight that occurs twice", "America/St_Johns", {2006, 10, 29}, 0, 0, 0, utc(2006, 10, 29, 2, 30)},
        {"just behind it, the clock shows the day before",
         "America/St_Johns",
         {2006, 10, 29},
         0,
         1,
         0,
         utc(2006, 10, 29, 3, 31)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Seconds time = std::chrono::hours{c.hour} + std::chrono::minutes{c.minute} + Seconds{c.second};
        EXPECT_EQ(zone(c.zone).moment(c.day, time), c.moment);
    }
}

TEST(Calendar, dayAndItsStart)
{
    struct Case {
        const char* name;
        const char* zone;
        Date date;
        CalendarDay day;
        Date start;
    };
    const Case cases[] = {
        {"the last second of a year", "UTC", utc(2026, 12, 31, 23, 59, 59.9), {2026, 12, 31}, utc(2026, 12, 31)},
        {"the first of the next", "UTC", utc(2027, 1, 1), {2027, 1, 1}, utc(2027, 1, 1)},
        {"the next year in the east", "Pacific/Apia", utc(2026, 12, 31, 11), {2027, 1, 1}, utc(2026, 12, 31, 11)},
        {"the year before in the west", "America/Santiago", utc(2027, 1, 1, 2), {2026, 12, 31}, utc(2026, 12, 31, 3)},
        {"a leap day", "Europe/Berlin", utc(2028, 2, 29, 12), {2028, 2, 29}, utc(2028, 2, 28, 23)},
        {"a day of 23 hours", "Europe/Berlin", utc(2026, 3, 29, 12), {2026, 3, 29}, utc(2026, 3, 28, 23)},
        {"a day of 25 hours", "Europe/Berlin", utc(2026, 10, 25, 22, 59), {2026, 10, 25}, utc(2026, 10, 24, 22)},
        {"first of a day without midnight", "America/Santiago", utc(2026, 9, 6, 4), {2026, 9, 6}, utc(2026, 9, 6, 4)},
        {"before that", "America/Santiago", utc(2026, 9, 6, 3, 59, 59.9), {2026, 9, 5}, utc(2026, 9, 5, 4)},
        {"in the second 23 o'clock", "Africa/Cairo", utc(2026, 10, 29, 21, 30), {2026, 10, 29}, utc(2026, 10, 28, 21)},
        {"behind a day left out", "Pacific/Apia", utc(2011, 12, 30, 10), {2011, 12, 31}, utc(2011, 12, 30, 10)},
        {"before it", "Pacific/Apia", utc(2011, 12, 30, 9, 59, 59), {2011, 12, 29}, utc(2011, 12, 29, 10)},
        {"before all years",
         "Europe/Berlin",
         Date{Seconds{-huge}},
         {1, 1, 1},
         zone("Europe/Berlin").moment({1, 1, 1}).value()},
        {"after all years", "UTC", Date{Seconds{infinite}}, {9999, 12, 31}, utc(9999, 12, 31)},
        {"no number", "UTC", Date{Seconds{noNumber}}, {1970, 1, 1}, utc(1970, 1, 1)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Calendar calendar = zone(c.zone);
        EXPECT_EQ(calendar.day(c.date), c.day);
        EXPECT_EQ(calendar.startOfDay(c.date), c.start);
    }
}

TEST(Calendar, addingDays)
{
    struct Case {
        const char* name;
        const char* zone;
        Date date;
        std::int64_t days;
        std::optional<Date> later;
    };
    const Case cases[] = {
        {"none", "Europe/Berlin", utc(2026, 1, 1, 5, 0, 0.125), 0, utc(2026, 1, 1, 5, 0, 0.125)},
        {"none from the second of two", "Europe/Berlin", utc(2026, 10, 25, 1, 30), 0, utc(2026, 10, 25, 1, 30)},
        {"the fraction is kept", "UTC", utc(2026, 1, 31, 5, 0, 0.125), 1, utc(2026, 2, 1, 5, 0, 0.125)},
        {"and before the reference date", "UTC", utc(2000, 3, 1, 5, 0, 0.125), -1, utc(2000, 2, 29, 5, 0, 0.125)},
        {"over a day of 23 hours", "Europe/Berlin", utc(2026, 3, 28, 11), 1, utc(2026, 3, 29, 10)},
        {"over a day of 25 hours", "Europe/Berlin", utc(2026, 10, 24, 10), 1, utc(2026, 10, 25, 11)},
        {"back over it", "Europe/Berlin", utc(2026, 10, 25, 11), -1, utc(2026, 10, 24, 10)},
        {"into a gap", "Europe/Berlin", utc(2026, 3, 28, 1, 30, 0.5), 1, utc(2026, 3, 29, 1)},
        {"to the first of two", "Europe/Berlin", utc(2026, 10, 24, 0, 30), 1, utc(2026, 10, 25, 0, 30)},
        {"midnight to a skipped midnight", "America/Santiago", utc(2026, 9, 5, 4), 1, utc(2026, 9, 6, 4)},
        {"over it", "America/Santiago", utc(2026, 9, 5, 4), 2, utc(2026, 9, 7, 3)},
        {"to a day that was left out", "Pacific/Apia", utc(2011, 12, 29, 22), 1, utc(2011, 12, 30, 10)},
        {"over it", "Pacific/Apia", utc(2011, 12, 29, 22), 2, utc(2011, 12, 30, 22)},
        {"back over it", "Pacific/Apia", utc(2011, 12, 30, 22), -2, utc(2011, 12, 29, 22)},
        {"400 back over a leap day", "UTC", utc(2025, 3, 1, 12), -400, utc(2024, 1, 26, 12)},
        {"to the last day of all", "UTC", utc(9999, 12, 30, 12), 1, utc(9999, 12, 31, 12)},
        {"beyond it", "UTC", utc(9999, 12, 31, 12), 1, std::nullopt},
        {"before the first", "UTC", utc(1, 1, 1), -1, std::nullopt},
        {"more than there are", "UTC", utc(2026, 1, 1), std::numeric_limits<std::int64_t>::max(), std::nullopt},
        {"less than there are", "UTC", utc(2026, 1, 1), std::numeric_limits<std::int64_t>::min(), std::nullopt},
        {"from no number", "UTC", Date{Seconds{noNumber}}, 1, utc(1970, 1, 2)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(zone(c.zone).addingDays(c.date, c.days), c.later);
    }
}

TEST(Calendar, addingMonths)
{
    struct Case {
        const char* name;
        const char* zone;
        Date date;
        std::int64_t months;
        std::optional<Date> later;
    };
    const Case cases[] = {
        {"none", "UTC", utc(2026, 1, 31, 5, 0, 0.125), 0, utc(2026, 1, 31, 5, 0, 0.125)},
        {"none from the second of two", "Europe/Berlin", utc(2026, 10, 25, 1, 30), 0, utc(2026, 10, 25, 1, 30)},
        {"one, with the fraction", "UTC", utc(2026, 1, 15, 5, 0, 0.125), 1, utc(2026, 2, 15, 5, 0, 0.125)},
        {"to a shorter month", "UTC", utc(2026, 1, 31), 1, utc(2026, 2, 28)},
        {"to the leap day", "UTC", utc(2028, 1, 31), 1, utc(2028, 2, 29)},
        {"back to a shorter month", "UTC", utc(2026, 3, 29), -1, utc(2026, 2, 28)},
        {"over the end of the year", "UTC", utc(2026, 12, 5), 1, utc(2027, 1, 5)},
        {"back over it", "UTC", utc(2027, 1, 5), -1, utc(2026, 12, 5)},
        {"a year from December", "UTC", utc(2026, 12, 5), 12, utc(2027, 12, 5)},
        {"a year from a leap day", "UTC", utc(2024, 2, 29), 12, utc(2025, 2, 28)},
        {"13 back", "UTC", utc(2026, 1, 5), -13, utc(2024, 12, 5)},
        {"midnight into summer time", "Europe/Berlin", utc(2026, 3, 14, 23), 1, utc(2026, 4, 14, 22)},
        {"midnight out of it", "Europe/Berlin", utc(2026, 10, 14, 22), 1, utc(2026, 11, 14, 23)},
        {"to a skipped midnight", "Africa/Cairo", utc(2026, 3, 23, 22), 1, utc(2026, 4, 23, 22)},
        {"to a day that was left out", "Pacific/Apia", utc(2011, 11, 30, 22), 1, utc(2011, 12, 30, 10)},
        {"to the last month of all", "UTC", utc(9999, 11, 30), 1, utc(9999, 12, 30)},
        {"beyond it", "UTC", utc(9999, 12, 1), 1, std::nullopt},
        {"before the first", "UTC", utc(1, 1, 31), -1, std::nullopt},
        {"long before the first", "UTC", utc(1, 1, 31), -100, std::nullopt},
        {"more than there are", "UTC", utc(2026, 1, 1), std::numeric_limits<std::int64_t>::max(), std::nullopt},
        {"less than there are", "UTC", utc(2026, 1, 1), std::numeric_limits<std::int64_t>::min(), std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(zone(c.zone).addingMonths(c.date, c.months), c.later);
    }
}

TEST(Calendar, addingSeconds)
{
    struct Case {
        const char* name;
        Date date;
        std::int64_t seconds;
        std::optional<Date> later;
    };
    const Case cases[] = {
        {"none", utc(2026, 1, 1, 0, 0, 0.25), 0, utc(2026, 1, 1, 0, 0, 0.25)},
        {"over a gap", utc(2026, 3, 29, 0, 59, 59.5), 1, utc(2026, 3, 29, 1, 0, 0.5)},
        {"back", utc(2026, 3, 29, 1), -1, utc(2026, 3, 29, 0, 59, 59)},
        {"to the last second", utc(9999, 12, 31, 22, 59, 58), 1, utc(9999, 12, 31, 22, 59, 59)},
        {"beyond it", utc(9999, 12, 31, 22, 59, 59), 1, std::nullopt},
        {"beyond the reach of a count", utc(2026, 1, 1), std::numeric_limits<std::int64_t>::max(), std::nullopt},
        {"before the first year", utc(2026, 1, 1), std::numeric_limits<std::int64_t>::min(), std::nullopt},
        {"from infinity", Date{Seconds{infinite}}, 1, std::nullopt},
        {"from no number", Date{Seconds{noNumber}}, 1, utc(1970, 1, 1, 0, 0, 1)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(zone("Europe/Berlin").addingSeconds(c.date, c.seconds), c.later);
    }
}

TEST(Calendar, wholeDays)
{
    struct Case {
        const char* name;
        const char* zone;
        Date from;
        Date to;
        std::int64_t days;
    };
    const Case cases[] = {
        {"none", "UTC", utc(2026, 1, 1, 7), utc(2026, 1, 1, 7), 0},
        {"a day less a moment", "UTC", utc(2026, 1, 1, 7, 0, 0.25), utc(2026, 1, 2, 7), 0},
        {"a day", "UTC", utc(2026, 1, 1, 7, 0, 0.25), utc(2026, 1, 2, 7, 0, 0.25), 1},
        {"back a day less a moment", "UTC", utc(2026, 1, 2, 7), utc(2026, 1, 1, 7, 0, 0.25), 0},
        {"back a day", "UTC", utc(2026, 1, 2, 7), utc(2026, 1, 1, 7), -1},
        {"back a day and a bit", "UTC", utc(2026, 1, 2, 7), utc(2026, 1, 1, 6), -1},
        {"a leap year", "UTC", utc(2024, 1, 1), utc(2025, 1, 1), 366},
        {"over a day of 23 hours", "Europe/Berlin", utc(2026, 3, 28, 23), utc(2026, 3, 29, 22), 1},
        {"a moment less", "Europe/Berlin", utc(2026, 3, 28, 23), utc(2026, 3, 29, 21, 59, 59), 0},
        {"over a day of 25 hours", "Europe/Berlin", utc(2026, 10, 24, 22), utc(2026, 10, 25, 23), 1},
        {"24 hours of it", "Europe/Berlin", utc(2026, 10, 24, 22), utc(2026, 10, 25, 22), 0},
        {"from the first to the second of two", "Europe/Berlin", utc(2026, 10, 25, 0, 30), utc(2026, 10, 25, 1), 0},
        {"from a skipped midnight", "America/Santiago", utc(2026, 9, 6, 4), utc(2026, 9, 7, 3), 1},
        {"to a skipped midnight, from the hour it lacks", "America/Santiago", utc(2026, 9, 5, 4, 30),
         utc(2026, 9, 6, 4), 0},
        {"from the midnight before", "America/Santiago", utc(2026, 9, 5, 4), utc(2026, 9, 6, 4), 1},
        {"to behind a skipped hour, from in it", "America/Nuuk", utc(2026, 3, 28, 1, 30), utc(2026, 3, 29, 1), 1},
        {"over a day that was left out", "Pacific/Apia", utc(2011, 12, 29, 10), utc(2011, 12, 30, 10), 2},
        {"after all years", "UTC", utc(9999, 12, 30), Date{Seconds{infinite}}, 1},
        {"from before all years to after", "UTC", Date{Seconds{-huge}}, Date{Seconds{huge}}, 3'652'058},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(zone(c.zone).wholeDays(c.from, c.to), c.days);
    }
}

/// Random moments of 30 years, and as many that lie within two days of a change of some zone's clock.
template <typename Check>
void forMoments(int count, const Check& check)
{
    const Date changes[] = {utc(2026, 3, 29), utc(2026, 10, 25), utc(2026, 9, 6),   utc(2026, 4, 5),
                            utc(2026, 4, 24), utc(2026, 10, 29), utc(2011, 12, 30), utc(1985, 12, 31, 18),
                            utc(1993, 8, 21), utc(2006, 10, 29), utc(2024, 10, 6),  utc(2024, 2, 29)};
    std::mt19937_64 random{20'260'329};
    std::uniform_int_distribution<std::int64_t> anywhere{-200'000'000, 750'000'000};
    std::uniform_int_distribution<std::int64_t> nearby{-172'800, 172'800};
    for (int i = 0; i < count; ++i) {
        check(Date{Seconds{static_cast<double>(anywhere(random)) + 0.5}});
        check(changes[random() % std::size(changes)] + Seconds{static_cast<double>(nearby(random))});
    }
}

TEST(Calendar, aLocalTimeGivesTheFirstMomentThatShowsIt)
{
    for (const char* name : trickyZones) {
        SCOPED_TRACE(name);
        const Calendar calendar = zone(name);
        forMoments(300, [&calendar](Date date) {
            const CalendarDay day = calendar.day(date);
            const std::string time = calendar.clockTime(date);
            const Seconds timeOfDay{std::stoi(time.substr(0, 2)) * 3600.0 + std::stoi(time.substr(3, 2)) * 60.0 +
                                    std::stoi(time.substr(6, 2))};
            const Date first = calendar.moment(day, timeOfDay).value();
            EXPECT_EQ(calendar.day(first), day);
            EXPECT_EQ(calendar.clockTime(first), time);
            EXPECT_LE(first, date);
            EXPECT_LT(date - first, std::chrono::hours{1} + std::chrono::seconds{1}) << "clocks go back by an hour";
        });
    }
}

TEST(Calendar, aDayStartsWithItsFirstMoment)
{
    for (const char* name : trickyZones) {
        SCOPED_TRACE(name);
        const Calendar calendar = zone(name);
        forMoments(300, [&calendar](Date date) {
            const Date start = calendar.startOfDay(date);
            EXPECT_LE(start, date);
            EXPECT_EQ(calendar.day(start), calendar.day(date));
            EXPECT_LT(calendar.day(start - Seconds{1.0}), calendar.day(date));
            EXPECT_EQ(calendar.startOfDay(start), start);
        });
    }
}

TEST(Calendar, moreDaysAreNeverEarlier)
{
    for (const char* name : trickyZones) {
        SCOPED_TRACE(name);
        const Calendar calendar = zone(name);
        forMoments(60, [&calendar](Date date) {
            for (std::int64_t days = -3; days < 3; ++days)
                EXPECT_LE(calendar.addingDays(date, days).value(), calendar.addingDays(date, days + 1).value());
        });
    }
}

} // namespace
} // namespace quellon
