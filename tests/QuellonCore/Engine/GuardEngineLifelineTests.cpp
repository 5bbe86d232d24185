#include "ActingWorld.h"
#include "RecordedLifelines.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quellon {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Lines = ActingWorld::Lines;

/// A world whose processes can be held by lifelines.
struct HeldWorld : ActingWorld {
    RecordedLifelines lifelines{host, trace};
    HeldWorld() { begin(); }
    ~HeldWorld() { engine.reset(); }

    /// 501 is frozen, then, in place of it, 502.
    void freezeOneAfterTheOther()
    {
        roundWith(501, 2 * mebibyte);
        round();
        roundWith(502, 2 * mebibyte);
    }
};

/// What was done with lifelines, and who went on.
Lines ofLifelines(Lines lines)
{
    std::erase_if(lines, [](const std::string& line) {
        return !line.starts_with("hold ") && !line.starts_with("CONT ") && !line.starts_with("drop ");
    });
    return lines;
}

TEST(EngineLifeline, isHeldFromBeforeTheSignalUntilTheFreezeIsOnRecord)
{
    HeldWorld world;
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte),
                ElementsAre("hold 501", "STOP 501", "save enforcement-history.json",
                            "enforced: Player used 2.0 MB in 1min → 暂停（可恢复）", "start time of 501",
                            "spawn sleep 1800; kill -CONT 501 2>/dev/null", "save suspended.json", "drop 501",
                            "notify: Player was paused"));
    world.engine->resumeAll(true);
    static_cast<void>(world.trace.take());
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("hold 501,502", "STOP 501", "STOP 502", "start time of 501", "start time of 502",
                            "spawn sleep 1800; kill -CONT 501 2>/dev/null; kill -CONT 502 2>/dev/null",
                            "save suspended.json", "enforced: Player → 暂停（可恢复） (from notification)",
                            "drop 501,502"));
}

TEST(EngineLifeline, isDroppedWhenNobodyWasReached)
{
    HeldWorld world;
    world.host.process(501).denied = true;
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte),
                ElementsAre("hold 501", "STOP 501 in vain",
                            "warning: Player used 2.0 MB in 1min → action failed (no permission)", "drop 501"));
}

TEST(EngineLifeline, onlyAFreezeHasOne)
{
    for (const auto action : {EnforcementAction::terminate, EnforcementAction::kill}) {
        SCOPED_TRACE(enforcementActions.raw(action));
        HeldWorld world;
        GuardSettings settings = world.engine->settings();
        settings.enforcementAction = action;
        world.engine->setSettings(settings);
        EXPECT_THAT(ofLifelines(world.roundWith(501, 2 * mebibyte)), IsEmpty());
        world.engine->enforceNow({"Player"}, action);
        EXPECT_THAT(ofLifelines(world.trace.take()), IsEmpty());
    }
}

TEST(EngineLifeline, aFreezeGoesOnWithoutOne)
{
    HeldWorld world;
    world.lifelines.areShort = true;
    world.freezeOneAfterTheOther();
    EXPECT_TRUE(world.isStopped(502));
    ASSERT_EQ(world.engine->suspended().size(), 1U);
    EXPECT_THAT(world.engine->suspended()[0].pids, ElementsAre(502));
}

TEST(EngineReplacedPause, theFormerProcessesAreHeldBeforeTheirRecordGoes)
{
    HeldWorld world;
    world.roundWith(501, 2 * mebibyte);
    world.round();
    EXPECT_THAT(world.roundWith(502, 2 * mebibyte),
                ElementsAre("hold 502", "STOP 502", "save enforcement-history.json",
                            "enforced: Player used 2.0 MB in 1min → 暂停（可恢复）", "hold 501", "start time of 502",
                            "spawn sleep 1800; kill -CONT 502 2>/dev/null", "save suspended.json", "drop 502",
                            "notify: Player was paused"));
    ASSERT_EQ(world.engine->suspended().size(), 1U);
    EXPECT_THAT(world.engine->suspended()[0].pids, ElementsAre(502)) << "the entry is the newest freeze alone";
    EXPECT_TRUE(world.isStopped(501));
}

