#include "EngineWorld.h"

#include <gmock/gmock.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view joined = "📶 en0 · gateway 172.20.10.1 (hotspot range)";
constexpr std::string_view started = "Quellon Pro started · 2 rules";

TEST(GuardEngine, fieldsAtConstruction)
{
    EngineWorld world;
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_EQ(engine.status(), (MeteredStatus{false, "", "Not checked yet"}));
    EXPECT_EQ(engine.idleTetherInterface(), std::nullopt);
    EXPECT_EQ(engine.interfaceNames(), (InterfaceNames::Map{{"en0", "Wi-Fi"}}));
    EXPECT_THAT(engine.usage(), IsEmpty());
    EXPECT_THAT(engine.events(), IsEmpty());
    EXPECT_FALSE(engine.isRunning());
    EXPECT_FALSE(engine.isTicking());
    EXPECT_EQ(engine.lastSampleFailureAt(), std::nullopt);
    EXPECT_EQ(engine.sampling(), SamplingDiagnostics{});
    EXPECT_TRUE(engine.capabilities().canSampleTraffic);
    EXPECT_EQ(engine.capabilities().edition, AppEdition::pro);
    EXPECT_EQ(world.host.runs().front().command.path, "/usr/sbin/networksetup");
    EXPECT_EQ(world.host.runs(ToolRole::parent), 2U);
    EXPECT_EQ(world.host.runs().size(), 3U);
}

TEST(GuardEngine, interfaceNamesAreEmptyWhenTheirToolFails)
{
    EngineWorld world;
    world.host.tool(ToolRole::networksetup).fails();
    const GuardEngine engine{world.host, world.stopped()};
    EXPECT_THAT(engine.interfaceNames(), IsEmpty());
}

TEST(GuardEngine, aTimeOutAtConstructionIsToldByTheNextTick)
{
    EngineWorld world;
    world.host.tool(ToolRole::networksetup).timesOut();
    const Date before = world.host.now();
    GuardEngine engine{world.host};
    EXPECT_EQ(world.host.now() - before, 4s);
    world.host.advance(0s);
    EXPECT_THAT(messages(engine), ElementsAre(started, "networksetup 超时未返回，本轮采样已跳过", joined));
}

TEST(GuardEngine, startTwiceLeavesOneTimerAndOneEvent)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    engine.start();
    EXPECT_THAT(messages(engine), ElementsAre(started));
    world.host.advance(0s);
    EXPECT_EQ(engine.sampling().completedTicks, 1);
    world.host.advance(10s);
    EXPECT_EQ(engine.sampling().completedTicks, 3);
    EXPECT_EQ(engine.sampling().skippedTicks, 0);
}

TEST(GuardEngine, stopTwiceLogsTwice)
{
    EngineWorld world;
    GuardEngine engine{world.host, world.stopped()};
    engine.stop();
    engine.stop();
    EXPECT_THAT(messages(engine), ElementsAre("Guard stopped", "Guard stopped"));
}

TEST(GuardEngine, stopEmptiesTheLedgerAndSavesIt)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    world.moves(3'000, 10);
    world.host.advance(5s);
    ASSERT_EQ(engine.usage().size(), 1U);
    engine.stop();
    EXPECT_FALSE(engine.isRunning());
    EXPECT_THAT(engine.usage(), IsEmpty());
    EXPECT_THAT(engine.ledger().totals(1h, world.host.now()), IsEmpty());
    EXPECT_EQ(world.savedLedger(), R"({"buckets":[]})");
    world.host.advance(60s);
    EXPECT_EQ(engine.sampling().completedTicks, 2) << "no timer is left";
}

TEST(GuardEngine, startAfterStopGuardsAgain)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    engine.stop();
    engine.start();
    world.host.advance(0s);
    EXPECT_TRUE(engine.isRunning());
    EXPECT_EQ(engine.sampling().completedTicks, 2);
    EXPECT_THAT(messages(engine), ElementsAre(started, joined, "Guard stopped", started));
}

