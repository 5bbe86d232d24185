#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// Player and Studio are paused.
struct PausedWorld : ActingWorld {
    PausedWorld()
    {
        app("Studio", {601});
        begin();
        moves(601, 3 * mebibyte);
        roundWith(501, 2 * mebibyte);
    }
};

TEST(EngineResume, thawsSnoozesSavesAndTells)
{
    PausedWorld world;
    const SuspendedApp entry = world.engine->suspended().front();
    ASSERT_EQ(entry.app, "Studio");
    world.engine->resume(entry);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("CONT 601", "save suspended.json", "info: Resumed Studio · snoozed 15min"))
        << "no question who 601 is by now";
    EXPECT_FALSE(world.isStopped(601));
    EXPECT_TRUE(world.isStopped(501));
    EXPECT_THAT(world.engine->suspended(), testing::SizeIs(1));
    EXPECT_EQ(world.savedSuspended(), world.engine->suspended());
    EXPECT_THAT(world.engine->snoozedUntil(), ElementsAre(Pair("Studio", world.host.now() + 900s)));
    EXPECT_THAT(world.engine->cooldown(), ElementsAre(Pair("Player", testing::_)));
}

TEST(EngineResume, minutes)
{
    struct Case {
        const char* name;
        std::optional<double> minutes;
        const char* line;
        std::optional<Seconds> snooze;
    };
    constexpr Case cases[] = {
        {"0: no snooze", 0.0, "info: Resumed Studio", std::nullopt},
        {"negative", -1.0, "info: Resumed Studio", std::nullopt},
        {"a fraction is cut off", 2.9, "info: Resumed Studio · snoozed 2min", 174s},
        {"less than one", 0.5, "info: Resumed Studio · snoozed 0min", 30s},
        {"an hour", 60.0, "info: Resumed Studio · snoozed 60min", 3'600s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PausedWorld world;
        world.engine->resume(world.engine->suspended().front(), c.minutes);
        EXPECT_EQ(world.trace.take().back(), c.line);
        const auto& snoozes = world.engine->snoozedUntil();
        EXPECT_EQ(snoozes.contains("Studio"), c.snooze.has_value());
        if (c.snooze && snoozes.contains("Studio")) { EXPECT_EQ(snoozes.at("Studio"), world.host.now() + *c.snooze); }
    }
}

TEST(EngineResume, aSettingOfNoMinutesGivesNoSnooze)
{
    ActingWorld world;
    world.settings.snoozeMinutes = 0;
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    world.engine->resume(world.engine->suspended().front());
    EXPECT_EQ(world.trace.take().back(), "info: Resumed Player");
}

TEST(EngineResume, whoCanNotBeReachedIsForgottenAllTheSame)
{
    PausedWorld world;
    world.host.process(601).denied = true;
    world.engine->resume(world.engine->suspended().front());
    EXPECT_EQ(world.trace.take().front(), "CONT 601 in vain");
    EXPECT_THAT(world.engine->suspended(), testing::SizeIs(1));
}

TEST(EngineResume, anEntryThatIsNotInTheListIsThawedStill)
{
    PausedWorld world;
    world.engine->resume({"Other", {777}, {}, 0, world.host.now()}, 0.0);
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 777 in vain", "save suspended.json", "info: Resumed Other"));
    EXPECT_THAT(world.engine->suspended(), testing::SizeIs(2));
}

TEST(EngineResume, byNameInTheOrderOfTheList)
{
    PausedWorld world;
    world.engine->resumeApps({"Player", "Nobody", "Studio"}, 0.0);
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 601", "save suspended.json", "info: Resumed Studio", "CONT 501",
                                                "save suspended.json", "info: Resumed Player"));
    world.engine->resumeApps({"Player"});
    EXPECT_THAT(world.trace.take(), IsEmpty());
}

TEST(EngineResume, everyEntryOfAName)
{
    ActingWorld world;
    world.begin();
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    world.host.advance(1s);
    world.engine->enforceNow({"Player"}, EnforcementAction::suspend);
    world.engine->resumeApps({"Player"});
    EXPECT_THAT(world.engine->suspended(), IsEmpty());
    EXPECT_EQ(world.savedSuspended()->size(), 0U);
}

TEST(EngineResume, anAppIsFrozenAnewWhenItsSnoozeIsOver)
{
    PausedWorld world;
    world.engine->resumeApps({"Player"}, 1.0);
    static_cast<void>(world.trace.take());
    world.moves(501, 2 * mebibyte);
    EXPECT_THAT(withoutCadence(world.rounds(11)), IsEmpty()) << "55 s";
    EXPECT_EQ(withoutCadence(world.round()).front(), "STOP 501") << "at 60 s the snooze is over";
}