TEST(EngineReplacedPause, goesOnWithItsApplication)
{
    struct Case {
        const char* name;
        void (*thaw)(HeldWorld&);
        Lines lines;
    };
    const Case cases[] = {
        {"resume",
         [](HeldWorld& world) { world.engine->resume(SuspendedApp{world.engine->suspended().front()}, 0.0); },
         {"CONT 502", "CONT 501", "drop 501", "save suspended.json", "info: Resumed Player"}},
        {"resume of several by name",
         [](HeldWorld& world) {
             world.engine->resumeApps({"Studio", "Player"}, 0.0);
         },
         {"CONT 502", "CONT 501", "drop 501", "save suspended.json", "info: Resumed Player"}},
        {"resume of all",
         [](HeldWorld& world) { world.engine->resumeAll(false); },
         {"CONT 502", "CONT 501", "drop 501", "save suspended.json", "info: Resumed all (1)"}},
        {"stop",
         [](HeldWorld& world) { world.engine->stop(); },
         {"CONT 502", "CONT 501", "drop 501", "save suspended.json", "save ledger.json", "save budget.json",
          "save liveness.json", "info: Guard stopped"}},
        {"the end of the engine", [](HeldWorld& world) { world.engine.reset(); }, {"CONT 501", "drop 501"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        HeldWorld world;
        world.freezeOneAfterTheOther();
        static_cast<void>(world.trace.take());
        c.thaw(world);
        EXPECT_EQ(world.trace.take(), c.lines);
        EXPECT_FALSE(world.isStopped(501));
    }
}

TEST(EngineReplacedPause, staysWhenAnotherApplicationGoesOn)
{
    HeldWorld world;
    world.app("Studio", {601});
    world.moves(601, 2 * mebibyte);
    world.freezeOneAfterTheOther();
    static_cast<void>(world.trace.take());
    world.engine->resumeApps({"Studio"}, 0.0);
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 601", "save suspended.json", "info: Resumed Studio"));
    EXPECT_TRUE(world.isStopped(501));
}

TEST(EngineReplacedPause, anOldCopyOfAnEntryThawsItsOwnAndTheKept)
{
    HeldWorld world;
    world.roundWith(501, 2 * mebibyte);
    const SuspendedApp old = world.engine->suspended().front();
    world.round();
    world.roundWith(502, 2 * mebibyte);
    static_cast<void>(world.trace.take());
    world.engine->resume(old);
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 501", "CONT 501", "drop 501", "save suspended.json",
                                                "info: Resumed Player · snoozed 15min"));
    EXPECT_TRUE(world.isStopped(502)) << "of the newer freeze, which is in the list still";
    ASSERT_EQ(world.engine->suspended().size(), 1U);
    EXPECT_THAT(world.engine->suspended()[0].pids, ElementsAre(502));
}

TEST(EngineReplacedPause, theSameProcessesAgainNeedNone)
{
    HeldWorld world;
    world.roundWith(501, 2 * mebibyte);
    world.round();
    EXPECT_THAT(ofLifelines(world.roundWith(501, 2 * mebibyte)), ElementsAre("hold 501", "drop 501"));
}

