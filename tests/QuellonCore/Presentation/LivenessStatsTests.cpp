#include "QuellonCore/Presentation/LivenessStats.h"

#include "QuellonCore/Persistence/StateFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Peak = LivenessStats::Peak;

constexpr Date now{Seconds{800'000'000.0}};
constexpr Seconds day{86'400.0};
constexpr std::uint64_t gigabyte = 1'073'741'824;

TEST(LivenessStats, recordGuardedTime)
{
    struct Case {
        const char* name;
        std::optional<Date> last;
        double added;
    };
    const Case cases[] = {
        {"the first tick of a run", std::nullopt, 0.0},
        {"a usual interval", now - 5s, 5.0},
        {"a fraction of a second", now - Seconds{0.25}, 0.25},
        {"119 seconds apart", now - 119s, 119.0},
        {"just below 120 seconds", now - Seconds{119.75}, 119.75},
        {"120 seconds apart", now - 120s, 0.0},
        {"a night asleep", now - 8h, 0.0},
        {"the same moment", now, 0.0},
        {"a clock that went backwards", now + 5s, 0.0},
        {"a date that is no number", Date{Seconds{std::numeric_limits<double>::quiet_NaN()}}, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LivenessStats stats;
        stats.totalGuardedSeconds = 1'000.0;
        stats.recordGuardedTime(c.last, now);
        EXPECT_EQ(stats.totalGuardedSeconds, 1'000.0 + c.added);
    }
}

TEST(LivenessStats, theMostThatAFileMaySayCanStillBeToldAfterTheNextTick)
{
    auto stats = decode<LivenessStats>(R"({"totalGuardedSeconds":9223372036854774784})").value();
    for (int i = 0; i < 3; ++i) stats.recordGuardedTime(now - Seconds{119.75}, now);
    EXPECT_EQ(stats.guardedDurationText(), "106751991167300d 15h");
}

TEST(LivenessStats, recordTrigger)
{
    LivenessStats stats;
    stats.recordTrigger(now);
    stats.recordTrigger(now - 5s);
    EXPECT_EQ(stats.triggerCount, 2);
    EXPECT_EQ(stats.lastTriggerAt, now - 5s);

    stats.triggerCount = std::numeric_limits<std::int64_t>::max();
    stats.recordTrigger(now);
    EXPECT_EQ(stats.triggerCount, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(stats.lastTriggerAt, now);
}

TEST(LivenessStats, record)
{
    struct Case {
        const char* name;
        std::vector<Peak> before;
        Peak peak;
        std::vector<Peak> after;
    };
    const Peak hour{"Player", 500, "1h", now - day};
    const Peak minute{"curl", 70, "1min", now - 2 * day};
    const Peak stale{"old", 900, "5min", now - 7 * day - 1s};
    const Case cases[] = {
        {"the first", {}, {"a", 1, "1h", now}, {{"a", 1, "1h", now}}},
        {"another window goes to the end", {hour}, {"a", 1, "1min", now}, {hour, {"a", 1, "1min", now}}},
        {"a larger one takes the place", {hour, minute}, {"a", 501, "1h", now}, {{"a", 501, "1h", now}, minute}},
        {"an equal one changes nothing", {hour, minute}, {"a", 500, "1h", now}, {hour, minute}},
        {"a smaller one changes nothing", {hour, minute}, {"a", 499, "1h", now}, {hour, minute}},
        {"two rules with one label share the larger",
         {hour},
         {"b", 600, "1h", now - day},
         {{"b", 600, "1h", now - day}}},
        {"0 bytes do nothing and trim nothing", {stale, hour}, {"a", 0, "1h", now}, {stale, hour}},
        {"any other trims what is stale", {stale, hour}, {"a", 1, "1h", now}, {hour}},
        {"exactly 7 days is not stale",
         {{"old", 9, "1h", now - 7 * day}},
         {"a", 1, "1h", now},
         {{"old", 9, "1h", now - 7 * day}}},
        {"2 GB of five days ago stand against 1 GB",
         {{"old", 2 * gigabyte, "1h", now - 5 * day}},
         {"new", gigabyte, "1h", now},
         {{"old", 2 * gigabyte, "1h", now - 5 * day}}},
        {"after 7 days the 1 GB becomes the peak",
         {{"old", 2 * gigabyte, "1h", now - 7 * day - 1s}},
         {"new", gigabyte, "1h", now},
         {{"new", gigabyte, "1h", now}}},
        {"a new peak of a stale window goes to the end",
         {stale, hour},
         {"a", 1, "5min", now},
         {hour, {"a", 1, "5min", now}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LivenessStats stats;
        stats.recentPeaks = c.before;
        stats.record(c.peak.app, c.peak.bytes, c.peak.windowLabel, c.peak.at);
        EXPECT_EQ(stats.recentPeaks, c.after);
    }
}

TEST(LivenessStats, peak)
{
    LivenessStats stats;
    stats.recentPeaks = {{"stale", 9, "1h", now - 7 * day - 1s},
                         {"first", 1, "1h", now - 7 * day},
                         {"second", 2, "1h", now},
                         {"other", 3, "1min", now}};
    EXPECT_EQ(stats.peak("1h", now), stats.recentPeaks[1]) << "the first that is not stale";
    EXPECT_EQ(stats.peak("1h", now + 1s), stats.recentPeaks[2]);
    EXPECT_EQ(stats.peak("1min", now), stats.recentPeaks[3]);
    EXPECT_EQ(stats.peak("1min", now + 8 * day), std::nullopt);
    EXPECT_EQ(stats.peak("5min", now), std::nullopt);
    EXPECT_EQ(stats.peak("", now), std::nullopt);
}

TEST(LivenessStats, guardedDurationText)
{
    struct Case {
        const char* name;
        double seconds;
        const char* text;
    };
    constexpr Case cases[] = {
        {"nothing", 0.0, "0m"},
        {"below a minute", 59.9, "0m"},
        {"a minute", 60.0, "1m"},
        {"the last second below an hour", 3'599.9, "59m"},
        {"an hour", 3'600.0, "1h 0m"},
        {"an hour and a half", 5'459.0, "1h 30m"},
        {"the last second below a day", 86'399.9, "23h 59m"},
        {"a day", 86'400.0, "1d 0h"},
        {"days and hours", 190'800.0, "2d 5h"},
        {"the last second of a day", 172'799.0, "1d 23h"},
        {"a year", 31'536'000.0, "365d 0h"},
        {"below 0, as a file may say", -150.0, "-2m"},
        {"the least that can be told", -9'223'372'036'854'775'808.0, "-153722867280912930m"},
        {"the most that can be told", 9'223'372'036'854'774'784.0, "106751991167300d 15h"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LivenessStats stats;
        stats.totalGuardedSeconds = c.seconds;
        EXPECT_EQ(stats.guardedDurationText(), c.text);
    }
}

TEST(LivenessStatsDeathTest, guardedDurationTextOfNoDuration)
{
    for (const double seconds : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                                 9'223'372'036'854'775'808.0}) {
        SCOPED_TRACE(seconds);
        LivenessStats stats;
        stats.totalGuardedSeconds = seconds;
        EXPECT_EXIT((void)stats.guardedDurationText(), testing::ExitedWithCode(70), "guarded time");
    }
}

TEST(LivenessStats, triggerSummary)
{
    struct Case {
        std::int64_t count;
        const char* text;
    };
    constexpr Case cases[] = {
        {0, "never triggered"}, {1, "1 times"}, {2, "2 times"}, {12'345, "12345 times"}, {-3, "-3 times"}};
    for (const auto& c : cases) {
        LivenessStats stats;
        stats.triggerCount = c.count;
        EXPECT_EQ(stats.triggerSummary(), c.text);
    }
}

TEST(LivenessFile, isOneCompactLine)
{
    const LivenessStats stats{90.5, {{"Player", 500, "1h", Date{Seconds{7.25}}}}, 3, Date{Seconds{8.0}}};
    EXPECT_EQ(encode(stats), R"({"lastTriggerAt":8.0,"recentPeaks":[{"app":"Player","at":7.25,"bytes":500,)"
                             R"("windowLabel":"1h"}],"totalGuardedSeconds":90.5,"triggerCount":3})");
    EXPECT_EQ(decode<LivenessStats>(encode(stats)), stats);
    EXPECT_EQ(encode(LivenessStats{}), R"({"recentPeaks":[],"totalGuardedSeconds":0.0,"triggerCount":0})");
}

TEST(LivenessFile, shapes)
{
    struct Case {
        const char* name;
        const char* text;
        std::optional<LivenessStats> stats;
    };
    const Case cases[] = {
        {"no keys", "{}", LivenessStats{}},
        {"an older version with only the count", R"({"triggerCount":7})", LivenessStats{0.0, {}, 7, {}}},
        {"null for what may be missing",
         R"({"triggerCount":null,"recentPeaks":null,"lastTriggerAt":null,"totalGuardedSeconds":null})",
         LivenessStats{}},
        {"a whole number of seconds", R"({"totalGuardedSeconds":60,"more":1})", LivenessStats{60.0, {}, 0, {}}},
        {"a peak", R"({"recentPeaks":[{"app":"a","bytes":5.0,"windowLabel":"1h","at":1}]})",
         LivenessStats{0.0, {{"a", 5, "1h", Date{Seconds{1.0}}}}, 0, {}}},
        {"a peak without an app", R"({"recentPeaks":[{"bytes":5,"windowLabel":"1h","at":1}]})", std::nullopt},
        {"a peak without bytes", R"({"recentPeaks":[{"app":"a","windowLabel":"1h","at":1}]})", std::nullopt},
        {"a peak without a label", R"({"recentPeaks":[{"app":"a","bytes":5,"at":1}]})", std::nullopt},
        {"a peak without a date", R"({"recentPeaks":[{"app":"a","bytes":5,"windowLabel":"1h"}]})", std::nullopt},
        {"2^64 bytes", R"({"recentPeaks":[{"app":"a","bytes":18446744073709551616,"windowLabel":"1h","at":1}]})",
         std::nullopt},
        {"a fraction of a trigger", R"({"triggerCount":5.5})", std::nullopt},
        {"a count that does not fit", R"({"triggerCount":9223372036854775808})", std::nullopt},
        {"a text for the date", R"({"lastTriggerAt":"8"})", std::nullopt},
        {"more seconds than can be told", R"({"totalGuardedSeconds":1e300})", std::nullopt},
        {"less seconds than can be told", R"({"totalGuardedSeconds":-1e300})", std::nullopt},
        {"minus 2^63 seconds", R"({"totalGuardedSeconds":-9223372036854775808})",
         LivenessStats{-9'223'372'036'854'775'808.0, {}, 0, {}}},
        {"2^63 seconds", R"({"totalGuardedSeconds":9223372036854775808})", std::nullopt},
        {"a list", "[]", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decode<LivenessStats>(c.text), c.stats);
    }
}

TEST(LivenessFile, whatIsWrittenIsReadAgain)
{
    std::mt19937_64 random{9};
    const auto seconds = [&random] { return static_cast<double>(random() >> 33) / 7.0; };
    for (int i = 0; i < 200; ++i) {
        LivenessStats stats;
        stats.totalGuardedSeconds = seconds();
        for (auto count = random() % 4; count > 0; --count)
            stats.recentPeaks.push_back(
                {"app " + std::to_string(random()), random(), std::to_string(count) + "h", Date{Seconds{seconds()}}});
        stats.triggerCount = static_cast<std::int64_t>(random());
        if (random() % 2 == 0) stats.lastTriggerAt = Date{Seconds{seconds()}};
        EXPECT_EQ(decode<LivenessStats>(encode(stats)), stats);
    }
}

} // namespace
} // namespace quellon
