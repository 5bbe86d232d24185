#include "QuellonCore/Measurement/UsageLedger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Usages = std::vector<AppUsage>;

constexpr const char* peer = "tcp4 172.20.10.4:50000<->203.0.113.9:443";
constexpr Seconds wholeDay{86'400.0};

/// A ledger, its process table, and a clock that moves on with each sample.
struct World {
    UsageLedger ledger{3'600s, 5s, CountDirection::both};
    std::map<std::int32_t, ProcessEntry> processes{
        {1, {1, 501, 1, "/Applications/Player.app/Contents/MacOS/Player"}},
        {2, {2, 501, 2, "/Applications/Player.app/Contents/Helper.app/Contents/MacOS/Helper"}},
        {3, {3, 501, 3, "/usr/bin/curl"}},
    };
    Date at{1'000s};

    Usages ingest(Seconds later, const std::vector<ConnectionSample>& samples)
    {
        at += later;
        return ledger.ingest(samples, at, [this](std::int32_t pid) {
            const auto found = processes.find(pid);
            return found != processes.end() ? &found->second : nullptr;
        });
    }
    [[nodiscard]] std::uint64_t total(std::string_view app) const { return ledger.total(app, wholeDay, at); }
    [[nodiscard]] const UsageLedger::Bucket& lastBucket() const { return ledger.snapshot().buckets.back(); }
};

TEST(CountDirection, table)
{
    ASSERT_EQ(countDirections.rows.size(), 3U);
    EXPECT_EQ(countDirections.rows[0].value, CountDirection::both);
    EXPECT_EQ(countDirections.rows[1].value, CountDirection::incoming);
    EXPECT_EQ(countDirections.rows[2].value, CountDirection::outgoing);
    EXPECT_EQ(countDirections.parse("both"), CountDirection::both);
    EXPECT_EQ(countDirections.parse("incoming"), CountDirection::incoming);
    EXPECT_EQ(countDirections.parse("outgoing"), CountDirection::outgoing);
    EXPECT_EQ(countDirections.parse("in"), std::nullopt);
}

TEST(UsageLedger, theFirstSampleIsABaseline)
{
    World world;
    EXPECT_TRUE(world.ingest(0s, {{1, peer, 1'000'000'000'000, 5'000'000}}).empty());
    ASSERT_EQ(world.ledger.snapshot().buckets.size(), 1U);
    EXPECT_EQ(world.lastBucket(), (UsageLedger::Bucket{world.at, {}, {}}));
    EXPECT_TRUE(world.ledger.totals(wholeDay, world.at).empty());
}

TEST(UsageLedger, direction)
{
    struct Case {
        CountDirection direction;
        std::uint64_t bytes;
    };
    constexpr Case cases[] = {
        {CountDirection::both, 1'010}, {CountDirection::incoming, 1'000}, {CountDirection::outgoing, 10}};
    for (const auto& c : cases) {
        SCOPED_TRACE(countDirections.raw(c.direction));
        World world;
        world.ledger.direction = c.direction;
        world.ingest(0s, {{1, peer, 5'000, 500}});
        EXPECT_EQ(world.ingest(5s, {{1, peer, 6'000, 510}}), (Usages{{"Player", c.bytes, {1}}}));
    }
}

TEST(UsageLedger, aChangeOfDirectionLeavesWhatWasCounted)
{
    World world;
    world.ingest(0s, {{1, peer, 0, 0}});
    world.ingest(5s, {{1, peer, 100, 10}});
    world.ledger.direction = CountDirection::outgoing;
    world.ingest(5s, {{1, peer, 200, 20}});
    EXPECT_EQ(world.total("Player"), 120U);
}

TEST(UsageLedger, deltas)
{
    struct Case {
        const char* name;
        std::vector<ConnectionSample> before;
        Seconds gap;
        std::vector<ConnectionSample> after;
        FlatMap<std::uint64_t> usage;
    };
    const Case cases[] = {
        {"a new connection counts in full", {}, 5s, {{1, peer, 500, 0}}, {{"Player", 500}}},
        {"nothing moved", {{1, peer, 7, 7}}, 5s, {{1, peer, 7, 7}}, {}},
        {"a counter that falls counts nothing", {{1, peer, 1'000, 0}}, 5s, {{1, peer, 200, 50}}, {{"Player", 50}}},
        {"both counters fall", {{1, peer, 1'000, 9}}, 5s, {{1, peer, 0, 0}}, {}},
        {"a gap at the limit", {{1, peer, 0, 0}}, 30s, {{1, peer, 5, 0}}, {{"Player", 5}}},
        {"a gap beyond the limit", {{1, peer, 0, 0}}, 31s, {{1, peer, 5, 0}, {3, peer, 9, 0}}, {}},
        {"a clock that goes back", {{1, peer, 0, 0}}, -50s, {{1, peer, 5, 0}}, {{"Player", 5}}},
        {"an unknown process is charged to nobody", {{9, peer, 0, 0}}, 5s, {{9, peer, 5, 0}}, {}},
        {"helpers count for their application",
         {},
         5s,
         {{1, peer, 100, 0}, {2, peer, 20, 3}, {3, peer, 4, 0}},
         {{"Player", 123}, {"curl", 4}}},
        {"another process is another connection", {{1, peer, 50, 0}}, 5s, {{3, peer, 60, 0}}, {{"curl", 60}}},
        {"a new label twice counts twice", {}, 5s, {{1, peer, 5, 0}, {1, peer, 7, 0}}, {{"Player", 12}}},
        {"a known label twice is compared twice with the same sample",
         {{1, peer, 4, 0}},
         5s,
         {{1, peer, 5, 0}, {1, peer, 7, 0}},
         {{"Player", 4}}},
        {"of a label listed twice the later counters stay",
         {{1, peer, 9, 0}, {1, peer, 4, 0}},
         5s,
         {{1, peer, 5, 0}},
         {{"Player", 1}}},
        {"counters at their end",
         {{1, peer, 0, 0}},
         5s,
         {{1, peer, std::numeric_limits<std::uint64_t>::max(), 0}},
         {{"Player", std::numeric_limits<std::uint64_t>::max()}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        World world;
        world.ingest(0s, c.before);
        world.ingest(c.gap, c.after);
        EXPECT_EQ(world.lastBucket().usage, c.usage);
    }
}

TEST(UsageLedger, theNextDeltaCountsFromTheFallenCounter)
{
    World world;
    world.ingest(0s, {{1, peer, 1'000, 0}});
    world.ingest(5s, {{1, peer, 200, 50}});
    world.ingest(5s, {{1, peer, 300, 50}});
    EXPECT_EQ(world.lastBucket().usage, (FlatMap<std::uint64_t>{{"Player", 100}}));
}

TEST(UsageLedger, aLongerIntervalAllowsALongerGap)
{
    for (const bool isContinuous : {true, false}) {
        World world;
        world.ledger.setSampleInterval(10s);
        world.ingest(0s, {{1, peer, 0, 0}});
        world.ingest(isContinuous ? Seconds{35} : Seconds{41}, {{1, peer, 5, 0}});
        EXPECT_EQ(world.total("Player"), isContinuous ? 5U : 0U);
    }
}

TEST(UsageLedger, afterAGapTheSampleIsABaseline)
{
    World world;
    world.ingest(0s, {{1, peer, 0, 0}});
    world.ingest(31s, {{1, peer, 500, 0}});
    world.ingest(5s, {{1, peer, 507, 0}, {3, peer, 9, 0}});
    EXPECT_EQ(world.total("Player"), 7U);
    EXPECT_EQ(world.total("curl"), 9U) << "new since a trusted sample";
}

TEST(UsageLedger, aConnectionThatComesBack)
{
    struct Case {
        const char* name;
        int secondsAway;
        std::uint64_t bytes;
    };
    constexpr Case cases[] = {
        {"one sample", 10, 100},
        {"a minute", 60, 100},
        {"just within the memory", 115, 100},
        {"back in the very sample that would forget it", 120, 100},
        {"exactly the memory: forgotten at the sample before the return", 125, 1'100},
        {"far beyond", 600, 1'100},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        World world;
        world.ingest(0s, {{1, peer, 1'000, 0}});
        for (int away = 5; away < c.secondsAway; away += 5) world.ingest(5s, {});
        world.ingest(5s, {{1, peer, 1'100, 0}});
        EXPECT_EQ(world.total("Player"), c.bytes);
    }
}

TEST(UsageLedger, theMemoryFollowsTheInterval)
{
    World world;
    world.ledger.setSampleInterval(10s); // the memory is 240 seconds
    world.ingest(0s, {{1, peer, 1'000, 0}});
    for (int i = 0; i < 23; ++i) world.ingest(10s, {});
    EXPECT_EQ(world.ledger.rememberedConnections(), 1U);
    world.ingest(10s, {});
    EXPECT_EQ(world.ledger.rememberedConnections(), 0U);
}

TEST(UsageLedger, anUnknownProcessSetsTheBaselineAllTheSame)
{
    World world;
    world.ingest(0s, {});
    world.ingest(5s, {{9, peer, 400, 0}});
    EXPECT_EQ(world.lastBucket(), (UsageLedger::Bucket{world.at, {}, {}}));
    world.processes[9] = {9, 501, 9, "/usr/bin/late"};
    world.ingest(5s, {{9, peer, 403, 0}});
    EXPECT_EQ(world.total("late"), 3U);
}

TEST(UsageLedger, resolveIsAskedOnlyForBytes)
{
    World world;
    world.ingest(0s, {{1, peer, 10, 0}});
    world.ledger.ingest({{1, peer, 10, 0}}, world.at + 5s, [](std::int32_t) -> const ProcessEntry* {
        ADD_FAILURE() << "nothing moved";
        return nullptr;
    });
}

TEST(UsageLedger, totalsAreLargestFirstAndEqualsByLabel)
{
    World world;
    world.processes = {{1, {1, 0, 1, "b"}}, {2, {2, 0, 2, "a"}}, {3, {3, 0, 3, "B"}}, {4, {4, 0, 4, "z"}}};
    world.ingest(0s, {});
    const Usages expected{{"z", 9, {4}}, {"B", 5, {3}}, {"a", 5, {2}}, {"b", 5, {1}}};
    EXPECT_EQ(world.ingest(5s, {{1, peer, 5, 0}, {2, peer, 5, 0}, {3, peer, 5, 0}, {4, peer, 9, 0}}), expected);
    world.ingest(5s, {});
    EXPECT_EQ(world.ledger.totals(5s, world.at), expected) << "the same over a part of the buckets";
}

TEST(UsageLedger, windows)
{
    const auto bucket = [](Seconds at, std::uint64_t bytes) {
        return UsageLedger::Bucket{Date{at}, {{"curl", bytes}}, {{"curl", {static_cast<std::int32_t>(bytes)}}}};
    };
    UsageLedger ledger{100s, 5s, CountDirection::both};
    ledger.restore({bucket(900s, 1), bucket(950s, 2), bucket(990s, 4), bucket(1'010s, 8)}, Date{1'000s});
    struct Case {
        const char* name;
        Seconds window;
        std::uint64_t bytes;
        std::set<std::int32_t> pids;
    };
    const Case cases[] = {
        {"all", 100s, 15, {1, 2, 4, 8}},
        {"longer than the retention", 5'000s, 15, {1, 2, 4, 8}},
        {"just less than all", Seconds{99.9}, 14, {2, 4, 8}},
        {"a bucket at the edge is inside", 50s, 14, {2, 4, 8}},
        {"a bucket past the edge is not", Seconds{49.9}, 12, {4, 8}},
        {"no window, and still what is later", 0s, 8, {8}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ledger.total("curl", c.window, Date{1'000s}), c.bytes);
        EXPECT_EQ(ledger.totals(c.window, Date{1'000s}), (Usages{{"curl", c.bytes, c.pids}}));
    }
    EXPECT_EQ(ledger.total("nobody", 100s, Date{1'000s}), 0U);
    EXPECT_EQ(ledger.total("nobody", 10s, Date{1'000s}), 0U);
    EXPECT_TRUE(ledger.totals(100s, Date{2'000s}).empty());
}

TEST(UsageLedger, restoreDropsWhatIsTooOldAndForgetsCounters)
{
    World world;
    world.ingest(0s, {{1, peer, 0, 0}});
    world.ingest(5s, {{1, peer, 5, 0}});
    const Date now = world.at;
    world.ledger.restore({{now - 3'601s, {{"old", 1}}, {}},
                          {now - 3'600s, {{"edge", 2}}, {}},
                          {now, {{"late", 3}}, {}},
                          {now - 9'000s, {{"old", 4}}, {}}},
                         now);
    EXPECT_EQ(world.ledger.totals(wholeDay, now), (Usages{{"late", 3, {}}, {"edge", 2, {}}}));
    EXPECT_EQ(world.ledger.snapshot().buckets.size(), 2U);
    world.ingest(5s, {{1, peer, 99, 0}});
    EXPECT_EQ(world.total("Player"), 0U) << "the first sample after a start is a baseline";
}

TEST(UsageLedger, aShorterRetentionLosesBucketsForGood)
{
    World world;
    world.ingest(0s, {});
    world.ingest(5s, {{1, peer, 5, 0}});
    world.ingest(10s, {{1, peer, 7, 0}});
    world.ledger.setRetention(10s, world.at);
    EXPECT_EQ(world.ledger.retentionSeconds(), Seconds{10s});
    EXPECT_EQ(world.total("Player"), 7U) << "at the edge";
    world.ledger.setRetention(9s, world.at);
    world.ledger.setRetention(3'600s, world.at);
    EXPECT_EQ(world.total("Player"), 2U);
}

TEST(UsageLedger, pidsAreCollectedOnlyThroughUsage)
{
    const std::deque<UsageLedger::Bucket> buckets{
        {Date{}, {{"b", 1}, {"d", 0}}, {{"a", {1}}, {"b", {3, 2}}, {"c", {4}}}},
        {Date{}, {{"b", 1}}, {{"b", {5}}, {"d", {6}}}},
    };
    UsageLedger ledger{100s, 5s, CountDirection::both};
    ledger.restore(buckets, Date{});
    EXPECT_EQ(ledger.totals(100s, Date{}), (Usages{{"b", 2, {2, 3, 5}}, {"d", 0, {}}}));
    EXPECT_EQ(ledger.snapshot().buckets, buckets) << "the buckets as they are";
}

TEST(UsageLedger, clearRemovesAnApplicationAndKeepsItsCounters)
{
    World world;
    world.ingest(0s, {{1, peer, 0, 0}, {3, peer, 0, 0}});
    world.ingest(5s, {{1, peer, 50, 0}, {3, peer, 6, 0}});
    world.ledger.clear("Player");
    world.ledger.clear("nobody");
    EXPECT_EQ(world.total("Player"), 0U);
    EXPECT_EQ(world.lastBucket(), (UsageLedger::Bucket{world.at, {{"curl", 6}}, {{"curl", {3}}}}));
    world.ingest(5s, {{1, peer, 57, 0}});
    EXPECT_EQ(world.total("Player"), 7U);
}

TEST(UsageLedger, resets)
{
    World world;
    world.ingest(0s, {{1, peer, 0, 0}});
    world.ingest(5s, {{1, peer, 50, 0}});
    world.ledger.resetBaseline();
    EXPECT_EQ(world.total("Player"), 50U);
    EXPECT_EQ(world.ledger.rememberedConnections(), 0U);
    world.ingest(5s, {{1, peer, 90, 0}, {3, peer, 5, 0}});
    EXPECT_EQ(world.total("Player"), 50U);
    EXPECT_EQ(world.total("curl"), 0U);

    world.ledger.resetAll();
    EXPECT_TRUE(world.ledger.snapshot().buckets.empty());
    EXPECT_EQ(world.total("Player"), 0U);
    EXPECT_TRUE(world.ingest(5s, {{1, peer, 99, 0}}).empty());
}

TEST(UsageLedger, hoursOfChangingConnectionsStayBounded)
{
    World world;
    constexpr int ticks = 6 * 3'600 / 5;
    std::size_t mostConnections = 0;
    std::size_t mostBuckets = 0;
    std::size_t mostApps = 0;
    for (int tick = 0; tick < ticks; ++tick) {
        // Five connections per sample that live for one sample each, of a program whose name is new every minute.
        const std::int32_t pid = tick / 12 + 10;
        world.processes = {{pid, {pid, 501, pid, "/tmp/build-" + std::to_string(pid)}}};
        std::vector<ConnectionSample> samples(5, {pid, "", 1, 0});
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i].connection = "tcp4 a:" + std::to_string(tick) + "." + std::to_string(i) + "<->b:1";
        }
        mostApps = std::max(mostApps, world.ingest(5s, samples).size());
        mostConnections = std::max(mostConnections, world.ledger.rememberedConnections());
        mostBuckets = std::max(mostBuckets, world.ledger.snapshot().buckets.size());
    }
    EXPECT_EQ(mostConnections, 24U * 5U) << "120 seconds of connections";
    EXPECT_EQ(mostBuckets, 721U) << "an hour of samples, both ends included";
    EXPECT_EQ(mostApps, 61U);
}

TEST(UsageLedgerDeathTest, aSumThatDoesNotFitEndsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    World world;
    world.ingest(0s, {{1, peer, 0, 0}});
    EXPECT_EXIT(world.ingest(5s, {{1, peer, std::numeric_limits<std::uint64_t>::max(), 1}}),
                testing::ExitedWithCode(70), "fatal: byte counter overflow");
}

} // namespace
} // namespace quellon