TEST(EngineReplacedPause, whoIsKept)
{
    struct Case {
        const char* name;
        void (*change)(HeldWorld&);
        Lines lines;
    };
    const Case cases[] = {
        {"it runs on", [](HeldWorld&) {}, {"hold 502", "hold 501", "drop 502"}},
        {"a table older than it does not list it",
         [](HeldWorld& world) { world.leavesTable(501); },
         {"hold 502", "hold 501", "drop 502"}},
        {"it has ended", [](HeldWorld& world) { world.leaves(501); }, {"hold 502", "drop 502"}},
        {"it has ended since the table was read",
         [](HeldWorld& world) { world.host.process(501).alive = false; },
         {"hold 502", "drop 502"}},
        {"another application has its id",
         [](HeldWorld& world) { world.process(501, 501, 501, "/Applications/Studio.app/Contents/MacOS/Studio"); },
         {"hold 502", "drop 502"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        HeldWorld world;
        world.roundWith(501, 2 * mebibyte);
        world.round();
        c.change(world);
        EXPECT_EQ(ofLifelines(world.roundWith(502, 2 * mebibyte)), c.lines);
        world.engine->resumeAll(true);
        EXPECT_FALSE(world.isStopped(501) && world.host.process(501).alive);
    }
}

TEST(EngineReplacedPause, whoIsKeptNoLongerGoesOn)
{
    HeldWorld world;
    world.app("Player", {503});
    world.freezeOneAfterTheOther();
    world.round();
    world.process(501, 501, 501, "/Applications/Studio.app/Contents/MacOS/Studio");
    world.host.process(501).stopped = true;
    EXPECT_THAT(ofLifelines(world.roundWith(503, 2 * mebibyte)),
                ElementsAre("hold 503", "CONT 501", "hold 502", "drop 501", "drop 503"));
    EXPECT_FALSE(world.isStopped(501));
    EXPECT_TRUE(world.isStopped(502));
}

TEST(EngineReplacedPause, oneLifelineForAllThatWereReplaced)
{
    HeldWorld world;
    world.app("Player", {503, 504});
    world.freezeOneAfterTheOther();
    world.round();
    EXPECT_THAT(ofLifelines(world.roundWith(503, 2 * mebibyte)),
                ElementsAre("hold 503", "hold 501,502", "drop 501", "drop 503"))
        << "the new one is there before the old one goes";
    world.leaves(502);
    world.round();
    EXPECT_THAT(ofLifelines(world.roundWith(501, 2 * mebibyte)),
                ElementsAre("hold 501", "hold 503", "drop 501,502", "drop 501"))
        << "501 is in the list again, 502 is gone";
    EXPECT_TRUE(world.isStopped(503));
    world.engine->resumeAll(true);
    EXPECT_FALSE(world.isStopped(501));
    EXPECT_FALSE(world.isStopped(503));
}

TEST(EngineReplacedPause, withoutANewLifelineTheOldOneStays)
{
    HeldWorld world;
    world.app("Player", {503});
    world.freezeOneAfterTheOther();
    world.round();
    world.lifelines.areShort = true;
    EXPECT_THAT(ofLifelines(world.roundWith(503, 2 * mebibyte)), IsEmpty());
    world.engine->resumeAll(true);
    EXPECT_FALSE(world.isStopped(501));
    EXPECT_FALSE(world.isStopped(502)) << "it was kept, even if not held";
}

TEST(EngineReplacedPause, whoCouldNotBeHeldIsHeldWhenItCan)
{
    HeldWorld world;
    world.app("Player", {503});
    world.freezeOneAfterTheOther();
    world.round();
    world.lifelines.areShort = true;
    world.roundWith(503, 2 * mebibyte);
    world.round();
    world.lifelines.areShort = false;
    EXPECT_THAT(ofLifelines(world.roundWith(503, 2 * mebibyte)),
                ElementsAre("hold 503", "hold 501,502", "drop 501", "drop 503"));
}

TEST(EngineReplacedPause, twoOrdersOfTheUserReplacedByABreach)
{
    HeldWorld world;
    world.leavesTable(502);
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    world.host.advance(1s);
    world.app("Player", {502});
    world.leavesTable(501);
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    EXPECT_EQ(world.engine->suspended().size(), 2U);
    world.app("Player", {503});
    world.process(501, 501, 501, "/Applications/Player.app/Contents/MacOS/Player");
    static_cast<void>(world.trace.take());
    EXPECT_THAT(ofLifelines(world.roundWith(503, 2 * mebibyte)), ElementsAre("hold 503", "hold 501,502", "drop 503"));
    EXPECT_EQ(world.engine->suspended().size(), 1U);
}

TEST(EngineReplacedPause, endsWithItsLastProcess)
{
    HeldWorld world;
    world.freezeOneAfterTheOther();
    EXPECT_THAT(ofLifelines(world.round()), IsEmpty());
    world.leaves(501);
    EXPECT_THAT(ofLifelines(world.round()), ElementsAre("drop 501"));
}

TEST(EngineReplacedPause, aStrangerWithTheIdOfOneThatHasEndedIsLeftAlone)
{
    HeldWorld world;
    world.app("Player", {503});
    world.freezeOneAfterTheOther();
    world.round();
    world.roundWith(503, 2 * mebibyte);
    world.leaves(501);
    world.round();
    world.process(501, 501, 501, "/Applications/Studio.app/Contents/MacOS/Studio");
    world.host.process(501).stopped = true;
    static_cast<void>(world.trace.take());
    world.engine->resumeAll(true);
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 503", "CONT 502", "drop 501,502", "save suspended.json"));
    EXPECT_TRUE(world.isStopped(501));
}

TEST(EngineReplacedPause, isThawedWhenTheEntryThatReplacedItGoes)
{
    HeldWorld world;
    world.freezeOneAfterTheOther();
    static_cast<void>(world.trace.take());
    world.leaves(502);
    EXPECT_THAT(withoutCadence(world.round()), ElementsAre("save suspended.json", "CONT 501", "drop 501"));
    EXPECT_FALSE(world.isStopped(501)) << "it is in no list, so nobody could resume it";
}

} // namespace
} // namespace quellon
