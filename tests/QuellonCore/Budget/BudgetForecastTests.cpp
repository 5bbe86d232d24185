#include "QuellonCore/Budget/BudgetStore.h"
#include "QuellonCore/Support/Zones.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// What a ledger says about its cycle: how much is used, when the rest will be gone, what today may use.
namespace quellon {
namespace {

constexpr std::uint64_t gigabyte = 1'073'741'824;

BudgetStore store(double planGB, std::int64_t startDay, std::vector<DayUsage> days = {}, std::int64_t offset = 0)
{
    return {planGB, startDay, std::move(days), offset, {}, 0, {}};
}

TEST(BudgetStore, statusOfAnEmptyStore)
{
    const BudgetStatus status = store(31, 1).status(utc(2026, 3, 1, 12), Calendar{});
    EXPECT_EQ(status, (BudgetStatus{0, 31 * gigabyte, utc(2026, 3, 1), utc(2026, 4, 1), 30, std::nullopt, 0}));
    // 30 whole days are left, and today
    EXPECT_EQ(store(31, 1).dailyStatus(utc(2026, 3, 1, 12), Calendar{}), (DailyBudgetStatus{0, gigabyte}));
}

TEST(BudgetStore, usedBytes)
{
    struct Case {
        const char* name;
        std::vector<DayUsage> days;
        std::int64_t offset;
        std::uint64_t used;
    };
    const Case cases[] = {
        {"nothing", {}, 0, 0},
        {"first and last day of the cycle up to now", {{"2026-03-20", 1}, {"2026-04-10", 2}}, 0, 3},
        {"the day before the cycle", {{"2026-03-19", 1}}, 0, 0},
        {"tomorrow, after a clock that was wrong", {{"2026-04-11", 1}}, 0, 0},
        {"any order", {{"2026-04-10", 1}, {"2026-03-19", 2}, {"2026-03-31", 4}}, 0, 5},
        {"a correction", {{"2026-04-10", 10}}, 5, 15},
        {"a correction alone", {}, 5, 5},
        {"a negative one", {{"2026-04-10", 10}}, -4, 6},
        {"never below 0", {{"2026-04-10", 10}}, -11, 0},
        {"the smallest correction", {{"2026-04-10", 10}}, std::numeric_limits<std::int64_t>::min(), 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const BudgetStore budget = store(30, 20, c.days, c.offset);
        EXPECT_EQ(budget.status(utc(2026, 4, 10, 12), Calendar{}).usedBytes, c.used);
    }
}

TEST(BudgetStore, daysRemaining)
{
    struct Case {
        const char* name;
        const char* zone;
        int startDay;
        Date now;
        int days;
    };
    const Case cases[] = {
        {"the first moment of a cycle", "UTC", 1, utc(2026, 3, 1), 31},
        {"a moment later", "UTC", 1, utc(2026, 3, 1, 0, 0, 0.5), 30},
        {"the last day", "UTC", 1, utc(2026, 3, 31, 0, 0, 1), 0},
        {"the last moment", "UTC", 1, utc(2026, 3, 31, 23, 59, 59.5), 0},
        {"the day before the last", "UTC", 1, utc(2026, 3, 30, 23, 59, 59.5), 1},
        {"over a day of 23 hours", "Europe/Berlin", 1, utc(2026, 3, 27, 23, 30), 3},
        {"over a day of 25 hours", "Europe/Berlin", 1, utc(2026, 10, 23, 22, 30), 7},
        {"to a skipped midnight, from the hour it lacks", "America/Santiago", 6, utc(2026, 9, 4, 4, 30), 1},
        {"and from the hour after", "America/Santiago", 6, utc(2026, 9, 4, 5, 30), 1},
        {"from a skipped midnight", "America/Santiago", 6, utc(2026, 9, 6, 4), 30},
        {"never below 0: the last cycle of all has no end", "UTC", 20, utc(9999, 12, 25), 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(store(30, c.startDay).status(c.now, zone(c.zone)).daysRemaining, c.days);
    }
}

TEST(BudgetStore, projectExhaustion)
{
    struct Case {
        const char* name;
        double planGB;
        std::uint64_t used;
        std::vector<DayUsage> days;
        std::optional<Date> exhaustion;
    };
    const Date now = utc(2026, 3, 15, 12, 0, 0.25);
    const Seconds day{86'400.0};
    const Case cases[] = {
        {"no traffic", 1, 0, {}, std::nullopt},
        {"all is used", 1, gigabyte, {}, now},
        {"more than all is used", 1, gigabyte + 1, {}, now},
        {"a plan of nothing", 0, 0, {}, now},
        {"the rest at the average", 2, gigabyte, {{"2026-03-14", gigabyte}}, now + day},
        {"the average of two days",
         2,
         gigabyte,
         {{"2026-03-14", gigabyte}, {"2026-03-15", gigabyte / 2}},
         now + Seconds{115'200.0}},
        {"days without traffic do not lower it",
         2,
         gigabyte,
         {{"2026-03-09", gigabyte}, {"2026-03-15", gigabyte}},
         now + day},
        {"the day 7 days ago is in the sample", 2, gigabyte, {{"2026-03-08", gigabyte}}, now + day},
        {"the one before is not", 2, gigabyte, {{"2026-03-07", gigabyte}}, std::nullopt},
        {"a day ahead, after a clock that was wrong", 2, gigabyte, {{"2026-03-16", gigabyte}}, now + day},
        {"entries of 0 bytes are no average", 2, gigabyte, {{"2026-03-14", 0}}, std::nullopt},
        {"but count as days", 2, gigabyte, {{"2026-03-14", 0}, {"2026-03-15", gigabyte}}, now + 2 * day},
        {"a byte a day and gigabytes left", 2, gigabyte, {{"2026-03-14", 1}}, std::nullopt},
        {"a byte a day and a byte left", 1, gigabyte - 1, {{"2026-03-14", 1}}, now + day},
        {"exactly 365 days", 365, 0, {{"2026-03-14", gigabyte}}, std::nullopt},
        {"a little less", 365, 2'200'000'000, {{"2026-03-14", gigabyte}}, now + Seconds{31'358'974.0}},
        {"seconds are cut to whole ones: 1.875", 1, gigabyte - 15, {{"2026-03-14", 8 * 86'400}}, now + Seconds{1.0}},
        {"less than one: 0.875", 1, gigabyte - 7, {{"2026-03-14", 8 * 86'400}}, now},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(store(c.planGB, 1, c.days).projectExhaustion(c.used, now, Calendar{}), c.exhaustion);
    }
}

TEST(BudgetStore, inTheFirstWeekOfAllTheForecastGoesByToday)
{
    const Date now = utc(1, 1, 3, 12);
    const BudgetStore budget = store(2, 1, {{"0001-01-02", 3 * gigabyte}, {"0001-01-03", gigabyte}});
    EXPECT_EQ(budget.projectExhaustion(gigabyte, now, Calendar{}), now + Seconds{86'400.0});
}

TEST(BudgetStore, withThePlanUsedUpTheForecastIsNowAndOverrunsTheCycle)
{
    const Date now = utc(2026, 3, 15, 12);
    const BudgetStatus status = store(1, 1, {{"2026-03-02", gigabyte}}).status(now, Calendar{});
    EXPECT_EQ(status.projectedExhaustion, now);
    EXPECT_TRUE(status.willOverrun());
    EXPECT_EQ(status.usedFraction(), 1.0);
}

TEST(BudgetStore, aPlanOf0GB)
{
    const Date now = utc(2026, 3, 15, 12);
    const BudgetStore budget = store(0, 1, {{"2026-03-15", 5}});
    const BudgetStatus status = budget.status(now, Calendar{});
    EXPECT_EQ(status.usedFraction(), 0.0);
    EXPECT_EQ(status.projectedExhaustion, now);
    const DailyBudgetStatus daily = budget.dailyStatus(now, Calendar{});
    EXPECT_EQ(daily, (DailyBudgetStatus{5, 0}));
    EXPECT_FALSE(daily.isOverToday());
}

TEST(BudgetStore, dailyStatus)
{
    struct Case {
        const char* name;
        Date now;
        std::vector<DayUsage> days;
        std::int64_t offset;
        DailyBudgetStatus status;
    };
    const Date tenth = utc(2026, 3, 10, 12); // 21 whole days are left, and today: 22
    const Case cases[] = {
        {"today is not taken off", tenth, {{"2026-03-10", 500}}, 0, {500, 22 * gigabyte / 22}},
        {"the days before are",
         tenth,
         {{"2026-03-01", gigabyte}, {"2026-03-09", gigabyte}},
         0,
         {0, 20 * gigabyte / 22}},
        {"the cycle before is not", tenth, {{"2026-02-28", gigabyte}}, 0, {0, gigabyte}},
        {"nor is a day ahead", tenth, {{"2026-03-11", gigabyte}}, 0, {0, gigabyte}},
        {"a correction is", tenth, {}, 2 * gigabyte, {0, 20 * gigabyte / 22}},
        {"a negative one gives nothing back", tenth, {}, -1, {0, gigabyte}},
        {"more used than there is", tenth, {{"2026-03-09", 23 * gigabyte}}, 0, {0, 0}},
        {"the last day has all that is left", utc(2026, 3, 31, 12), {{"2026-03-30", gigabyte}}, 0, {0, 21 * gigabyte}},
        {"at the first moment of a day the day before still counts", utc(2026, 3, 31), {}, 0, {0, 11 * gigabyte}},
        {"a day behind the end of the last cycle of all", utc(9999, 12, 2, 12), {}, 0, {0, 22 * gigabyte}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(store(22, 1, c.days, c.offset).dailyStatus(c.now, Calendar{}), c.status);
    }
}

TEST(BudgetStore, calibrate)
{
    struct Case {
        const char* name;
        std::uint64_t counted;
        std::uint64_t actual;
        std::int64_t offset;
    };
    constexpr Case cases[] = {
        {"what was counted", 100, 100, 0},
        {"more", 100, 150, 50},
        {"a lower value makes the offset negative", 100, 30, -70},
        {"nothing", 100, 0, -100},
        {"the largest numbers", 0, 9'223'372'036'854'775'807U, 9'223'372'036'854'775'807},
    };
    const Date now = utc(2026, 3, 15, 12);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BudgetStore budget = store(1, 1, {{"2026-02-28", 1'000}, {"2026-03-14", c.counted}}, 12'345);
        budget.calibrate(c.actual, now, Calendar{});
        EXPECT_EQ(budget.calibrationOffsetBytes, c.offset) << "the former correction has no part in it";
        EXPECT_EQ(budget.status(now, Calendar{}).usedBytes, c.actual);
    }
}

TEST(BudgetStore, aCorrectionStaysInForceInLaterCycles)
{
    BudgetStore budget = store(1, 1, {{"2026-03-14", 100}});
    budget.calibrate(150, utc(2026, 3, 15), Calendar{});
    EXPECT_EQ(budget.status(utc(2026, 4, 1), Calendar{}).usedBytes, 50U);
    budget.calibrate(30, utc(2026, 3, 15), Calendar{});
    EXPECT_EQ(budget.status(utc(2026, 4, 1), Calendar{}).usedBytes, 0U) << "a negative one never goes below 0";
}

/// A random ledger of the weeks before `now`.
BudgetStore randomStore(std::mt19937_64& random, Date now, const Calendar& calendar)
{
    BudgetStore budget = store(static_cast<double>(random() % 6'400) / 64.0, 1 + static_cast<int>(random() % 28));
    for (std::int64_t ago = 40; ago >= -2; --ago) {
        if (random() % 3 == 0) continue;
        budget.days.push_back({BudgetStore::dayKey(calendar.addingDays(now, -ago).value(), calendar), random() >> 30});
    }
    budget.calibrationOffsetBytes = static_cast<std::int64_t>(random() >> 29) - (std::int64_t{1} << 34);
    return budget;
}

TEST(BudgetStore, calibratedItReportsTheCarriersFigure)
{
    std::mt19937_64 random{1};
    for (const char* name : trickyZones) {
        SCOPED_TRACE(name);
        const Calendar calendar = zone(name);
        for (int i = 0; i < 40; ++i) {
            const Date now = utc(2026, 1, 1) + Seconds{static_cast<double>(random() % 31'536'000)};
            BudgetStore budget = randomStore(random, now, calendar);
            const std::uint64_t actual = random() >> (1 + random() % 40);
            budget.calibrate(actual, now, calendar);
            EXPECT_EQ(budget.status(now, calendar).usedBytes, actual);
        }
    }
}

TEST(BudgetStore, allowanceStaysTheSameInTheCourseOfADay)
{
    // Days around changes of a clock, and in the weeks before, when a cycle may end with one.
    const Date dates[] = {utc(2026, 3, 29, 12),  utc(2026, 9, 6, 12),   utc(2026, 4, 5, 12), utc(2026, 4, 24, 12),
                          utc(2026, 10, 29, 12), utc(2026, 10, 25, 12), utc(2011, 12, 31),   utc(2024, 2, 29, 12),
                          utc(1993, 8, 22, 1),   utc(1985, 12, 31, 20), utc(2024, 10, 6, 12)};
    std::mt19937_64 random{2};
    for (const char* name : trickyZones) {
        SCOPED_TRACE(name);
        const Calendar calendar = zone(name);
        for (int i = 0; i < 60; ++i) {
            const Date someTime =
                dates[random() % std::size(dates)] - Seconds{static_cast<double>(random() % 2'000'000)};
            const Date begin = calendar.startOfDay(someTime);
            const Date end = calendar.startOfDay(calendar.addingDays(begin, 1).value());
            const BudgetStore budget = randomStore(random, someTime, calendar);
            const auto allowance = budget.dailyStatus(begin + Seconds{0.25}, calendar).allowanceBytes;
            const auto length = static_cast<std::uint64_t>((end - begin).count());
            for (int k = 0; k < 6; ++k) {
                const Date now = begin + Seconds{static_cast<double>(random() % length) + 0.5};
                EXPECT_EQ(budget.dailyStatus(now, calendar).allowanceBytes, allowance) << budget.dayKey(now, calendar);
            }
            EXPECT_EQ(budget.dailyStatus(end - Seconds{0.25}, calendar).allowanceBytes, allowance);
        }
    }
}

} // namespace
} // namespace quellon
