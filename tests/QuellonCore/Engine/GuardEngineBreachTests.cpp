#include "ActingWorld.h"
#include "QuellonCore/Notifications/NotificationComposer.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(EngineBreach, aFreezeDoesEverythingInItsOrder)
{
    ActingWorld world;
    world.begin();
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte),
                ElementsAre("STOP 501", "save enforcement-history.json",
                            "enforced: Player used 2.0 MB in 1min → 暂停（可恢复）", "start time of 501",
                            "spawn sleep 1800; kill -CONT 501 2>/dev/null", "save suspended.json",
                            "notify: Player was paused"));
    const GuardEngine& engine = *world.engine;
    const Date now = world.host.now();
    const SuspendedApp entry{"Player", {501}, {"start of 501"}, 2 * mebibyte, now};
    EXPECT_THAT(engine.suspended(), ElementsAre(entry));
    EXPECT_EQ(world.savedSuspended(), engine.suspended());
    EXPECT_THAT(engine.cooldown(), ElementsAre(Pair("Player", now + 10s)));
    EXPECT_EQ(engine.lastAlert(), (MenuPresentation::AlertBadge{"Player", 2 * mebibyte, now, true}));
    EXPECT_EQ(engine.liveness().triggerCount, 1);
    EXPECT_EQ(engine.liveness().lastTriggerAt, now);
    EXPECT_EQ(engine.totalBytes("Player", 60s, now), 0U) << "it starts from zero";
    EXPECT_THAT(engine.enforcementHistory().records,
                ElementsAre(EnforcementHistory::Record{"Player", now, 2 * mebibyte, EnforcementAction::suspend, "1min",
                                                       std::nullopt, EnforcementHistory::Kind::enforced}));
    EXPECT_EQ(Persistence{world.host.host()}.load<EnforcementHistory>(Persistence::enforcementHistoryFile),
              engine.enforcementHistory());
    EXPECT_THAT(world.plans, ElementsAre(NotificationComposer::enforcedPlan("Player", 2 * mebibyte, "1min",
                                                                            EnforcementAction::suspend)));
    EXPECT_EQ(engine.menuBar(now).title, "1") << "one application is paused";
}

TEST(EngineBreach, aFreezeTakesTheProcessesThatMovedBytesAscending)
{
    ActingWorld world;
    world.begin();
    world.moves(502, mebibyte);
    world.moves(501, mebibyte);
    EXPECT_THAT(world.round(), ElementsAre("STOP 501", "STOP 502", "save enforcement-history.json",
                                           "enforced: Player used 2.0 MB in 1min → 暂停（可恢复）", "start time of 501",
                                           "start time of 502",
                                           "spawn sleep 1800; kill -CONT 501 2>/dev/null; kill -CONT 502 2>/dev/null",
                                           "save suspended.json", "notify: Player was paused"));
    EXPECT_TRUE(world.isStopped(501));
    EXPECT_TRUE(world.isStopped(502));
}

TEST(EngineBreach, aTerminationEndsWhoDoesNotObeyAfterFiveSeconds)
{
    ActingWorld world;
    world.settings.enforcementAction = EnforcementAction::terminate;
    world.begin();
    world.host.process(502).obeysTerminate = false;
    world.moves(501, mebibyte);
    world.moves(502, mebibyte);
    EXPECT_THAT(world.round(), ElementsAre("TERM 501", "TERM 502", "save enforcement-history.json",
                                           "enforced: Player used 2.0 MB in 1min → 退出", "start time of 501",
                                           "start time of 502", "notify: Player was stopped"));
    EXPECT_THAT(world.engine->suspended(), IsEmpty());
    world.leavesTable(501);
    world.host.advance(4'999ms);
    EXPECT_THAT(world.trace.take(), IsEmpty());
    world.host.advance(1ms);
    EXPECT_THAT(world.trace.take(), ElementsAre("start time of 502", "KILL 502"));
    EXPECT_FALSE(world.host.process(502).alive);
}

TEST(EngineBreach, aTerminationSparesAStrangerWhoHasTheIDByThen)
{
    ActingWorld world;
    world.settings.enforcementAction = EnforcementAction::terminate;
    world.begin();
    world.host.process(501).obeysTerminate = false;
    world.roundWith(501, 2 * mebibyte);
    world.host.process(501, {.start = "later"});
    EXPECT_THAT(world.round(), ElementsAre("start time of 501"));
    EXPECT_TRUE(world.host.process(501).alive);
}

TEST(EngineBreach, aKillLeavesNothingForLater)
{
    ActingWorld world;
    world.settings.enforcementAction = EnforcementAction::kill;
    world.begin();
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte), ElementsAre("KILL 501", "save enforcement-history.json",
                                                                "enforced: Player used 2.0 MB in 1min → 强制结束",
                                                                "start time of 501", "notify: Player was stopped"));
    EXPECT_THAT(world.rounds(3), IsEmpty());
    EXPECT_THAT(world.engine->suspended(), IsEmpty());
}