TEST(GuardEngine, stopDuringACollectionLetsItsApplySetTheTimerAgain)
{
    EngineWorld world;
    world.host.tool(ToolRole::nettop).takes(3s).prints(EngineWorld::trafficText("en0", 1'000, 10));
    GuardEngine engine{world.host};
    world.host.advance(1s);
    engine.stop();
    world.host.advance(2s);
    EXPECT_EQ(engine.sampling().completedTicks, 1) << "the round in flight was not cancelled";
    EXPECT_EQ(messages(engine).back(), joined);
    world.host.advance(5s);
    EXPECT_TRUE(engine.isTicking()) << "its apply saw a new interface and restarted the timer";
    EXPECT_FALSE(engine.isRunning());
}

TEST(GuardEngine, theOldestOf201EventsGoes)
{
    EngineWorld world;
    GuardEngine engine{world.host, world.stopped()};
    for (int i = 1; i <= 201; ++i) engine.append(GuardEvent::Kind::info, std::to_string(i));
    ASSERT_EQ(engine.events().size(), 200U);
    EXPECT_EQ(engine.events().front().message, "201");
    EXPECT_EQ(engine.events().back().message, "2");
}

TEST(GuardEngine, anEventCarriesItsTimeKindAndAFreshIdentifier)
{
    EngineWorld world;
    GuardEngine engine{world.host, world.stopped()};
    world.host.advance(2s);
    engine.append(GuardEvent::Kind::warning, "a");
    engine.append(GuardEvent::Kind::info, "b");
    EXPECT_EQ(engine.events()[1].at, world.host.now());
    EXPECT_EQ(engine.events()[1].kind, GuardEvent::Kind::warning);
    EXPECT_NE(engine.events()[0].id, engine.events()[1].id);
}

TEST(GuardEngine, aBuildThatCanNotSampleSaysWhyAndRunsNoSampler)
{
    EngineWorld world;
    world.host.environment("APP_SANDBOX_CONTAINER_ID", "x");
    GuardEngine engine{world.host};
    world.host.advance(10s);
    EXPECT_THAT(
        messages(engine),
        ElementsAre(
            started,
            "App Store 版受系统沙盒限制，只能提醒，无法暂停或结束其他 App。需要自动处置请使用官网下载的 Pro 版。",
            "沙盒版无法直接读取各 App 的流量，需要启用网络扩展后才能统计。", joined));
    EXPECT_EQ(engine.events()[1].kind, GuardEvent::Kind::warning);
    EXPECT_EQ(engine.events()[2].kind, GuardEvent::Kind::warning);
    EXPECT_THAT(engine.usage(), IsEmpty());
    EXPECT_EQ(world.host.runs(ToolRole::nettop), 0U);
    EXPECT_EQ(world.host.runs(ToolRole::ps), 0U);
    EXPECT_FALSE(world.savedLedger()) << "the round ends before the save";
    EXPECT_TRUE(engine.interfaceCounter()) << "the interface is still read";
}

TEST(GuardEngine, observersAreToldOncePerTurnAndNotAfterTheyLeft)
{
    EngineWorld world;
    GuardEngine engine{world.host, world.stopped()};
    int told = 0;
    {
        const GuardEngine::Observation observation{engine, [&told] { ++told; }};
        engine.append(GuardEvent::Kind::info, "a");
        engine.append(GuardEvent::Kind::info, "b");
        EXPECT_EQ(told, 0) << "never from within the change";
        world.host.advance(0s);
        EXPECT_EQ(told, 1);
        engine.append(GuardEvent::Kind::info, "c");
    }
    world.host.advance(0s);
    EXPECT_EQ(told, 1);
}

TEST(GuardEngine, anObserverMayLeaveWhileItIsTold)
{
    EngineWorld world;
    GuardEngine engine{world.host, world.stopped()};
    std::vector<std::string> told;
    std::optional<GuardEngine::Observation> leaving;
    leaving.emplace(engine, [&, name = std::string{"a name too long to be held without memory of its own"}] {
        leaving.reset();
        told.push_back(name);
    });
    const GuardEngine::Observation staying{engine, [&told] { told.emplace_back("staying"); }};
    for (const char* each : {"a", "b"}) {
        engine.append(GuardEvent::Kind::info, each);
        world.host.advance(0s);
    }
    EXPECT_THAT(told, ElementsAre("a name too long to be held without memory of its own", "staying", "staying"));
}

TEST(GuardEngine, nothingRunsForAnEngineThatIsGone)
{
    EngineWorld world;
    world.host.tool(ToolRole::nettop).takes(8s).prints("");
    {
        GuardEngine engine{world.host};
        world.host.advance(1s);
        EXPECT_TRUE(engine.isTicking());
    }
    world.host.log().clear();
    world.host.advance(60s);
    EXPECT_THAT(world.host.log().messages("sampling"), IsEmpty());
    EXPECT_EQ(world.host.runs(ToolRole::nettop), 1U) << "no timer is left";
}

TEST(GuardEngine, settingsTakeEffectAtOnce)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    GuardSettings settings = engine.settings();
    settings.sampleInterval = 2s;
    settings.direction = CountDirection::outgoing;
    engine.setSettings(settings);
    world.moves(9'000, 60);
    world.host.advance(2s);
    ASSERT_EQ(engine.usage().size(), 1U);
    EXPECT_EQ(engine.usage()[0].bytes, 50U) << "only what was sent counts now";
}

TEST(GuardEngine, equalSettingsTakeEffectAgain)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(3s);
    engine.setSettings(engine.settings());
    world.host.advance(4s);
    EXPECT_EQ(engine.sampling().completedTicks, 1) << "the fire at 5 s is off";
    world.host.advance(1s);
    EXPECT_EQ(engine.sampling().completedTicks, 2) << "5 s after the assignment";
}

} // namespace
} // namespace quellon