TEST(EngineResumeAll, silent)
{
    PausedWorld world;
    world.engine->snooze("Other", 5.0);
    static_cast<void>(world.trace.take());
    world.engine->resumeAll(true);
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 601", "CONT 501", "save suspended.json"));
    EXPECT_THAT(world.engine->suspended(), IsEmpty());
    EXPECT_THAT(world.engine->cooldown(), IsEmpty());
    EXPECT_EQ(world.savedSuspended()->size(), 0U);
    EXPECT_TRUE(world.engine->snoozedUntil().contains("Other")) << "snoozes stay";
}

TEST(EngineResumeAll, told)
{
    PausedWorld world;
    world.engine->resumeAll(false);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("CONT 601", "CONT 501", "save suspended.json", "info: Resumed all (2)"));
}

TEST(EngineResumeAll, withNothingPausedOnlySaves)
{
    for (const bool silent : {true, false}) {
        ActingWorld world;
        world.begin();
        world.engine->resumeAll(silent);
        EXPECT_THAT(world.trace.take(), ElementsAre("save suspended.json"));
    }
}

TEST(EngineResumeAll, stopThawsBeforeItEmptiesAndSaves)
{
    PausedWorld world;
    world.engine->stop();
    EXPECT_THAT(world.trace.take(), ElementsAre("CONT 601", "CONT 501", "save suspended.json", "save ledger.json",
                                                "save budget.json", "save liveness.json", "info: Guard stopped"));
    EXPECT_FALSE(world.isStopped(501));
}

TEST(EngineSnooze, whateverTheValue)
{
    struct Case {
        std::optional<double> minutes;
        const char* line;
        Seconds length;
    };
    constexpr Case cases[] = {
        {std::nullopt, "info: Player snoozed for 15min", 900s},
        {2.9, "info: Player snoozed for 2min", 174s},
        {0.0, "info: Player snoozed for 0min", 0s},
        {-1.5, "info: Player snoozed for -1min", -90s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        ActingWorld world;
        world.begin();
        world.engine->snooze("Player", c.minutes);
        EXPECT_THAT(world.trace.take(), ElementsAre(c.line)) << "nothing is saved";
        EXPECT_THAT(world.engine->snoozedUntil(), ElementsAre(Pair("Player", world.host.now() + c.length)));
    }
}

TEST(EngineSnoozeDeathTest, aNumberOfMinutesThatCanNotBeToldEndsTheProgram)
{
    ActingWorld world;
    world.begin();
    const auto ended = testing::ExitedWithCode(70);
    EXPECT_EXIT(world.engine->snooze("Player", 1e300), ended, "fatal: number does not fit a whole number of 64 bits");
    EXPECT_EXIT(world.engine->resume({"Player", {}, {}, 0, {}}, 1e300), ended,
                "fatal: number does not fit a whole number of 64 bits");
}

TEST(EnginePrune, anEntryGoesWithItsLastProcess)
{
    ActingWorld world;
    world.app("Studio", {601});
    world.begin();
    world.moves(601, mebibyte);
    world.moves(502, mebibyte);
    world.roundWith(501, mebibyte);
    world.leaves(501);
    EXPECT_THAT(world.round(), IsEmpty()) << "502 is left";
    world.leaves(502);
    EXPECT_THAT(world.round(), ElementsAre("save suspended.json"));
    EXPECT_THAT(world.engine->suspended(), testing::SizeIs(1));
    EXPECT_EQ(world.engine->suspended()[0].app, "Studio");
    EXPECT_EQ(world.savedSuspended(), world.engine->suspended());
    EXPECT_THAT(world.round(), IsEmpty()) << "saved when it got shorter, and only then";
}

TEST(EnginePrune, aProcessOfSomebodyElseIsAliveToo)
{
    PausedWorld world;
    world.host.process(601, {.start = "another", .denied = true}); // the id was taken over
    EXPECT_THAT(world.round(), IsEmpty());
    EXPECT_THAT(world.engine->suspended(), testing::SizeIs(2));
}

TEST(EnginePrune, notInARoundWithoutASample)
{
    PausedWorld world;
    world.leaves(601);
    world.goHome();
    world.round();
    EXPECT_THAT(world.engine->suspended(), testing::SizeIs(2));
}

} // namespace
} // namespace quellon