TEST(EngineBreach, atTheThresholdButNotBelow)
{
    ActingWorld world;
    world.begin();
    EXPECT_THAT(world.roundWith(501, mebibyte - 1), IsEmpty());
    world.moves(501, 1);
    world.round();
    EXPECT_TRUE(world.isStopped(501));
}

TEST(EngineBreach, enforceLevelWithoutAWayToTellOfItOnlyTells)
{
    struct Case {
        const char* name;
        NotificationCapability capability;
        bool freezes;
    };
    constexpr Case cases[] = {
        {"denied, no toast channel",
         {.authorized = false, .alertsEnabled = true, .inAppChannelAvailable = false},
         false},
        {"no alerts, no toast channel",
         {.authorized = true, .alertsEnabled = false, .inAppChannelAvailable = false},
         false},
        {"notifications alone", {.authorized = true, .alertsEnabled = true, .inAppChannelAvailable = false}, true},
        {"toasts alone", {.authorized = false, .alertsEnabled = false, .inAppChannelAvailable = true}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActingWorld world;
        world.begin();
        world.engine->setNotificationCapability(c.capability);
        const auto done = world.roundWith(501, 2 * mebibyte);
        EXPECT_EQ(world.isStopped(501), c.freezes);
        if (c.freezes) continue;
        EXPECT_THAT(done, ElementsAre("warning: Player used 2.0 MB in 1min"));
        EXPECT_THAT(world.engine->cooldown(), ElementsAre(Pair("Player", world.host.now() + 300s)));
        EXPECT_THAT(world.host.signals(), IsEmpty());
    }
}

TEST(EngineBreach, theUnprotectedProcessesOfAnAppAreActedOnWithoutAWordAboutTheOthers)
{
    ActingWorld world;
    world.process(400, 0, 400, "/Applications/Player.app/Contents/MacOS/PlayerDaemon");
    world.begin();
    world.moves(400, mebibyte);
    EXPECT_THAT(world.roundWith(501, mebibyte),
                ElementsAre("STOP 501", "save enforcement-history.json",
                            "enforced: Player used 2.0 MB in 1min → 暂停（可恢复）", "start time of 501",
                            "spawn sleep 1800; kill -CONT 501 2>/dev/null", "save suspended.json",
                            "notify: Player was paused"));
    EXPECT_FALSE(world.isStopped(400));
    EXPECT_THAT(world.engine->protectedReasons(), IsEmpty());
}

TEST(EngineBreach, anAppThatIsProtectedAsAWholeIsRecordedSilently)
{
    ActingWorld world;
    world.settings.setPolicy(AppPolicy::never, "Player");
    world.begin();
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte),
                ElementsAre("warning: Player used 2.0 MB in 1min → protected [set to never limit]"));
    EXPECT_THAT(world.engine->protectedReasons(), ElementsAre(Pair("Player", "set to never limit")));
    EXPECT_EQ(world.engine->liveness().triggerCount, 1);
    EXPECT_EQ(world.engine->lastAlert()->app, "Player");
    EXPECT_EQ(world.engine->totalBytes("Player", 60s, world.host.now()), 2 * mebibyte) << "it stays visible";
    EXPECT_THAT(withoutCadence(world.rounds(58)), IsEmpty());
    EXPECT_THAT(withoutCadence(world.roundWith(501, 2 * mebibyte)), IsEmpty()) << "295 s later";
    EXPECT_THAT(withoutCadence(world.round()),
                ElementsAre("warning: Player used 2.0 MB in 1min → protected [set to never limit]"))
        << "300 s later";
    EXPECT_THAT(world.plans, IsEmpty());
    EXPECT_THAT(world.host.signals(), IsEmpty());
}

