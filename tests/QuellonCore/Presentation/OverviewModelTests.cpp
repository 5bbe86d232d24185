#include "QuellonCore/Presentation/OverviewModel.h"

#include "QuellonCore/Engine/EngineWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

/// One application with one connection.
struct Traffic {
    std::string app;
    std::uint64_t in = 0;
};

/// A guard that is fed by hand.
class OverviewModelTest : public testing::Test {
protected:
    EngineWorld world;
    GuardEngine engine{world.host, world.stopped()};

    OverviewModelTest()
    {
        engine.start();
        // The traffic of a first sample is only a baseline.
        engine.apply(inputs({}));
    }

    static GuardEngine::TickInputs inputs(const std::vector<Traffic>& traffic)
    {
        GuardEngine::TickInputs result;
        result.status = {true, "en0", "en0 · gateway 172.20.10.1 (hotspot range)"};
        result.sampled = true;
        result.nettopCSV = "time,,interface,bytes_in,bytes_out,\n";
        int pid = 500;
        for (const Traffic& each : traffic) {
            ++pid;
            *result.nettopCSV += fmt::format("10:00:00.0,app.{0},,1,1,\n10:00:00.0,tcp4 10.9.0.2:{0}<->203.0.113.9:443,"
                                             "en0,{1},0,\n",
                                             pid, each.in);
            result.psOutput += fmt::format("{0} 501 {0} /opt/{1}\n", pid, each.app);
        }
        return result;
    }

    OverviewModel model() { return OverviewModel::of(engine, world.host.now()); }
};

TEST_F(OverviewModelTest, beforeTheFirstTick)
{
    GuardEngine fresh{world.host, world.stopped()};
    const auto shown = OverviewModel::of(fresh, world.host.now());
    EXPECT_EQ(shown.tone, MenuPresentation::Tone::off);
    EXPECT_EQ(shown.title, "Off");
    EXPECT_EQ(shown.detail, "Not checked yet");
    EXPECT_EQ(shown.interface, "");
    EXPECT_EQ(shown.counters, std::nullopt);
    EXPECT_EQ(shown.warning, std::nullopt);
    EXPECT_EQ(shown.hint, std::nullopt);
    EXPECT_EQ(shown.emptyText, "Guard is off");
    EXPECT_THAT(shown.rows, SizeIs(0));
    EXPECT_THAT(shown.log, SizeIs(0));
}

