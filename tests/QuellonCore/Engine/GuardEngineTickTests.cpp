#include "EngineWorld.h"

#include <gmock/gmock.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> toolNames(const ScriptedHost& host)
{
    std::vector<std::string> names;
    for (const ScriptedRun& run : host.runs())
        names.push_back(run.command.path.substr(run.command.path.rfind('/') + 1));
    return names;
}

std::vector<std::string> lines(ScriptedHost& host, std::string_view category, LogLevel level)
{
    std::vector<std::string> result;
    for (const auto& line : host.log().lines()) {
        if (line.category == category && line.level == level) result.push_back(line.message);
    }
    return result;
}

TEST(Tick, aMeteredRoundRunsItsToolsInOrder)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    EXPECT_THAT(toolNames(world.host), ElementsAre("networksetup", "ps", "ps", "route", "netstat", "nettop", "ps"))
        << "a gateway in the hotspot range needs no ifconfig";
    EXPECT_EQ(engine.status(), (MeteredStatus{true, "en0", "en0 · gateway 172.20.10.1 (hotspot range)"}));
    EXPECT_EQ(engine.interfaceCounter(), (InterfaceCounter{5'000, 700}));
    EXPECT_EQ(engine.sampling().completedTicks, 1);
    EXPECT_FALSE(engine.isTicking());
}

TEST(Tick, offAMeteredNetworkNeitherSamplerRuns)
{
    EngineWorld world;
    world.goHome();
    world.host.setAddresses({{"en0", "192.168.1.7"}, {"en5", "172.20.10.4"}});
    GuardEngine engine{world.host};
    world.host.advance(0s);
    EXPECT_THAT(toolNames(world.host), ElementsAre("networksetup", "ps", "ps", "route", "ifconfig"));
    EXPECT_EQ(engine.idleTetherInterface(), "en5");
    EXPECT_TRUE(engine.showsTetherHint());
    EXPECT_EQ(engine.interfaceCounter(), std::nullopt);
    EXPECT_EQ(messages(engine).back(), "🏠 en0 · gateway 192.168.1.1 · not metered");
    EXPECT_FALSE(world.savedLedger()) << "nothing is saved in such a round";
}

TEST(Tick, aGuardForAllNetworksSamplesAtHomeToo)
{
    EngineWorld world;
    world.goHome();
    world.storeSettings(R"({"meteredOnly":false})");
    GuardEngine engine{world.host};
    world.host.advance(0s);
    EXPECT_THAT(toolNames(world.host), ElementsAre("networksetup", "ps", "ps", "route", "ifconfig", "nettop", "ps"));
    world.moves(1'500, 10);
    world.host.advance(5s);
    ASSERT_EQ(engine.usage().size(), 1U);
    EXPECT_EQ(engine.usage()[0].bytes, 500U);
}

TEST(Tick, theTimerIsSlowUntilTheFirstRoundSeesAnInterface)
{
    EngineWorld world;
    world.host.tool(ToolRole::route).takes(3s).prints("");
    GuardEngine engine{world.host};
    world.host.advance(29s);
    EXPECT_EQ(engine.sampling().completedTicks, 1);
    EXPECT_EQ(engine.sampling().skippedTicks, 0);
    world.joinHotspot();
    world.host.advance(4s);
    EXPECT_EQ(engine.sampling().completedTicks, 2) << "the fire at 30 s, still answered slowly";
    world.host.advance(5s);
    EXPECT_TRUE(engine.isTicking()) << "5 s after the round that found the hotspot";
}

TEST(Tick, aChangeOfTheVerdictOnTheSameInterfaceKeepsTheTimer)
{
    EngineWorld world;
    world.goHome();
    GuardEngine engine{world.host};
    world.host.advance(0s);
    world.joinHotspot();
    world.host.advance(30s);
    EXPECT_TRUE(engine.status().isMetered);
    EXPECT_EQ(engine.sampling().completedTicks, 2);
    world.host.advance(29s);
    EXPECT_EQ(engine.sampling().completedTicks, 2) << "still the 30-second timer";
}

TEST(Tick, slowSampleIsSkippedNotStacked)
{
    EngineWorld world;
    world.storeSettings(R"({"meteredOnly":false})"); // so that the first timer is the 5-second one
    world.host.tool(ToolRole::nettop).takes(12s).prints(EngineWorld::trafficText("en0", 1, 1));
    GuardEngine engine{world.host};
    world.host.advance(11s); // the fires at 5 and 10 s meet the first round still running
    EXPECT_EQ(engine.sampling().skippedTicks, 2);
    EXPECT_EQ(engine.sampling().lastSkippedAt, world.host.now() - 1s);
    EXPECT_EQ(engine.sampling().completedTicks, 0);
    world.host.advance(1s);
    EXPECT_EQ(engine.sampling().completedTicks, 1);
    EXPECT_EQ(engine.sampling().lastDurationSeconds, Seconds{12.0});
    EXPECT_EQ(engine.sampling().verdict(5s), SamplingDiagnostics::Verdict::overlapping);
    EXPECT_THAT(lines(world.host, "sampling", LogLevel::info),
                ElementsAre("tick skipped — previous round still running",
                            "tick skipped — previous round still running",
                            "collected in 12.00s · sampled=true · nettop=ok"));
}

TEST(Tick, aHangingSamplerIsToldAndTheRoundGoesOn)
{
    EngineWorld world;
    world.host.tool(ToolRole::nettop).timesOut();
    GuardEngine engine{world.host};
    world.host.advance(20s);
    EXPECT_EQ(engine.sampling().completedTicks, 1);
    EXPECT_EQ(engine.lastSampleFailureAt(), world.host.now());
    EXPECT_THAT(messages(engine), ElementsAre("Quellon Pro started · 2 rules", "nettop 超时未返回，本轮采样已跳过",
                                              "📶 en0 · gateway 172.20.10.1 (hotspot range)"));
    EXPECT_THAT(lines(world.host, "sampling", LogLevel::error),
                ElementsAre("per-app sample unavailable — ledger gets no data this round"));
    EXPECT_EQ(lines(world.host, "sampling", LogLevel::info).back(),
              "collected in 20.00s · sampled=true · nettop=FAILED");
    EXPECT_TRUE(world.savedLedger()) << "saved all the same";
}

TEST(Tick, everyTimeOutOfARoundIsToldInItsOrderBeforeTheInterface)
{
    EngineWorld world;
    for (const ToolRole role : {ToolRole::netstat, ToolRole::nettop, ToolRole::ps}) world.host.tool(role).timesOut();
    GuardEngine engine{world.host};
    world.host.advance(28s);
    EXPECT_THAT(messages(engine), ElementsAre("Quellon Pro started · 2 rules", "netstat 超时未返回，本轮采样已跳过",
                                              "nettop 超时未返回，本轮采样已跳过", "ps 超时未返回，本轮采样已跳过",
                                              "📶 en0 · gateway 172.20.10.1 (hotspot range)"));
    for (std::size_t i = 1; i <= 3; ++i) EXPECT_EQ(engine.events()[i].kind, GuardEvent::Kind::warning);
    EXPECT_EQ(engine.events()[0].kind, GuardEvent::Kind::info);
}

TEST(Tick, aTimeOutInARoundWithoutASampleIsToldByThatRound)
{
    EngineWorld world;
    world.goHome();
    world.host.tool(ToolRole::ifconfig).timesOut();
    GuardEngine engine{world.host};
    world.host.advance(4s);
    EXPECT_THAT(messages(engine), ElementsAre("Quellon Pro started · 2 rules", "ifconfig 超时未返回，本轮采样已跳过",
                                              "🏠 en0 · gateway 192.168.1.1 · not metered"));
    EXPECT_EQ(engine.lastSampleFailureAt(), std::nullopt) << "no sample was asked for";
    EXPECT_THAT(lines(world.host, "sampling", LogLevel::error), IsEmpty());
    EXPECT_THAT(lines(world.host, "sampling", LogLevel::info),
                ElementsAre("collected in 4.00s · sampled=false · nettop=FAILED"));
}

TEST(Tick, aSampleAfterAFailedOneChargesBothRounds)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    world.host.tool(ToolRole::nettop).fails();
    world.host.advance(5s);
    world.moves(4'000, 10);
    world.host.advance(5s);
    ASSERT_EQ(engine.usage().size(), 1U);
    EXPECT_EQ(engine.usage()[0].bytes, 3'000U);
}

TEST(Tick, aFailedProcessTableChargesNobody)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    world.host.tool(ToolRole::ps).fails();
    world.moves(4'000, 10);
    world.host.advance(5s);
    EXPECT_THAT(engine.usage(), IsEmpty());
    EXPECT_EQ(engine.sampling().completedTicks, 2);
}

TEST(Tick, rubbishFromEveryToolHarmsNothing)
{
    EngineWorld world;
    for (const ToolRole role : {ToolRole::netstat, ToolRole::nettop, ToolRole::ps}) {
        world.host.tool(role).prints(std::string{"\0,,,,,\n]]<->..\x01 99999999999999999999", 36});
    }
    GuardEngine engine{world.host};
    world.host.advance(10s);
    EXPECT_EQ(engine.sampling().completedTicks, 3);
    EXPECT_THAT(engine.usage(), IsEmpty());
    EXPECT_EQ(engine.interfaceCounter(), std::nullopt);
}

TEST(Tick, usageIsWhatMovedSinceTheBaseline)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    EXPECT_THAT(engine.usage(), IsEmpty());
    world.moves(2'000, 20);
    world.host.advance(5s);
    EXPECT_THAT(engine.usage(), ElementsAre(AppUsage{"Player", 1'010, {501}}));
    world.host.advance(60s);
    EXPECT_THAT(engine.usage(), ElementsAre(AppUsage{"Player", 1'010, {501}})) << "exactly at the cutoff";
    world.host.advance(5s);
    EXPECT_THAT(engine.usage(), IsEmpty()) << "older than the primary window of 60 s";
}

TEST(Tick, onlyTheDefaultRoutesInterfaceCounts)
{
    EngineWorld world;
    world.host.tool(ToolRole::nettop).prints(EngineWorld::trafficText("en7", 1'000, 10));
    GuardEngine engine{world.host};
    world.host.advance(0s);
    world.host.tool(ToolRole::nettop).prints(EngineWorld::trafficText("en7", 9'000, 10));
    world.host.advance(5s);
    EXPECT_THAT(engine.usage(), IsEmpty());
}

TEST(Tick, anotherMeteredInterfaceEmptiesTheLedgerAndIsTold)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.playTwoRounds();
    ASSERT_EQ(engine.usage().size(), 1U);
    world.joinHotspot("en5");
    world.moves(8'000, 10, "en5");
    world.host.advance(5s);
    EXPECT_THAT(engine.usage(), IsEmpty());
    EXPECT_EQ(messages(engine).back(), "📶 en5 · gateway 172.20.10.1 (hotspot range)");
}

TEST(Tick, anotherMeteredInterfaceRestartsTheTimer)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(6s);
    world.joinHotspot("en5");
    world.host.tool(ToolRole::route).takes(2s);
    world.host.advance(10s); // the round from 10 to 12 s sees the change
    EXPECT_EQ(engine.status().interface, "en5");
    EXPECT_FALSE(engine.isTicking()) << "at 16 s; the former timer would have fired at 15 s";
    world.host.advance(1s);
    EXPECT_TRUE(engine.isTicking()) << "5 s after the change was seen";
}

TEST(Tick, goingOfflineLogsNothingButEmptiesTheLedger)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.playTwoRounds();
    const std::size_t logged = engine.events().size();
    world.goOffline();
    world.host.advance(5s);
    EXPECT_EQ(engine.status(), (MeteredStatus{false, "", "No default route — offline"}));
    EXPECT_EQ(engine.events().size(), logged);
    EXPECT_THAT(engine.usage(), IsEmpty());
}

TEST(Tick, aFailedRouteLookupEmptiesTheInterfaceAndAgainOnItsReturn)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.playTwoRounds();
    ASSERT_EQ(engine.usage().size(), 1U);
    world.host.tool(ToolRole::route).fails();
    world.host.advance(5s);
    EXPECT_EQ(engine.status(), (MeteredStatus{true, "", "Route lookup failed — assuming metered"}));
    EXPECT_EQ(engine.interfaceCounter(), std::nullopt);
    EXPECT_THAT(engine.usage(), IsEmpty());
    world.joinHotspot();
    world.moves(3'000, 10);
    world.host.advance(5s);
    EXPECT_EQ(messages(engine).back(), "📶 en0 · gateway 172.20.10.1 (hotspot range)");
    EXPECT_THAT(engine.usage(), IsEmpty()) << "a new baseline";
}

TEST(Tick, leavingTheHotspotDropsTheBaselineAndStillShowsTheWindow)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.playTwoRounds();
    world.goHome(); // the same interface: the ledger stays
    world.host.advance(5s);
    ASSERT_EQ(engine.usage().size(), 1U);
    EXPECT_EQ(engine.usage()[0].bytes, 1'000U);
    world.joinHotspot();
    world.moves(50'000, 10);
    world.host.advance(5s);
    ASSERT_EQ(engine.usage().size(), 1U);
    EXPECT_EQ(engine.usage()[0].bytes, 1'000U) << "the gap is not charged";
}

TEST(Tick, theFirstRoundAlwaysSavesAndThenEvery30Seconds)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    ASSERT_TRUE(world.savedLedger());
    world.host.files().remove(world.ledgerFile);
    world.host.advance(25s);
    EXPECT_FALSE(world.savedLedger());
    world.host.advance(5s);
    EXPECT_TRUE(world.savedLedger());
}

TEST(Tick, aRestoredLedgerIsEmptiedByTheFirstRoundWithAnInterface)
{
    EngineWorld world;
    const double at = (world.host.now() - Date{}).count() - 10;
    world.host.files().set(
        world.ledgerFile,
        fmt::format(R"({{"buckets":[{{"at":{},"usage":{{"Player":77}},"pids":{{"Player":[501]}}}}]}})", at));
    GuardEngine engine{world.host};
    EXPECT_EQ(engine.ledger().total("Player", 60s, world.host.now()), 77U);
    world.host.advance(0s);
    EXPECT_EQ(engine.ledger().total("Player", 60s, world.host.now()), 0U);
}

TEST(Tick, aRestoredLedgerIsKeptWhileOffline)
{
    EngineWorld world;
    world.goOffline();
    const double at = (world.host.now() - Date{}).count() - 10;
    world.host.files().set(
        world.ledgerFile,
        fmt::format(R"({{"buckets":[{{"at":{},"usage":{{"Player":77}},"pids":{{"Player":[501]}}}}]}})", at));
    GuardEngine engine{world.host};
    world.host.advance(0s);
    EXPECT_THAT(engine.usage(), ElementsAre(AppUsage{"Player", 77, {501}}));
}

TEST(Tick, aLedgerFileThatCanNotBeReadGivesAnEmptyLedger)
{
    struct Case {
        const char* name;
        const char* content;
    };
    constexpr Case cases[] = {
        {"truncated", R"({"buckets":[{"at":1)"},
        {"empty", ""},
        {"another shape", R"([1,2,3])"},
        {"a byte count of 2^64", R"({"buckets":[{"at":795000000,"usage":{"a":18446744073709551616},"pids":{}}]})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EngineWorld world;
        world.goOffline();
        world.host.files().set(world.ledgerFile, c.content);
        GuardEngine engine{world.host};
        world.host.advance(0s);
        EXPECT_THAT(engine.usage(), IsEmpty());
        EXPECT_EQ(world.savedLedger(), c.content) << "left alone until the next save";
    }
}

TEST(Tick, aFullDiskOrAReadOnlyFolderStopsNothing)
{
    EngineWorld world;
    world.host.files().failWrites(true);
    GuardEngine engine{world.host};
    world.host.advance(0s);
    world.moves(2'000, 10);
    world.host.advance(60s);
    EXPECT_EQ(engine.sampling().completedTicks, 13);
    EXPECT_FALSE(world.savedLedger());
    world.host.files().failWrites(false);
    world.host.advance(30s);
    EXPECT_TRUE(world.savedLedger());
}

TEST(Tick, aJumpOfTheWallClockLeavesTheTimersAlone)
{
    EngineWorld world;
    GuardEngine engine{world.host};
    world.host.advance(0s);
    world.host.setClock(world.host.now() - 24h);
    world.host.advance(10s);
    EXPECT_EQ(engine.sampling().completedTicks, 3);
}

} // namespace
} // namespace quellon