TEST(EngineBreach, theFirstReasonByProcessIDIsTold)
{
    ActingWorld world;
    world.process(400, 0, 400, "/Applications/Studio.app/Contents/MacOS/Studio");
    world.process(900, 501, 900, "/Applications/Studio.app/Contents/MacOS/Studio");
    world.begin();
    world.moves(900, mebibyte);
    EXPECT_THAT(world.roundWith(400, mebibyte),
                ElementsAre("warning: Studio used 2.0 MB in 1min → protected [root process]"));
}

TEST(EngineBreach, theGuardAndItsAncestorsAreNeverTouched)
{
    for (const std::int32_t pid : {900, 850}) {
        ActingWorld world;
        world.process(pid, 501, pid, "/Applications/Studio.app/Contents/MacOS/Studio");
        world.begin();
        EXPECT_THAT(world.roundWith(pid, 2 * mebibyte),
                    ElementsAre("warning: Studio used 2.0 MB in 1min → protected [the guard itself]"));
    }
}

TEST(EngineBreach, theActionWarnOnlyEverTells)
{
    for (const ActionLevel level :
         {ActionLevel::highlight, ActionLevel::notify, ActionLevel::ask, ActionLevel::enforce}) {
        ActingWorld world{level};
        world.settings.enforcementAction = EnforcementAction::warn;
        world.app("Studio", {601});
        world.settings.setPolicy(AppPolicy::never, "Studio");
        world.begin();
        world.moves(501, 2 * mebibyte);
        world.moves(601, mebibyte);
        EXPECT_THAT(world.round(), ElementsAre("warning: Player used 2.0 MB in 1min",
                                               "warning: Studio used 1.0 MB in 1min → protected [set to never limit]"));
        EXPECT_THAT(world.host.signals(), IsEmpty());
        EXPECT_THAT(world.engine->enforcementHistory().records, IsEmpty());
    }
}

TEST(EngineBreach, aBuildThatMayNotStepInOnlyTells)
{
    ActingWorld world;
    world.options.capabilities = Capabilities{.canEnforce = false};
    world.begin();
    EXPECT_EQ(world.engine->effectiveAction(), EnforcementAction::warn);
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte), ElementsAre("warning: Player used 2.0 MB in 1min"));
    EXPECT_THAT(world.host.signals(), IsEmpty());
}

TEST(EngineBreach, aBreachWithinTenSecondsOfActingIsDropped)
{
    ActingWorld world;
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    EXPECT_THAT(world.roundWith(502, 2 * mebibyte), IsEmpty()) << "5 s later";
    EXPECT_EQ(world.round().front(), "STOP 502") << "10 s later";
}

TEST(EngineBreach, anAppThatIsPausedAlreadyKeepsOneEntryTheNewest)
{
    ActingWorld world;
    world.app("Studio", {601});
    world.begin();
    world.moves(601, 2 * mebibyte);
    world.roundWith(501, 2 * mebibyte);
    world.roundWith(502, 3 * mebibyte);
    world.round();
    const auto& suspended = world.engine->suspended();
    ASSERT_EQ(suspended.size(), 2U);
    EXPECT_EQ(suspended[0].app, "Studio");
    EXPECT_EQ(suspended[1], (SuspendedApp{"Player", {502}, {"start of 502"}, 3 * mebibyte, world.host.now()}));
    EXPECT_EQ(world.savedSuspended(), suspended);
}

TEST(EngineBreach, withoutNotifyingEverythingElseStaysTheSame)
{
    const auto play = [](bool notify) {
        ActingWorld world;
        world.settings.notify = notify;
        world.settings.rules().push_back(ActingWorld::rule(2, 120s, mebibyte / 2, ActionLevel::notify));
        world.app("Studio", {601});
        world.begin();
        world.moves(601, mebibyte * 3 / 4);
        auto lines = world.roundWith(501, 2 * mebibyte);
        for (const auto& line : world.rounds(3)) lines.push_back(line);
        EXPECT_EQ(world.plans.empty(), !notify);
        std::erase_if(lines, [](const std::string& line) { return line.starts_with("notify: "); });
        return std::pair{lines, std::tuple{world.engine->enforcementHistory(), *world.engine->lastAlert(),
                                           world.engine->liveness(), world.engine->cooldown()}};
    };
    EXPECT_EQ(play(false), play(true));
}

TEST(EngineBreach, withoutANotifierTheActionsAreTaken)
{
    ActingWorld world;
    world.options.notifier = nullptr;
    world.begin();
    EXPECT_EQ(world.roundWith(501, 2 * mebibyte).back(), "save suspended.json");
    EXPECT_TRUE(world.isStopped(501));
}

