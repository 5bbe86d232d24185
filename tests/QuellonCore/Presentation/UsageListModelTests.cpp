#include "QuellonCore/Presentation/UsageListModel.h"

#include "PanelWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Date now = Date{} + Seconds{8e8};

UsageRowModel rowOf(std::uint64_t bytes, std::uint64_t threshold)
{
    return UsageRowModel::of({{"Player", bytes, {}}, threshold, false, {}, false, {}, {}}, now);
}

TEST(UsageListModel, visibleUsageFloor)
{
    struct Case {
        const char* name;
        std::optional<std::uint64_t> threshold;
        std::uint64_t floor;
    };
    constexpr Case cases[] = {
        {"no enabled rule", std::nullopt, 1'048'576},
        {"a limit of nothing", 0, 1'048'576},
        {"100,000,000", 100'000'000, 5'000'000},
        {"10,000,000 stays at the least", 10'000'000, 1'048'576},
        {"just the least", 20'971'520, 1'048'576},
        {"the last that is cut off to the least", 20'971'539, 1'048'576},
        {"the first above", 20'971'540, 1'048'577},
        {"the largest", std::numeric_limits<std::uint64_t>::max(), 922'337'203'685'477'580},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(UsageListModel::visibleUsageFloor(c.threshold), c.floor);
    }
}

TEST(UsageListModel, select)
{
    struct Case {
        const char* name;
        std::vector<std::uint64_t> usage;
        std::size_t rows;
        std::optional<std::string> hiddenUsageLine;
    };
    constexpr std::uint64_t floor = 5'000'000;
    constexpr std::uint64_t big = 10 * mega;
    const Case cases[] = {
        {"nothing", {}, 0, {}},
        {"exactly the floor", {floor}, 1, {}},
        {"one byte below the floor", {floor - 1}, 0, "1 more apps · 4.8 MB"},
        {"six above", {big, big, big, big, big, big}, 6, {}},
        {"one too many is counted but not summed up", {big, big, big, big, big, big, floor}, 6, "1 more apps · 0.0 MB"},
        {"eight above and three below",
         {big, big, big, big, big, big, big, big, 3 * mega, 2 * mega, mega},
         6,
         "5 more apps · 6.0 MB"},
        {"all below", {3 * mega, 2 * mega, 0}, 0, "3 more apps · 5.0 MB"},
        {"one of each", {big, 0}, 1, "1 more apps · 0.0 MB"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<AppUsage> usage;
        for (const std::uint64_t bytes : c.usage) usage.push_back({fmt::format("A{}", usage.size()), bytes, {}});
        const auto selection = UsageListModel::select(usage, floor);
        EXPECT_THAT(selection.rows, testing::ElementsAreArray(usage.begin(), usage.begin() + static_cast<int>(c.rows)));
        EXPECT_EQ(selection.hiddenUsageLine, c.hiddenUsageLine);
    }
}

TEST(UsageRowModel, amountAndBar)
{
    struct Case {
        const char* name;
        std::uint64_t bytes;
        std::uint64_t threshold;
        double fraction;
        Tint amountTint;
        Tint barTint;
    };
    constexpr Case cases[] = {
        {"nothing", 0, 1000, 0.0, Tint::secondary, Tint::green},
        {"below the half", 499, 1000, 0.499, Tint::secondary, Tint::green},
        {"the half", 500, 1000, 0.5, Tint::secondary, Tint::yellow},
        {"below 0.85", 849, 1000, 0.849, Tint::secondary, Tint::yellow},
        {"0.85", 850, 1000, 0.85, Tint::secondary, Tint::red},
        {"just below the threshold", 999, 1000, 0.999, Tint::secondary, Tint::red},
        {"exactly the threshold", 1000, 1000, 1.0, Tint::red, Tint::red},
        {"above the threshold", 5000, 1000, 1.0, Tint::red, Tint::red},
        {"no threshold", 5000, 0, 0.0, Tint::secondary, Tint::green},
        {"neither", 0, 0, 0.0, Tint::secondary, Tint::green},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto row = rowOf(c.bytes, c.threshold);
        EXPECT_DOUBLE_EQ(row.fraction, c.fraction);
        EXPECT_EQ(row.amountTint, c.amountTint);
        EXPECT_EQ(row.barTint, c.barTint);
    }
    EXPECT_EQ(rowOf(32 * mega, 1).amount, "32.0 MB");
}

TEST(UsageRowModel, snooze)
{
    struct Case {
        const char* name;
        std::optional<Seconds> ahead;
        const char* text;
    };
    constexpr Case cases[] = {
        {"not snoozed", std::nullopt, ""},
        {"a quarter of an hour", Seconds{900}, "zzz 15m"},
        {"cut off", Seconds{899.9}, "zzz 14m"},
        {"the last minute", Seconds{59}, "zzz 0m"},
        {"over, not yet pruned", Seconds{-59}, "zzz 0m"},
        {"long over, not yet pruned", Seconds{-61}, "zzz -1m"},
        {"without end", Seconds{1e300}, "zzz 9223372036854775807m"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        UsageRow row{{"Player", 1, {}}, 0, false, {}, false, {}, {}};
        if (c.ahead) row.snoozedUntil = now + *c.ahead;
        EXPECT_EQ(UsageRowModel::of(row, now).snooze, c.text);
    }
}

TEST(UsageRowModel, collapsed)
{
    const auto row = UsageRowModel::of({{"ev\til", 1, {}}, 0, false, {}, false, AppExplanation{}, "a line"}, now);
    EXPECT_EQ(row.name, "ev�il");
    EXPECT_EQ(row.toggle, (PanelButton{"", "Explain ev�il", {PanelAction::Kind::toggleRow, "ev\til"}}));
    EXPECT_EQ(row.chevron, "chevron.right");
    EXPECT_EQ(row.chronicBadge, "");
    EXPECT_EQ(row.chronicHelp, "");
    EXPECT_EQ(row.details, std::nullopt);
}

TEST(UsageRowModel, expanded)
{
    AppExplanation explanation;
    explanation.whatItIs = "A music\nplayer.";
    UsageRow row{{"Player", 1, {}}, 0, true, {}, true, explanation, "Muted until 00:00."};
    const auto known = UsageRowModel::of(row, now);
    EXPECT_EQ(known.toggle, (PanelButton{"", "Collapse Player", {PanelAction::Kind::toggleRow, "Player"}}));
    EXPECT_EQ(known.chevron, "chevron.down");
    EXPECT_EQ(known.chronicBadge, "🐌");
    EXPECT_EQ(known.chronicHelp, "Slow but steady — high usage over the long window");
    ASSERT_TRUE(known.details);
    EXPECT_EQ(known.details->whatItIs, "A music�player.");
    EXPECT_EQ(known.details->actionLine, "Muted until 00:00.");
    EXPECT_EQ(known.details->button,
              (PanelButton{"Details…", "Open details for Player", {PanelAction::Kind::openDetails, "Player"}}));
    row.explanation.reset();
    row.actionLine.reset();
    const auto unknown = UsageRowModel::of(row, now);
    ASSERT_TRUE(unknown.details);
    EXPECT_EQ(unknown.details->whatItIs, "Not in the knowledge pack yet — see Details for its activity.");
    EXPECT_EQ(unknown.details->actionLine, std::nullopt);
}

class UsageListTest : public testing::Test {
protected:
    PanelWorld world;
    GuardEngine& engine = world.engine;

    UsageListModel model(const std::optional<std::string>& expandedApp = {})
    {
        return UsageListModel::of(engine, world.host.now(), expandedApp);
    }
};

TEST_F(UsageListTest, withARule)
{
    world.move({{"A", 10 * mega}, {"B", 2 * mega}, {"C", 1}});
    const auto list = model();
    EXPECT_EQ(list.title, "Last 1min");
    EXPECT_EQ(list.limit, "limit 10.0 MB");
    EXPECT_EQ(list.warning, std::nullopt);
    EXPECT_EQ(list.empty, std::nullopt);
    ASSERT_THAT(list.rows, SizeIs(2));
    EXPECT_EQ(list.rows[0].name, "A");
    EXPECT_EQ(list.rows[0].amountTint, Tint::red);
    EXPECT_EQ(list.rows[1].amount, "2.0 MB");
    EXPECT_DOUBLE_EQ(list.rows[1].fraction, 0.2);
    EXPECT_EQ(list.hiddenUsage, "1 more apps · 0.0 MB");
}

TEST_F(UsageListTest, theShortestEnabledRuleIsThePrimaryOne)
{
    world.setRules({PanelWorld::rule(3600s, 100 * mega), PanelWorld::rule(30s, mega, false),
                    PanelWorld::rule(300s, 40 * mega), PanelWorld::rule(300s, 7 * mega)});
    world.move({{"A", 2 * mega}, {"B", 2 * mega - 1}});
    const auto list = model();
    EXPECT_EQ(list.title, "Last 5min");
    EXPECT_EQ(list.limit, "limit 40.0 MB");
    ASSERT_THAT(list.rows, SizeIs(1));
    EXPECT_EQ(list.rows[0].name, "A");
}

TEST_F(UsageListTest, noEnabledRule)
{
    for (const auto& rules : {std::vector<GuardRule>{}, {PanelWorld::rule(300s, 1, false)}}) {
        world.setRules(rules);
        world.move({{"A", 3000 * mega}, {"B", mega}, {"C", mega - 1}});
        const auto list = model();
        EXPECT_EQ(list.title, "Last 1min");
        EXPECT_EQ(list.limit, std::nullopt);
        ASSERT_THAT(list.rows, SizeIs(2));
        EXPECT_EQ(list.rows[0].fraction, 0.0);
        EXPECT_EQ(list.rows[0].barTint, Tint::green);
        EXPECT_EQ(list.rows[0].amountTint, Tint::secondary);
        EXPECT_EQ(list.hiddenUsage, "1 more apps · 1.0 MB");
    }
}

TEST_F(UsageListTest, nothingToShow)
{
    EXPECT_EQ(model().empty, "No traffic yet");
    EXPECT_THAT(model().rows, IsEmpty());
    engine.stop();
    EXPECT_EQ(model().empty, "Guard is off");
    EXPECT_EQ(model().hiddenUsage, std::nullopt);
}

TEST_F(UsageListTest, onlySmallOnesAreASummary)
{
    world.move({{"A", 1000}, {"B", mega - 1}});
    EXPECT_EQ(model().empty, std::nullopt);
    EXPECT_THAT(model().rows, IsEmpty());
    EXPECT_EQ(model().hiddenUsage, "2 more apps · 1.0 MB");
}

TEST_F(UsageListTest, aFailedSampleHidesTheRowsUntilALaterRound)
{
    world.move({{"A", 2 * mega}});
    world.host.tool(ToolRole::nettop).fails();
    engine.tick();
    world.host.advance(1s);
    EXPECT_EQ(model().warning, "Couldn't read per-app traffic just now — retrying");
    EXPECT_THAT(model().rows, IsEmpty());
    EXPECT_EQ(model().hiddenUsage, std::nullopt);
    EXPECT_EQ(model().title, "Last 1min");
    world.moves(1, 1);
    world.host.advance(5s);
    EXPECT_EQ(model().warning, std::nullopt);
    EXPECT_THAT(model().rows, SizeIs(1));
}

TEST(UsageListModel, warningFor)
{
    struct Case {
        const char* name;
        Capabilities capabilities;
        bool failed;
        std::optional<std::string> warning;
    };
    const Case cases[] = {
        {"all well", {AppEdition::pro, false, true}, false, {}},
        {"a sample failed", {AppEdition::pro, false, true}, true, "Couldn't read per-app traffic just now — retrying"},
        {"sandboxed",
         {AppEdition::pro, true, false},
         false,
         "沙盒版无法直接读取各 App 的流量，需要启用网络扩展后才能统计。"},
        {"not allowed", {AppEdition::pro, false, false}, false, "读取流量数据失败：系统未返回 nettop 结果。"},
        {"not allowed outranks a failed sample",
         {AppEdition::pro, false, false},
         true,
         "读取流量数据失败：系统未返回 nettop 结果。"},
        {"sandboxed outranks a failed sample",
         {AppEdition::pro, true, false},
         true,
         "沙盒版无法直接读取各 App 的流量，需要启用网络扩展后才能统计。"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(UsageListModel::warningFor(c.capabilities, c.failed ? std::optional{now} : std::nullopt), c.warning);
    }
}

TEST_F(UsageListTest, whatCannotBeSampledHidesUsageOfBefore)
{
    world.move({{"A", 20 * mega}});
    engine.persist();
    auto options = world.stopped();
    options.capabilities = Capabilities{AppEdition::pro, true, false};
    GuardEngine blocked{world.host, options};
    blocked.apply({});
    ASSERT_FALSE(blocked.usage().empty());
    const auto list = UsageListModel::of(blocked, world.host.now(), "A");
    EXPECT_EQ(list.warning, "沙盒版无法直接读取各 App 的流量，需要启用网络扩展后才能统计。");
    EXPECT_THAT(list.rows, IsEmpty());
    EXPECT_EQ(list.hiddenUsage, std::nullopt);
    EXPECT_EQ(list.limit, "limit 10.0 MB");
}

TEST_F(UsageListTest, oneRowIsOpen)
{
    world.move({{"curl", 5 * mega}, {"nobodyknows", 4 * mega}});
    engine.muteAsks("nobodyknows", world.host.now());
    EXPECT_EQ(model().rows[0].details, std::nullopt);
    EXPECT_EQ(model("gone").rows[1].details, std::nullopt);
    const auto first = model("curl").rows;
    ASSERT_TRUE(first[0].details);
    EXPECT_EQ(first[0].details->whatItIs, engine.explanation("curl")->whatItIs);
    EXPECT_EQ(first[0].details->actionLine, std::nullopt);
    EXPECT_EQ(first[1].details, std::nullopt);
    const auto second = model("nobodyknows").rows;
    EXPECT_EQ(second[0].details, std::nullopt);
    ASSERT_TRUE(second[1].details);
    EXPECT_EQ(second[1].details->whatItIs, "Not in the knowledge pack yet — see Details for its activity.");
    EXPECT_EQ(second[1].details->actionLine, "Muted until 00:00.");
}

TEST_F(UsageListTest, marksOfARow)
{
    world.setRules({PanelWorld::rule(60s, 100 * mega), PanelWorld::rule(3600s, 10 * mega)});
    world.move({{"slow", 6 * mega}, {"quick", 5 * mega - 1}});
    engine.snooze("quick", 10);
    ASSERT_THAT(engine.chronic(), ElementsAre("slow"));
    auto rows = model().rows;
    ASSERT_THAT(rows, SizeIs(1)) << "a twentieth of the limit is 5 MiB";
    EXPECT_EQ(rows[0].chronicBadge, "🐌");
    EXPECT_EQ(rows[0].snooze, "");
    world.move({{"slow", 6 * mega}, {"quick", 6 * mega}});
    rows = model().rows;
    ASSERT_THAT(rows, SizeIs(2));
    EXPECT_EQ(rows[0].name, "quick");
    EXPECT_EQ(rows[0].snooze, "zzz 10m");
    EXPECT_EQ(rows[0].chronicBadge, "🐌");
    world.move({{"slow", 6 * mega}, {"quick", 21 * mega}});
    EXPECT_EQ(model().rows[0].chronicBadge, "") << "quick, not slow";
}

} // namespace
} // namespace quellon
