#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(EngineEnforceNow, pausesWhatIsNotProtected)
{
    ActingWorld world;
    world.process(503, 0, 503, "/Applications/Player.app/Contents/MacOS/PlayerDaemon");
    world.begin();
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("STOP 501", "STOP 502", "start time of 501", "start time of 502",
                            "spawn sleep 1800; kill -CONT 501 2>/dev/null; kill -CONT 502 2>/dev/null",
                            "save suspended.json", "enforced: Player → 暂停（可恢复） (from notification)"));
    const SuspendedApp entry{"Player", {501, 502}, {"start of 501", "start of 502"}, 0, world.host.now()};
    EXPECT_THAT(world.engine->suspended(), ElementsAre(entry));
    EXPECT_EQ(world.savedSuspended(), world.engine->suspended());
}

TEST(EngineEnforceNow, endsAndLaterForcesWhoDoesNotObey)
{
    ActingWorld world;
    world.begin();
    world.host.process(502).obeysTerminate = false;
    world.engine->enforceNow({"Player"}, EnforcementAction::terminate);
    EXPECT_THAT(world.trace.take(), ElementsAre("TERM 501", "TERM 502", "start time of 501", "start time of 502",
                                                "enforced: Player → 退出 (from notification)"));
    EXPECT_THAT(world.round(), ElementsAre("start time of 502", "KILL 502"));
    EXPECT_THAT(world.engine->suspended(), IsEmpty());
}

TEST(EngineEnforceNow, kills)
{
    ActingWorld world;
    world.begin();
    world.engine->enforceNow({"Player"}, EnforcementAction::kill);
    EXPECT_THAT(world.trace.take(), ElementsAre("KILL 501", "KILL 502", "start time of 501", "start time of 502",
                                                "enforced: Player → 强制结束 (from notification)"));
}

TEST(EngineEnforceNow, leavesHistoryCountsAndLedgerAlone)
{
    ActingWorld world;
    world.begin();
    world.roundWith(501, 1'000);
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    EXPECT_THAT(world.engine->enforcementHistory().records, IsEmpty());
    EXPECT_THAT(world.engine->cooldown(), IsEmpty());
    EXPECT_EQ(world.engine->liveness().triggerCount, 0);
    EXPECT_EQ(world.engine->lastAlert(), std::nullopt);
    EXPECT_EQ(world.engine->totalBytes("Player", 60s, world.host.now()), 1'000U);
    EXPECT_THAT(world.plans, IsEmpty());
}

TEST(EngineEnforceNow, goesByTheTableOfThisMomentInTheGivenOrder)
{
    ActingWorld world;
    world.begin();
    world.app("Archive", {401});
    world.leavesTable(502);
    world.engine->enforceNow({"Player", "Nobody", "Archive"}, EnforcementAction::kill);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("KILL 501", "start time of 501", "enforced: Player → 强制结束 (from notification)",
                            "KILL 401", "start time of 401", "enforced: Archive → 强制结束 (from notification)"));
}

TEST(EngineEnforceNow, asksAnewForTheGuardsOwnAncestors)
{
    ActingWorld world;
    world.begin();
    world.host.parents({502, 1}); // the guard has a new parent since
    world.host.clearRuns();
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    EXPECT_FALSE(world.isStopped(502));
    EXPECT_TRUE(world.isStopped(501));
    EXPECT_GT(world.host.runs(ToolRole::parent), 0U);
}

TEST(EngineEnforceNow, passesOverWithoutAWord)
{
    struct Case {
        const char* name;
        void (*prepare)(ActingWorld&);
        ActingWorld::Lines lines;
    };
    const Case cases[] = {
        {"no live process",
         [](ActingWorld& world) {
             world.leaves(501);
             world.leaves(502);
         },
         {}},
        {"protected as a whole",
         [](ActingWorld& world) {
             GuardSettings settings = world.engine->settings();
             settings.setPolicy(AppPolicy::never, "Player");
             world.engine->setSettings(settings);
             static_cast<void>(world.trace.take());
         },
         {}},
        {"nobody is reached",
         [](ActingWorld& world) {
             world.host.process(501).denied = true;
             world.host.process(502).denied = true;
         },
         {"STOP 501 in vain", "STOP 502 in vain"}},
        {"no process table", [](ActingWorld& world) { world.host.tool(ToolRole::ps).fails(); }, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActingWorld world;
        world.begin();
        c.prepare(world);
        world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
        EXPECT_EQ(world.trace.take(), c.lines);
        EXPECT_THAT(world.engine->suspended(), IsEmpty());
    }
}

TEST(EngineEnforceNow, aHungProcessTableTakesFourSecondsAndGivesUp)
{
    ActingWorld world;
    world.begin();
    world.host.tool(ToolRole::ps).timesOut();
    const Date before = world.host.now();
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    EXPECT_EQ(world.host.now() - before, 4s);
    EXPECT_THAT(world.host.signals(), IsEmpty());
}

TEST(EngineEnforceNow, twoPausesAreTwoEntriesToldApartByTheirTimes)
{
    ActingWorld world;
    world.begin();
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    world.host.advance(1s);
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    const auto& suspended = world.engine->suspended();
    ASSERT_EQ(suspended.size(), 2U);
    EXPECT_EQ(suspended[1].at - suspended[0].at, 1s);
    EXPECT_NE(suspended[0].id(), suspended[1].id());
    EXPECT_EQ(world.savedSuspended(), suspended);
}

TEST(EngineEnforceNow, whatItMayNotDoItSays)
{
    struct Case {
        const char* name;
        Capabilities capabilities;
        EnforcementAction action;
        std::string line;
    };
    const Case cases[] = {
        {"the action warn", {}, EnforcementAction::warn, "warning: Can't step in on this edition"},
        {"may not, for no known reason",
         {.canEnforce = false},
         EnforcementAction::suspend,
         "warning: Can't step in on this edition"},
        {"the sandbox",
         {.edition = AppEdition::appStore},
         EnforcementAction::suspend,
         "warning: App Store 版受系统沙盒限制，只能提醒，无法暂停或结束其他 App。需要自动处置请使用官网下载的 Pro "
         "版。"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActingWorld world;
        world.options.capabilities = c.capabilities;
        world.begin();
        world.host.clearRuns();
        world.engine->enforceNow({"Player"}, c.action);
        EXPECT_THAT(world.trace.take(), ElementsAre(c.line));
        EXPECT_EQ(world.host.runs(ToolRole::ps), 0U);
        EXPECT_THAT(world.host.signals(), IsEmpty());
    }
}

} // namespace
} // namespace quellon
