#include "QuellonCore/Budget/BudgetStore.h"
#include "QuellonCore/Support/Zones.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace quellon {
namespace {

using Reading = BudgetStore::InterfaceReading;

constexpr std::uint64_t mostSigned = std::numeric_limits<std::int64_t>::max();

const Calendar& berlin()
{
    static const Calendar calendar = zone("Europe/Berlin");
    return calendar;
}

/// A moment of March 2026 in Berlin.
Date march(int day, int hour = 12, int minute = 0, double second = 0.0)
{
    return localTime(berlin(), 2026, 3, day, hour, minute, second);
}

BudgetStore store(double planGB, std::int64_t startDay, std::vector<DayUsage> days = {}, std::int64_t offset = 0)
{
    return {planGB, startDay, std::move(days), offset, {}, 0, {}};
}

TEST(BudgetStore, planBytes)
{
    struct Case {
        const char* name;
        double planGB;
        std::uint64_t bytes;
    };
    constexpr Case cases[] = {
        {"nothing", 0.0, 0},
        {"a gigabyte", 1.0, 1'073'741'824},
        {"the default", 30.0, 32'212'254'720},
        {"a byte", 1.0 / 1'073'741'824.0, 1},
        {"a fraction of a byte is cut off", 1.75 / 1'073'741'824.0, 1},
        {"less than nothing by less than a byte", -0.5 / 1'073'741'824.0, 0},
        {"the largest power of two", 8'589'934'592.0, 9'223'372'036'854'775'808U},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(store(c.planGB, 1).planBytes(), c.bytes);
    }
}

TEST(BudgetStoreDeathTest, planBytesOfNoPlan)
{
    struct Case {
        const char* name;
        double planGB;
    };
    constexpr Case cases[] = {
        {"no number", std::numeric_limits<double>::quiet_NaN()},
        {"infinity", std::numeric_limits<double>::infinity()},
        {"a product that is infinite", std::numeric_limits<double>::max()},
        {"minus a byte", -1.0 / 1'073'741'824.0},
        {"minus a gigabyte", -1.0},
        {"2^64 bytes", 17'179'869'184.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EXIT((void)store(c.planGB, 1).planBytes(), testing::ExitedWithCode(70), "does not fit");
    }
}

TEST(BudgetStore, addOf0BytesAddsNoEntry)
{
    BudgetStore budget = store(30, 1);
    budget.add(0, march(5), berlin());
    EXPECT_EQ(budget, store(30, 1));
}

TEST(BudgetStore, addGoesToTheLocalDay)
{
    BudgetStore budget = store(30, 1);
    budget.add(1, march(5, 23, 59, 59.9), berlin());
    budget.add(2, march(6, 0), berlin());
    budget.add(4, march(6, 23, 59), berlin());
    budget.add(8, march(5, 0), berlin()); // a clock that was set back
    EXPECT_EQ(budget.days, (std::vector<DayUsage>{{"2026-03-05", 9}, {"2026-03-06", 6}}));
}

TEST(BudgetStore, ofADayThatStandsTwiceTheFirstEntryIsAddedToAndAllCount)
{
    const std::vector<DayUsage> twice{{"2026-03-04", 1}, {"2026-03-05", 2}, {"2026-03-04", 4}, {"2026-03-05", 8}};
    BudgetStore budget = store(1, 1, twice);
    budget.add(16, march(5), berlin());
    EXPECT_EQ(budget.days[1], (DayUsage{"2026-03-05", 18}));
    EXPECT_EQ(budget.dailyStatus(march(5), berlin()).usedTodayBytes, 18U);
    EXPECT_EQ(budget.status(march(5), berlin()).usedBytes, 31U);
}

TEST(BudgetStoreDeathTest, addBeyondTheLargestCount)
{
    BudgetStore budget = store(30, 1, {{"2026-03-05", std::numeric_limits<std::uint64_t>::max()}});
    EXPECT_EXIT(budget.add(1, march(5), berlin()), testing::ExitedWithCode(70), "overflow");
}

/// So many days with traffic up to and with `last`, every `step` days.
std::vector<DayUsage> daysUpTo(Date last, int count, int step = 1)
{
    std::vector<DayUsage> days;
    for (int i = count - 1; i >= 0; --i)
        days.push_back({BudgetStore::dayKey(berlin().addingDays(last, -i * step).value(), berlin()), 1});
    return days;
}

TEST(BudgetStore, pruning)
{
    struct Case {
        const char* name;
        int count; ///< Days with traffic before today.
        int step;  ///< Days from one to the next.
        std::size_t kept;
    };
    constexpr Case cases[] = {
        {"with 400 entries nothing is pruned", 399, 3, 400},
        {"the 401st entry removes nothing when all are young", 400, 1, 401},
        {"the day 400 days back is kept", 402, 1, 401},
        {"the 401st entry prunes by date", 400, 2, 201},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Date yesterday = berlin().addingDays(march(31), -1).value();
        BudgetStore budget = store(30, 1, daysUpTo(yesterday, c.count, c.step));
        budget.add(1, march(31), berlin());
        EXPECT_EQ(budget.days.size(), c.kept);
        EXPECT_EQ(budget.days.back(), (DayUsage{"2026-03-31", 1}));
        EXPECT_TRUE(std::is_sorted(budget.days.begin(), budget.days.end(),
                                   [](const DayUsage& a, const DayUsage& b) { return a.day < b.day; }));
    }
}

TEST(BudgetStore, pruningKeepsTheOrder)
{
    std::vector<DayUsage> days(399, DayUsage{"2026-03-04", 1});
    days.insert(days.begin(), {{"2026-03-05", 2}, {"2020-01-01", 3}, {"2026-03-01", 4}});
    BudgetStore budget = store(30, 1, days);
    budget.pruneOldDays(march(31), berlin());
    days.erase(days.begin() + 1);
    EXPECT_EQ(budget.days, days);
}

TEST(BudgetStore, inTheFirstYearOfAllPruningKeepsWhatIsNotBeforeToday)
{
    std::vector<DayUsage> days(400, DayUsage{"0001-06-30", 1});
    days.push_back({"0001-07-01", 2});
    BudgetStore budget = store(30, 1, days);
    budget.pruneOldDays(utc(1, 7, 1, 12), Calendar{});
    EXPECT_EQ(budget.days, (std::vector<DayUsage>{{"0001-07-01", 2}}));
}

TEST(BudgetStore, theFirstReadingOnlySetsTheBaseline)
{
    BudgetStore budget = store(30, 1);
    EXPECT_EQ(budget.accountFor({1'000, 500}, "en0", march(5), berlin()), 0U);
    EXPECT_TRUE(budget.days.empty());
    EXPECT_EQ(budget.unmeasuredGaps, 0);
    EXPECT_EQ(budget.interfaceBaseline, (Reading{"en0", 1'500, march(5)}));
}

TEST(BudgetStore, accountForAfterAReading)
{
    struct Case {
        const char* name;
        const char* interface;
        std::uint64_t total;
        Date at;
        std::uint64_t counted;
        std::int64_t gaps;
    };
    const Reading before{"en0", 1'000, march(5)};
    const Case cases[] = {
        {"growth counts", "en0", 1'250, march(5, 12, 0, 5), 250, 0},
        {"no growth", "en0", 1'000, march(5, 12, 0, 5), 0, 0},
        {"after a stop of days the whole delta counts", "en0", 9'000, march(19), 8'000, 0},
        {"a lower reading is a gap", "en0", 999, march(5, 12, 0, 5), 0, 1},
        {"a change of interface is none", "en1", 5'000, march(5, 12, 0, 5), 0, 0},
        {"nor is a change to a lower counter", "en1", 5, march(5, 12, 0, 5), 0, 0},
        {"a baseline of the cycle before is a gap", "en0", 5'000, march(20), 0, 1},
        {"also when nothing was carried", "en0", 1'000, march(20), 0, 1},
        {"up to the last moment of the cycle it counts", "en0", 1'001, march(19, 23, 59, 59.9), 1, 0},
        {"a clock that was set back still counts", "en0", 1'001, march(4), 1, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BudgetStore budget = store(30, 20);
        budget.interfaceBaseline = before;
        EXPECT_EQ(budget.accountFor({c.total - 3, 3}, c.interface, c.at, berlin()), c.counted);
        const std::vector<DayUsage> day{{BudgetStore::dayKey(c.at, berlin()), c.counted}};
        EXPECT_EQ(budget.days, c.counted > 0 ? day : std::vector<DayUsage>{});
        EXPECT_EQ(budget.unmeasuredGaps, c.gaps);
        EXPECT_EQ(budget.lastUnmeasuredGapAt, c.gaps > 0 ? std::optional{c.at} : std::nullopt);
        EXPECT_EQ(budget.interfaceBaseline, (Reading{c.interface, c.total, c.at}));
    }
}

TEST(BudgetStore, aBaselineOfTheFirstMomentOfTheCycleIsOfTheCycle)
{
    BudgetStore budget = store(30, 20);
    budget.interfaceBaseline = Reading{"en0", 1'000, march(20, 0)};
    EXPECT_EQ(budget.accountFor({1'001, 0}, "en0", march(21), berlin()), 1U);
    budget.interfaceBaseline = Reading{"en0", 1'000, march(19, 23, 59, 59.5)};
    EXPECT_EQ(budget.accountFor({1'001, 0}, "en0", march(21), berlin()), 0U);
}

TEST(BudgetStore, afterALowerReadingTheNextCountsNormally)
{
    BudgetStore budget = store(30, 1);
    budget.interfaceBaseline = Reading{"en0", 1'000, march(5)};
    EXPECT_EQ(budget.accountFor({10, 0}, "en0", march(5, 13), berlin()), 0U);
    EXPECT_EQ(budget.accountFor({17, 0}, "en0", march(5, 14), berlin()), 7U);
    EXPECT_EQ(budget.unmeasuredGaps, 1);
    EXPECT_EQ(budget.days, (std::vector<DayUsage>{{"2026-03-05", 7}}));
}

TEST(BudgetStore, twoGapsInMarchThenOneInApril)
{
    BudgetStore budget = store(30, 1);
    budget.recordUnmeasuredGap(march(5), berlin());
    budget.recordUnmeasuredGap(march(6), berlin());
    EXPECT_EQ(budget.unmeasuredGapsInCycleAt(march(31, 23, 59), berlin()), 2);
    const Date april = localTime(berlin(), 2026, 4, 1);
    EXPECT_EQ(budget.unmeasuredGapsInCycleAt(april, berlin()), 0);
    EXPECT_EQ(budget.status(april, berlin()).unmeasuredGaps, 0);
    EXPECT_EQ(budget.unmeasuredGaps, 2) << "the field is only cleared by the next gap";

    budget.recordUnmeasuredGap(april, berlin());
    EXPECT_EQ(budget.unmeasuredGaps, 1);
    EXPECT_EQ(budget.lastUnmeasuredGapAt, april);
    EXPECT_EQ(budget.status(april, berlin()).unmeasuredGaps, 1);
}

TEST(BudgetStore, aGapAtTheFirstMomentOfACycleBelongsToIt)
{
    BudgetStore budget = store(30, 5);
    budget.recordUnmeasuredGap(march(5, 0), berlin());
    budget.recordUnmeasuredGap(march(6), berlin());
    EXPECT_EQ(budget.unmeasuredGaps, 2);
}

TEST(BudgetStore, gapsWithoutADate)
{
    BudgetStore budget = store(30, 1);
    budget.unmeasuredGaps = 3; // as a file may say
    EXPECT_EQ(budget.unmeasuredGapsInCycleAt(march(5), berlin()), 0);
    budget.recordUnmeasuredGap(march(5), berlin());
    EXPECT_EQ(budget.unmeasuredGapsInCycleAt(march(5), berlin()), 4);
    budget.unmeasuredGaps = std::numeric_limits<std::int64_t>::max();
    budget.recordUnmeasuredGap(march(5), berlin());
    EXPECT_EQ(budget.unmeasuredGaps, std::numeric_limits<std::int64_t>::max());
}

TEST(BudgetStoreDeathTest, sumsThatDoNotFit)
{
    const BudgetStore large = store(30, 1, {{"2026-03-04", mostSigned}, {"2026-03-05", 1}});
    EXPECT_EXIT((void)large.status(march(5), berlin()), testing::ExitedWithCode(70), "overflow");
    const BudgetStore corrected = store(30, 1, {{"2026-03-04", mostSigned}}, 1);
    EXPECT_EXIT((void)corrected.dailyStatus(march(5), berlin()), testing::ExitedWithCode(70), "overflow");
    BudgetStore calibrated = store(30, 1);
    EXPECT_EXIT(calibrated.calibrate(mostSigned + 1, march(5), berlin()), testing::ExitedWithCode(70), "overflow");
}

} // namespace
} // namespace quellon