TEST_F(OverviewModelTest, state)
{
    struct Case {
        const char* name;
        MeteredStatus status;
        const char* title;
        const char* interface;
    };
    const Case cases[] = {
        {"metered", {true, "en0", "en0 · constrained"}, "Guarding", "Wi-Fi"},
        {"not metered", {false, "en0", "en0"}, "Idle · not a metered network", "Wi-Fi"},
        {"an interface without a name of its own", {true, "utun7", "utun7"}, "Guarding", "utun7"},
        {"offline", {false, "", "offline"}, "Idle · not a metered network", ""},
        {"route unreadable", {true, "", "unknown"}, "Guarding", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        GuardEngine::TickInputs inputs;
        inputs.status = c.status;
        engine.apply(inputs);
        EXPECT_EQ(model().title, c.title);
        EXPECT_EQ(model().detail, c.status.detail);
        EXPECT_EQ(model().interface, c.interface);
        EXPECT_EQ(model().emptyText, "No traffic yet");
    }
}

TEST_F(OverviewModelTest, counters)
{
    auto tick = inputs({});
    EXPECT_EQ(model().counters, std::nullopt) << "no reading";
    tick.interfaceCounter = InterfaceCounter{0, 0};
    engine.apply(tick);
    EXPECT_EQ(model().counters, "↓ 0.0 MB  ↑ 0.0 MB");
    tick.interfaceCounter = InterfaceCounter{12'897'485, std::uint64_t{1} << 40U};
    engine.apply(tick);
    EXPECT_EQ(model().counters, "↓ 12.3 MB  ↑ 1024.00 GB");
}

TEST_F(OverviewModelTest, rows)
{
    constexpr std::uint64_t mega = 1024 * 1024;
    engine.apply(inputs({{"small", 1}, {"云盘", 150 * mega}, {"evil\x1B[2J", 49 * mega}, {"half", mega}}));
    const auto shown = model();
    ASSERT_THAT(shown.rows, SizeIs(4));
    EXPECT_EQ(shown.windowHeading, "1min window");
    EXPECT_EQ(shown.rows[0], (OverviewModel::Row{"云盘", "150.0 MB", "150.0 MB", shown.rows[0].share, "75%"}));
    EXPECT_NEAR(shown.rows[0].share, 0.75, 1e-6);
    EXPECT_EQ(shown.rows[1].app, "evil�[2J");
    EXPECT_EQ(shown.rows[1].shareText, "24%");
    EXPECT_EQ(shown.rows[2].shareText, "<1%");
    EXPECT_EQ(shown.rows[3], (OverviewModel::Row{"small", "0.0 MB", "0.0 MB", shown.rows[3].share, "<1%"}));
    EXPECT_GT(shown.rows[3].share, 0.0);
}

TEST_F(OverviewModelTest, halfAPercentIsRoundedUp)
{
    engine.apply(inputs({{"most", 199}, {"least", 1}}));
    ASSERT_THAT(model().rows, SizeIs(2));
    EXPECT_EQ(model().rows[0].shareText, "100%");
    EXPECT_EQ(model().rows[1].shareText, "1%");
}

TEST_F(OverviewModelTest, oneRowHasItAll)
{
    engine.apply(inputs({{"huge", UINT64_MAX}}));
    ASSERT_THAT(model().rows, SizeIs(1));
    EXPECT_EQ(model().rows[0], (OverviewModel::Row{"huge", "17179869184.00 GB", "17179869184.00 GB", 1.0, "100%"}));
}

TEST_F(OverviewModelTest, warningWhileTheLatestSampleIsMissing)
{
    world.host.tool(ToolRole::nettop).fails();
    engine.tick();
    world.host.advance(1s);
    EXPECT_EQ(model().warning, fmt::format("Couldn't read per-app traffic at {} — retrying", "10:00:00"));
    world.moves(1, 1);
    world.host.advance(4s);
    EXPECT_EQ(model().warning, std::nullopt);
}

TEST_F(OverviewModelTest, hint)
{
    GuardEngine::TickInputs tick;
    tick.status = {false, "en0", "en0"};
    tick.idleTether = "en7";
    engine.apply(tick);
    EXPECT_EQ(model().hint, "en7 is ready, but macOS is still using Wi-Fi.");
    tick.status.interface.clear();
    engine.apply(tick);
    EXPECT_EQ(model().hint, "en7 is ready, but macOS is sending traffic elsewhere.");
    auto settings = engine.settings();
    settings.tetherHintDismissed = true;
    engine.setSettings(settings);
    EXPECT_EQ(model().hint, std::nullopt);
}

TEST_F(OverviewModelTest, theHeadingNamesTheShortestWindowWhateverItIs)
{
    struct Case {
        double window;
        const char* heading;
    };
    constexpr Case cases[] = {
        {60.0, "1min window"},
        {90.0, "90s window"},
        {7200.0, "2h window"},
        {0.5, "0h window"},
        {0.0, "0h window"},
        {-5.0, "-5s window"},
        {1e300, "9223372036854775807s window"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.heading);
        GuardSettings settings = engine.settings();
        settings.rules() = {{UUID{}, Seconds{c.window}, 1, ActionLevel::notify, true}};
        engine.setSettings(settings);
        engine.apply(inputs({{"a", 10}}));
        EXPECT_EQ(model().windowHeading, c.heading);
    }
}

TEST_F(OverviewModelTest, log)
{
    engine.append(GuardEvent::Kind::warning, "one\ntwo");
    const auto shown = model();
    ASSERT_FALSE(shown.log.empty());
    EXPECT_EQ(shown.log.front().kind, GuardEvent::Kind::warning);
    EXPECT_EQ(shown.log.front().time, "10:00:00");
    EXPECT_EQ(shown.log.front().message, "one�two");
    EXPECT_EQ(shown.log.back().message, "Quellon Pro started · 2 rules");
    for (int i = 0; i < 300; ++i) engine.append(GuardEvent::Kind::info, std::to_string(i));
    EXPECT_THAT(model().log, SizeIs(200));
    EXPECT_EQ(model().log.front().message, "299");
    world.host.setZone("Asia/Tokyo");
    EXPECT_EQ(model().log.front().time, "19:00:00") << "the user has moved";
}

TEST_F(OverviewModelTest, equalStateGivesAnEqualModel)
{
    engine.apply(inputs({{"a", 10}, {"b", 5}}));
    EXPECT_EQ(model(), model());
    const auto before = model();
    engine.append(GuardEvent::Kind::info, "x");
    EXPECT_NE(model(), before);
}

} // namespace
} // namespace quellon
