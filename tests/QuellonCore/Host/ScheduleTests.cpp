#include "QuellonCore/Host/Schedule.h"

#include <chrono>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class ScheduleTest : public ::testing::Test {
protected:
    Schedule schedule;
    std::string seen;

    RunLoop::Work note(char c)
    {
        return [this, c] { seen += c; };
    }
    std::string runAll(Schedule::Moment now)
    {
        seen.clear();
        while (schedule.runNext(now)) {}
        return seen;
    }
};

TEST_F(ScheduleTest, fromSeconds)
{
    constexpr auto most = Schedule::Moment{std::chrono::hours{24 * 365 * 100}};
    struct Case {
        const char* name;
        double seconds;
        Schedule::Moment moment;
    };
    const Case cases[] = {
        {"none", 0.0, 0ns},
        {"negative", -1.0, 0ns},
        {"not a number", std::numeric_limits<double>::quiet_NaN(), 0ns},
        {"a tenth is exact", 0.1, 100ms},
        {"rounded down", 1.4e-9, 1ns},
        {"rounded up", 1.6e-9, 2ns},
        {"a day", 86'400.0, 24h},
        {"for ever", std::numeric_limits<double>::infinity(), most},
        {"too long", 1e300, most},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Schedule::fromSeconds(Seconds{c.seconds}), c.moment);
    }
}

TEST_F(ScheduleTest, orderIsDueThenScheduled)
{
    schedule.post(2s, note('c'));
    schedule.post(1s, note('a'));
    const auto handle = schedule.once(2s, note('d'));
    schedule.post(1s, note('b'));
    EXPECT_EQ(schedule.front()->due, 1s);
    EXPECT_EQ(runAll(999ms), "");
    EXPECT_EQ(runAll(1s), "ab");
    EXPECT_EQ(runAll(5s), "cd");
    EXPECT_EQ(schedule.front(), std::nullopt);
}

TEST_F(ScheduleTest, aPlaceTakenBeforeIsKept)
{
    const auto early = schedule.takeTicket();
    schedule.post(1s, note('b'));
    schedule.post({1s, early}, note('a'));
    EXPECT_EQ(runAll(1s), "ab");
}

TEST_F(ScheduleTest, limit)
{
    schedule.post(1s, note('a'));
    const auto limit = schedule.takeTicket();
    schedule.post(1s, note('b'));
    while (schedule.runNext(1s, limit)) {}
    EXPECT_EQ(seen, "a");
}

TEST_F(ScheduleTest, repeatingKeepsItsPhase)
{
    struct Case {
        const char* name;
        Schedule::Moment now;
        Schedule::Moment next;
    };
    constexpr Case cases[] = {
        {"in time", 5s, 10s},
        {"late", 7s, 10s},
        {"just before the next", 9'999'999'999ns, 10s},
        {"at the next: the two are one", 10s, 15s},
        {"three missed", 21s, 25s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto handle = schedule.repeating(5s, 5s, note('x'));
        EXPECT_EQ(runAll(c.now), "x");
        EXPECT_EQ(schedule.front()->due, c.next);
    }
}

TEST_F(ScheduleTest, repeatingCountsAsScheduledAtEachCall)
{
    const auto timer = schedule.repeating(5s, 5s, note('t'));
    schedule.post(10s, note('a')); // before the call at 5
    EXPECT_EQ(runAll(5s), "t");
    schedule.post(10s, note('b')); // after it
    EXPECT_EQ(runAll(10s), "atb");
}

TEST_F(ScheduleTest, shortestInterval)
{
    const auto timer = schedule.repeating(0s, 0s, note('t'));
    EXPECT_EQ(runAll(0s), "t");
    EXPECT_EQ(schedule.front()->due, 1ms);
}

TEST_F(ScheduleTest, cancellation)
{
    auto once = schedule.once(1s, note('o'));
    auto repeating = schedule.repeating(1s, 1s, note('r'));
    once.reset();
    EXPECT_EQ(runAll(1s), "r");
    repeating.reset();
    EXPECT_EQ(schedule.front(), std::nullopt) << "nothing is left behind";
}

TEST_F(ScheduleTest, workIsLetGoOfWhenItHasRun)
{
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    const auto handle = schedule.once(1s, [captured = std::move(captured)] {});
    EXPECT_FALSE(watched.expired());
    runAll(1s);
    EXPECT_TRUE(watched.expired()) << "although the handle is still there";
}

TEST_F(ScheduleTest, clearMayDestroyHandles)
{
    auto handle = std::make_shared<RunLoop::Handle>(schedule.once(5s, note('x')));
    schedule.post(1s, [handle = std::move(handle)] {});
    schedule.clear();
    EXPECT_EQ(schedule.front(), std::nullopt);
}

} // namespace
} // namespace quellon
