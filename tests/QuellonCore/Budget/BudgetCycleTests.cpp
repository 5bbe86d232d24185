#include "QuellonCore/Budget/BudgetStore.h"
#include "QuellonCore/Support/Zones.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <string>

namespace quellon {
namespace {

BudgetStore startingOn(std::int64_t day)
{
    BudgetStore store;
    store.billingCycleStartDay = day;
    return store;
}

TEST(BudgetStore, startDayStaysWithin1To28)
{
    struct Case {
        const char* name;
        std::int64_t set;
        std::int64_t kept;
    };
    constexpr Case cases[] = {
        {"0", 0, 1},
        {"1", 1, 1},
        {"17", 17, 17},
        {"28", 28, 28},
        {"29", 29, 28},
        {"31", 31, 28},
        {"negative", -5, 1},
        {"the largest number", std::numeric_limits<std::int64_t>::max(), 28},
        {"the smallest", std::numeric_limits<std::int64_t>::min(), 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const BudgetStore constructed{30.0, c.set, {}, 0, {}, 0, {}};
        EXPECT_EQ(constructed.billingCycleStartDay, c.kept) << "by construction";
        EXPECT_EQ(startingOn(c.set).billingCycleStartDay, c.kept) << "by assignment";
    }
    EXPECT_EQ(BudgetStore{}.billingCycleStartDay, 1);
}

TEST(BudgetStore, dayKey)
{
    struct Case {
        const char* name;
        const char* zone;
        Date date;
        const char* key;
    };
    const Case cases[] = {
        {"the last moment of a year", "UTC", utc(2026, 12, 31, 23, 59, 59.9), "2026-12-31"},
        {"the first of the next", "UTC", utc(2027, 1, 1), "2027-01-01"},
        {"the day is the local one", "Asia/Kathmandu", utc(2026, 12, 31, 18, 15), "2027-01-01"},
        {"a leap day", "Europe/Berlin", utc(2028, 2, 29, 22, 59), "2028-02-29"},
        {"behind a day that was left out", "Pacific/Apia", utc(2011, 12, 30, 10), "2011-12-31"},
        {"four digits", "UTC", utc(7, 8, 9), "0007-08-09"},
        {"before all years", "UTC", Date{Seconds{-1e300}}, "0001-01-01"},
        {"after all years", "UTC", Date{Seconds{1e300}}, "9999-12-31"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(BudgetStore::dayKey(c.date, zone(c.zone)), c.key);
    }
}

TEST(BudgetStore, cycleStartAndEnd)
{
    struct Case {
        const char* name;
        const char* zone;
        int startDay;
        Date now;
        Date start;
        Date end;
    };
    const Case cases[] = {
        {"start day 1, on the first at midnight", "UTC", 1, utc(2026, 3, 1), utc(2026, 3, 1), utc(2026, 4, 1)},
        {"start day 1, the last moment of a month", "UTC", 1, utc(2026, 3, 31, 23, 59, 59.9), utc(2026, 3, 1),
         utc(2026, 4, 1)},
        {"start day 20, on the 15th", "UTC", 20, utc(2026, 3, 15, 12), utc(2026, 2, 20), utc(2026, 3, 20)},
        {"start day 20, a moment before the 20th", "UTC", 20, utc(2026, 3, 19, 23, 59, 59.9), utc(2026, 2, 20),
         utc(2026, 3, 20)},
        {"start day 20, on the 20th", "UTC", 20, utc(2026, 3, 20), utc(2026, 3, 20), utc(2026, 4, 20)},
        {"start day 28, on 27 February", "UTC", 28, utc(2026, 2, 27, 12), utc(2026, 1, 28), utc(2026, 2, 28)},
        {"start day 28, on 28 February", "UTC", 28, utc(2026, 2, 28), utc(2026, 2, 28), utc(2026, 3, 28)},
        {"start day 28, on a leap day", "UTC", 28, utc(2028, 2, 29, 12), utc(2028, 2, 28), utc(2028, 3, 28)},
        {"over the end of a year", "UTC", 15, utc(2026, 12, 31, 23, 59, 59), utc(2026, 12, 15), utc(2027, 1, 15)},
        {"early in January", "UTC", 15, utc(2027, 1, 14, 23, 59, 59), utc(2026, 12, 15), utc(2027, 1, 15)},
        {"into summer time", "Europe/Berlin", 15, utc(2026, 3, 20), utc(2026, 3, 14, 23), utc(2026, 4, 14, 22)},
        {"out of summer time", "Europe/Berlin", 15, utc(2026, 10, 20), utc(2026, 10, 14, 22), utc(2026, 11, 14, 23)},
        {"by local days", "Asia/Kathmandu", 1, utc(2026, 2, 28, 18, 15), utc(2026, 2, 28, 18, 15),
         utc(2026, 3, 31, 18, 15)},
        {"from a skipped midnight", "America/Santiago", 6, utc(2026, 9, 6, 4), utc(2026, 9, 6, 4), utc(2026, 10, 6, 3)},
        {"to a skipped midnight", "America/Santiago", 6, utc(2026, 9, 6, 3, 59, 59), utc(2026, 8, 6, 4),
         utc(2026, 9, 6, 4)},
        {"to the midnight after an hour shown twice", "America/Santiago", 5, utc(2026, 4, 5, 3, 30), utc(2026, 3, 5, 3),
         utc(2026, 4, 5, 4)},
        {"to a skipped midnight in Egypt", "Africa/Cairo", 24, utc(2026, 4, 23, 21, 59), utc(2026, 3, 23, 22),
         utc(2026, 4, 23, 22)},
        {"from it", "Africa/Cairo", 24, utc(2026, 4, 23, 22), utc(2026, 4, 23, 22), utc(2026, 5, 23, 21)},
        {"over a day that was left out", "Pacific/Apia", 15, utc(2011, 12, 30, 10), utc(2011, 12, 15, 10),
         utc(2012, 1, 14, 10)},
        {"from a start day that was left out", "Pacific/Kwajalein", 21, utc(1993, 8, 21, 12), utc(1993, 8, 21, 12),
         utc(1993, 9, 20, 12)},
        {"the clock shows the day before once more", "America/St_Johns", 28, utc(2006, 10, 29, 2, 45),
         utc(2006, 10, 28, 2, 30), utc(2006, 11, 28, 3, 30)},
        {"before the first cycle of all", "UTC", 20, utc(1, 1, 5), utc(1, 1, 20), utc(1, 2, 20)},
        {"in the last month of all", "UTC", 20, utc(9999, 12, 25), utc(9999, 12, 20), utc(9999, 12, 20)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Calendar calendar = zone(c.zone);
        EXPECT_EQ(startingOn(c.startDay).cycleStart(c.now, calendar), c.start);
        EXPECT_EQ(startingOn(c.startDay).cycleEnd(c.now, calendar), c.end);
    }
}

TEST(BudgetStore, theDayOfTheMonthSaysWhenTheCycleBegan)
{
    std::mt19937_64 random{30};
    for (const char* name : trickyZones) {
        SCOPED_TRACE(name);
        const Calendar calendar = zone(name);
        for (int i = 0; i < 200; ++i) {
            // From 2012 on none of these clocks goes back over midnight.
            const Date now = utc(2012, 1, 2) + Seconds{static_cast<double>(random() % 473'385'600)};
            const int startDay = 1 + static_cast<int>(random() % 28);
            CalendarDay first = calendar.day(now);
            if (first.day < startDay) first.month -= 1;
            if (first.month == 0) first = {first.year - 1, 12, 0};
            first.day = startDay;
            const Date start = startingOn(startDay).cycleStart(now, calendar);
            EXPECT_EQ(calendar.day(start), first);
            EXPECT_EQ(calendar.startOfDay(start), start);
        }
    }
}

/// That the cycle of `now` holds it, and that its neighbours meet it without a gap or an overlap.
void expectOneCycle(const BudgetStore& store, Date now, const Calendar& calendar)
{
    const Date start = store.cycleStart(now, calendar);
    const Date end = store.cycleEnd(now, calendar);
    ASSERT_LE(start, now);
    ASSERT_LT(now, end);
    const Seconds moment{0.25};
    EXPECT_EQ(store.cycleStart(start, calendar), start);
    EXPECT_EQ(store.cycleEnd(start, calendar), end);
    EXPECT_EQ(store.cycleStart(end - moment, calendar), start);
    EXPECT_EQ(store.cycleEnd(end - moment, calendar), end);
    EXPECT_EQ(store.cycleStart(end, calendar), end);
    EXPECT_EQ(store.cycleEnd(start - moment, calendar), start);
    EXPECT_EQ(calendar.startOfDay(start), start);
}

TEST(BudgetStore, cyclesPartitionTime)
{
    constexpr int years[] = {1985, 1993, 2006, 2011, 2023, 2024, 2025, 2026};
    std::mt19937_64 random{28};
    for (const char* name : trickyZones) {
        const Calendar calendar = zone(name);
        for (std::int64_t startDay = 1; startDay <= 28; ++startDay) {
            SCOPED_TRACE(std::string{name} + ", start day " + std::to_string(startDay));
            const BudgetStore store = startingOn(startDay);
            Date now =
                utc(years[random() % std::size(years)], 1, 1) + Seconds{static_cast<double>(random() % 31'536'000)};
            for (int month = 0; month < 7; ++month) {
                expectOneCycle(store, now, calendar);
                now = store.cycleEnd(now, calendar) + Seconds{static_cast<double>(random() % 2'332'800)};
            }
        }
    }
}

TEST(BudgetStore, cyclesPartitionTimeWhereClocksChange)
{
    struct Change {
        const char* zone;
        Date at;
        int day;
    };
    const Change changes[] = {
        {"Europe/Berlin", utc(2026, 3, 29, 1), 28},       {"America/Santiago", utc(2026, 4, 5, 3), 5},
        {"America/Santiago", utc(2026, 9, 6, 4), 6},      {"America/Asuncion", utc(2024, 10, 6, 4), 6},
        {"Asia/Kathmandu", utc(1985, 12, 31, 18, 30), 1}, {"Africa/Cairo", utc(2026, 4, 23, 22), 24},
        {"Africa/Cairo", utc(2023, 10, 26, 21), 27},      {"Asia/Beirut", utc(2026, 10, 24, 21), 25},
        {"America/Nuuk", utc(2025, 10, 26, 1), 26},       {"America/St_Johns", utc(2007, 11, 4, 2, 31), 4},
        {"America/St_Johns", utc(2009, 11, 1, 2, 31), 1}, {"Pacific/Kwajalein", utc(1993, 8, 21, 12), 21},
        {"Pacific/Apia", utc(2011, 12, 30, 10), 28},
    };
    std::mt19937_64 random{29};
    std::uniform_int_distribution<std::int64_t> seconds{-100'000, 100'000};
    for (const auto& change : changes) {
        const Calendar calendar = zone(change.zone);
        for (int startDay = change.day - 1; startDay <= change.day + 1; ++startDay) {
            SCOPED_TRACE(std::string{change.zone} + ", start day " + std::to_string(startDay));
            const BudgetStore store = startingOn(startDay);
            for (int i = 0; i < 60; ++i)
                expectOneCycle(store, change.at + Seconds{static_cast<double>(seconds(random))}, calendar);
            expectOneCycle(store, change.at, calendar);
            expectOneCycle(store, change.at - Seconds{0.25}, calendar);
        }
    }
}

} // namespace
} // namespace quellon
