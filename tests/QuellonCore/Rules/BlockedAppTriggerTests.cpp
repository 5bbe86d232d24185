#include "QuellonCore/Rules/BlockedAppTrigger.h"

#include "QuellonCore/Support/Zones.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace quellon {
namespace {

using BlockedAppTrigger::TransferWatcher;

constexpr Date start{Seconds{800'000'000.0}};
constexpr std::uint64_t quiet = 262'143;
constexpr std::uint64_t moving = 262'144;

Date after(double seconds)
{
    return start + Seconds{seconds};
}

TEST(BlockedAppTrigger, constants)
{
    EXPECT_EQ(BlockedAppTrigger::windowSeconds, Seconds{60.0});
    EXPECT_EQ(BlockedAppTrigger::floorBytes, 262'144U);
    EXPECT_EQ(BlockedAppTrigger::floorDescription(), "256 KB");
    EXPECT_EQ(TransferWatcher::quietSeconds, Seconds{120.0});
}

TEST(BlockedAppTrigger, isTriggered)
{
    struct Case {
        const char* name;
        std::uint64_t bytes;
        bool triggered;
    };
    constexpr Case cases[] = {
        {"nothing", 0, false},
        {"just below the floor", 262'143, false},
        {"the floor", 262'144, true},
        {"the largest count", std::numeric_limits<std::uint64_t>::max(), true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(BlockedAppTrigger::isTriggered(c.bytes), c.triggered);
    }
}

TEST(BlockedAppTrigger, usage)
{
    UsageLedger ledger{Seconds{3'600.0}, Seconds{5.0}, CountDirection::both};
    const ProcessEntry process{7, 501, 7, "/opt/app"};
    const auto resolve = [&process](std::int32_t) { return &process; };
    const auto sample = [&](double at, std::uint64_t in) {
        (void)ledger.ingest({{7, "a<->b", in, 0}}, after(at), resolve);
    };
    sample(-20.0, 0);
    sample(0.0, 100);
    sample(20.0, 1'000);
    EXPECT_EQ(BlockedAppTrigger::usage("app", ledger, after(60.0)), 1'000U) << "the window holds its first moment";
    EXPECT_EQ(BlockedAppTrigger::usage("app", ledger, after(60.1)), 900U);
    EXPECT_EQ(BlockedAppTrigger::usage("app", ledger, after(80.1)), 0U);
    EXPECT_EQ(BlockedAppTrigger::usage("other", ledger, after(20.0)), 0U);
}

TEST(BlockedAppTrigger, muteDeadline)
{
    struct Case {
        const char* name;
        const char* zone;
        int year, month, day, hour, minute;
        int endYear, endMonth, endDay, endHour;
        double hours; ///< To the deadline.
    };
    constexpr Case cases[] = {
        {"a minute before midnight", "UTC", 2026, 3, 10, 23, 59, 2026, 3, 11, 0, 1.0 / 60.0},
        {"midnight itself", "UTC", 2026, 3, 10, 0, 0, 2026, 3, 11, 0, 24.0},
        {"the end of a year", "Asia/Kathmandu", 2026, 12, 31, 12, 0, 2027, 1, 1, 0, 12.0},
        {"a leap day", "UTC", 2028, 2, 28, 12, 0, 2028, 2, 29, 0, 12.0},
        {"a day of 23 hours", "Europe/Berlin", 2026, 3, 29, 1, 0, 2026, 3, 30, 0, 22.0},
        {"a day of 25 hours", "Europe/Berlin", 2026, 10, 25, 1, 0, 2026, 10, 26, 0, 24.0},
        {"before a midnight that is skipped", "America/Santiago", 2022, 9, 10, 12, 0, 2022, 9, 11, 1, 12.0},
        {"on the day without a midnight", "America/Santiago", 2022, 9, 11, 12, 0, 2022, 9, 12, 0, 12.0},
        {"the first moment of that day", "America/Santiago", 2022, 9, 11, 1, 0, 2022, 9, 12, 0, 23.0},
        {"another of these", "Africa/Cairo", 2024, 4, 26, 12, 0, 2024, 4, 27, 0, 12.0},
        {"before a day that was left out", "Pacific/Apia", 2011, 12, 29, 12, 0, 2011, 12, 31, 0, 12.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Calendar calendar = zone(c.zone);
        const Date from = localTime(calendar, c.year, c.month, c.day, c.hour, c.minute);
        const Date deadline = BlockedAppTrigger::muteDeadline(from, calendar);
        EXPECT_EQ(deadline, localTime(calendar, c.endYear, c.endMonth, c.endDay, c.endHour));
        EXPECT_NEAR((deadline - from).count(), c.hours * 3'600.0, 0.001);
    }
}

TEST(BlockedAppTrigger, muteDeadlineWhereTheCalendarEnds)
{
    const Date last = utc(9999, 12, 31, 12);
    EXPECT_EQ(BlockedAppTrigger::muteDeadline(last, Calendar{}), utc(9999, 12, 31) + Seconds{86'400.0});
}

/// Allowed at `start`, then observed; the answers in their order.
TEST(TransferWatcher, stillAllowed)
{
    struct Case {
        const char* name;
        std::vector<std::pair<double, std::uint64_t>> observations; ///< Seconds after the start, bytes moved.
        std::vector<bool> answers;
    };
    const Case cases[] = {
        {"moving", {{5, moving}, {10, moving}}, {true, true}},
        {"the first pass below the floor", {{5, quiet}}, {true}},
        {"nothing moved at all", {{5, 0}}, {true}},
        {"quiet for just under the limit", {{5, quiet}, {60, quiet}, {124.9, quiet}}, {true, true, true}},
        {"quiet for the limit", {{5, quiet}, {60, quiet}, {125, quiet}}, {true, true, false}},
        {"gone after that", {{5, quiet}, {125, quiet}, {126, moving}}, {true, false, false}},
        {"a burst starts the quiet time again",
         {{5, quiet}, {100, moving}, {105, quiet}, {200, quiet}, {224.9, quiet}, {225, quiet}},
         {true, true, true, true, true, false}},
        {"observed again at the limit", {{120, moving}, {240, moving}}, {true, true}},
        {"observed again just after it", {{120.1, moving}}, {false}},
        {"unobserved for too long, though moving", {{5, moving}, {125.1, moving}}, {true, false}},
        {"unobserved while quiet", {{5, quiet}, {125.1, quiet}}, {true, false}},
        {"moving at the moment that the quiet time ends", {{5, quiet}, {125, moving}}, {true, true}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TransferWatcher watcher;
        watcher.allow("app", start);
        std::vector<bool> answers;
        for (const auto& [at, bytes] : c.observations) answers.push_back(watcher.stillAllowed("app", bytes, after(at)));
        EXPECT_EQ(answers, c.answers);
        EXPECT_EQ(watcher.isAllowing("app"), c.answers.back());
    }
}

TEST(TransferWatcher, unknownApplication)
{
    TransferWatcher watcher;
    EXPECT_FALSE(watcher.isAllowing("app"));
    EXPECT_FALSE(watcher.stillAllowed("app", moving, start));
    EXPECT_EQ(watcher, TransferWatcher{}) << "asking adds nothing";
    watcher.cancel("app");
    EXPECT_EQ(watcher, TransferWatcher{});
}

TEST(TransferWatcher, applicationsStandAlone)
{
    TransferWatcher watcher;
    watcher.allow("a", start);
    watcher.allow("b", start);
    EXPECT_TRUE(watcher.stillAllowed("a", moving, after(100.0)));
    EXPECT_FALSE(watcher.stillAllowed("b", moving, after(121.0)));
    EXPECT_TRUE(watcher.isAllowing("a"));
    watcher.cancel("a");
    EXPECT_EQ(watcher, TransferWatcher{});
}

TEST(TransferWatcher, allowStartsAnew)
{
    TransferWatcher watcher;
    watcher.allow("app", start);
    EXPECT_TRUE(watcher.stillAllowed("app", quiet, after(5.0)));
    watcher.allow("app", after(100.0));
    TransferWatcher fresh;
    fresh.allow("app", after(100.0));
    EXPECT_EQ(watcher, fresh);
    EXPECT_TRUE(watcher.stillAllowed("app", quiet, after(130.0))) << "the earlier quiet time is forgotten";
}

TEST(TransferWatcher, isAllowingLooksAtNoTime)
{
    TransferWatcher watcher;
    watcher.allow("app", start);
    EXPECT_TRUE(watcher.isAllowing("app"));
    EXPECT_FALSE(watcher.isAllowing("APP"));
    EXPECT_FALSE(watcher.stillAllowed("app", quiet, after(1'000.0)));
    EXPECT_FALSE(watcher.isAllowing("app"));
}

} // namespace
} // namespace quellon