TEST(EngineBreach, anActionThatReachesNobodyIsNeitherRecordedNorCounted)
{
    ActingWorld world;
    world.begin();
    world.host.process(501).denied = true;
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte),
                ElementsAre("STOP 501 in vain", "warning: Player used 2.0 MB in 1min → action failed (no permission)"));
    EXPECT_THAT(world.engine->enforcementHistory().records, IsEmpty());
    EXPECT_EQ(world.engine->liveness().triggerCount, 0);
    EXPECT_EQ(world.engine->lastAlert(), std::nullopt);
    EXPECT_THAT(world.engine->suspended(), IsEmpty());
    EXPECT_EQ(world.engine->totalBytes("Player", 60s, world.host.now()), 2 * mebibyte);
    EXPECT_THAT(world.round(), IsEmpty());
    EXPECT_EQ(world.round().front(), "STOP 501 in vain") << "tried again after 10 s";
}

TEST(EngineBreach, whoTheSignalDidNotReachIsNoPartOfTheFreeze)
{
    ActingWorld world;
    world.begin();
    world.host.process(501).denied = true;
    world.moves(501, mebibyte);
    world.roundWith(502, mebibyte);
    EXPECT_THAT(world.engine->suspended().at(0).pids, ElementsAre(502));
    EXPECT_THAT(world.host.spawned(),
                ElementsAre(Command{"/bin/sh", {"-c", "sleep 1800; kill -CONT 502 2>/dev/null"}}));
}

TEST(EngineBreach, aWatchdogThatCanNotBeStartedUndoesNothing)
{
    ActingWorld world;
    world.host.canSpawn(false);
    world.begin();
    EXPECT_EQ(world.roundWith(501, 2 * mebibyte).back(), "notify: Player was paused");
    EXPECT_TRUE(world.isStopped(501));
    EXPECT_EQ(world.savedSuspended()->size(), 1U);
}

TEST(EngineBreach, aShorterDelayReachesTheWatchdog)
{
    ActingWorld world;
    world.options.autoResumeSeconds = 3;
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    EXPECT_EQ(world.host.spawned().at(0).arguments.back(), "sleep 3; kill -CONT 501 2>/dev/null");
}

TEST(EngineBreach, aStartTimeThatCanNotBeReadIsKeptAsAnEmptyText)
{
    ActingWorld world;
    world.begin();
    world.host.process(501).start = "";
    world.roundWith(501, 2 * mebibyte);
    EXPECT_THAT(world.engine->suspended().at(0).starts, ElementsAre(""));
}

TEST(EngineBreach, whoIsStillInTheTableIsActedOnAlone)
{
    ActingWorld world;
    world.begin();
    world.roundWith(501, mebibyte / 2);
    world.leavesTable(501);
    EXPECT_EQ(world.roundWith(502, mebibyte / 2).front(), "STOP 502");
    EXPECT_THAT(world.host.signals(), testing::SizeIs(1));
}

TEST(EngineBreach, breachesGoByLevelAndThenByBytes)
{
    ActingWorld world{ActionLevel::notify};
    world.settings.rules().push_back(ActingWorld::rule(2, 60s, 4 * mebibyte, ActionLevel::enforce));
    world.app("Archive", {601});
    world.app("Studio", {701});
    world.begin();
    world.moves(601, mebibyte);
    world.moves(701, 2 * mebibyte);
    world.moves(501, 4 * mebibyte);
    EXPECT_THAT(world.round(), ElementsAre("STOP 501", "save enforcement-history.json",
                                           "enforced: Player used 4.0 MB in 1min → 暂停（可恢复）", "start time of 501",
                                           "spawn sleep 1800; kill -CONT 501 2>/dev/null", "save suspended.json",
                                           "notify: Player was paused", "warning: Studio used 2.0 MB in 1min",
                                           "warning: Archive used 1.0 MB in 1min"));
}

TEST(EngineBreach, theAlertIsReadWhenTheUserHasSeenIt)
{
    ActingWorld world;
    world.begin();
    world.engine->markAlertsSeen();
    EXPECT_EQ(world.engine->lastAlert(), std::nullopt);
    world.roundWith(501, 2 * mebibyte);
    world.engine->markAlertsSeen();
    EXPECT_FALSE(world.engine->lastAlert()->unread);
}

} // namespace
} // namespace quellon
