#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Peak = LivenessStats::Peak;

TEST(EngineLiveness, theFirstRoundAddsNothing)
{
    ActingWorld world;
    world.begin();
    EXPECT_EQ(world.engine->liveness(), LivenessStats{});
    world.round();
    EXPECT_EQ(world.engine->liveness().totalGuardedSeconds, 5.0);
}

TEST(EngineLiveness, theTimeBetweenTwoSampledRounds)
{
    struct Case {
        const char* name;
        Seconds jump; ///< Of the wall clock, between two rounds that are 5 seconds apart.
        double guarded;
    };
    constexpr Case cases[] = {
        {"119 seconds apart", 114s, 119.0}, {"120 seconds apart", 115s, 0.0}, {"a day apart", 86'400s, 0.0},
        {"the clock went back", -60s, 0.0}, {"the same moment", -5s, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActingWorld world;
        world.begin();
        world.host.setClock(world.host.now() + c.jump);
        world.round();
        EXPECT_EQ(world.engine->liveness().totalGuardedSeconds, c.guarded);
        world.round();
        EXPECT_EQ(world.engine->liveness().totalGuardedSeconds, c.guarded + 5.0) << "on from there";
    }
}

TEST(EngineLiveness, aRoundWithoutASampleIsNoGuarding)
{
    ActingWorld world;
    world.begin();
    world.goHome();
    world.host.advance(65s); // rounds at 5, and 30 seconds apart behind the next change of interface only
    EXPECT_EQ(world.engine->liveness().totalGuardedSeconds, 0.0);
    world.joinHotspot();
    world.round();
    EXPECT_EQ(world.engine->liveness().totalGuardedSeconds, 70.0) << "less than two minutes since the last sample";
}

TEST(EngineLiveness, thePeakOfEachEnabledRulesWindow)
{
    ActingWorld world{ActionLevel::highlight};
    world.settings.rules() = {ActingWorld::rule(1, 60s, 100 * mebibyte, ActionLevel::highlight),
                              ActingWorld::rule(2, 600s, 100 * mebibyte, ActionLevel::highlight),
                              ActingWorld::rule(3, 1'200s, 100 * mebibyte, ActionLevel::highlight)};
    world.settings.rules()[1].enabled = false;
    world.app("Studio", {601});
    world.begin();
    world.moves(601, 2'000);
    world.roundWith(501, 1'000);
    const Date first = world.host.now();
    EXPECT_THAT(world.engine->liveness().recentPeaks,
                ElementsAre(Peak{"Studio", 2'000, "1min", first}, Peak{"Studio", 2'000, "20min", first}));
    world.rounds(13);
    world.roundWith(501, 1'500);
    EXPECT_THAT(world.engine->liveness().recentPeaks,
                ElementsAre(Peak{"Studio", 2'000, "1min", first}, Peak{"Player", 2'500, "20min", world.host.now()}));
}

TEST(EngineLiveness, rulesWithOneLabelShareTheLargerPeak)
{
    ActingWorld world{ActionLevel::highlight};
    world.settings.rules() = {ActingWorld::rule(1, Seconds{60.2}, 100 * mebibyte, ActionLevel::highlight),
                              ActingWorld::rule(2, Seconds{60.9}, 100 * mebibyte, ActionLevel::highlight)};
    world.begin();
    world.roundWith(501, 1'000);
    EXPECT_THAT(world.engine->liveness().recentPeaks, testing::SizeIs(1));
}

TEST(EngineLiveness, anOldPeakStandsForSevenDays)
{
    constexpr std::uint64_t gibibyte = 1024 * mebibyte;
    struct Case {
        const char* name;
        Seconds age; ///< When the smaller one comes.
        bool stands;
    };
    constexpr Case cases[] = {
        {"five days", 432'000s, true}, {"seven days", 604'800s, true}, {"and a bit", 604'801s, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ActingWorld world;
        world.settings.rules()[0].thresholdBytes = 100 * gibibyte;
        const Date at = world.host.now() + 5s - c.age;
        LivenessStats stored;
        stored.recentPeaks = {{"Old", 2 * gibibyte, "1min", at}};
        Persistence{world.host.host()}.save(stored, Persistence::livenessFile);
        world.begin();
        world.roundWith(501, gibibyte);
        EXPECT_EQ(world.engine->liveness().recentPeaks.at(0).app, c.stands ? "Old" : "Player");
        EXPECT_EQ(world.engine->liveness().recentPeaks.size(), 1U);
    }
}

TEST(EngineLiveness, isCountedBeforeTheRoundActs)
{
    ActingWorld world;
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    EXPECT_EQ(world.engine->totalBytes("Player", 60s, world.host.now()), 0U);
    EXPECT_THAT(world.engine->liveness().recentPeaks,
                ElementsAre(Peak{"Player", 2 * mebibyte, "1min", world.host.now()}))
        << "although the freeze cleared the ledger";
}

TEST(EngineLiveness, isSavedWithTheLedgerAndReadAtTheNextStart)
{
    ActingWorld world;
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    world.rounds(5);
    const LivenessStats saved = world.engine->liveness();
    EXPECT_EQ(Persistence{world.host.host()}.load<LivenessStats>(Persistence::livenessFile), saved);
    world.engine.reset();
    world.options.autoStart = false;
    world.engine.emplace(world.host.host(), world.options);
    EXPECT_EQ(world.engine->liveness(), saved);
    EXPECT_EQ(saved.triggerCount, 1);
    EXPECT_EQ(saved.totalGuardedSeconds, 30.0);
}

TEST(EngineLiveness, anOlderFileOrABrokenOne)
{
    struct Case {
        const char* text;
        std::int64_t triggers;
    };
    constexpr Case cases[] = {
        {R"({"triggerCount":7})", 7}, {R"({"triggerCount":7,"recentPeaks":[{"app":"a"}]})", 0}, {"{", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        ActingWorld world;
        world.host.files().set(world.file(Persistence::livenessFile), c.text);
        world.options.autoStart = false;
        world.begin();
        EXPECT_EQ(world.engine->liveness().triggerCount, c.triggers);
        EXPECT_EQ(world.engine->liveness().totalGuardedSeconds, 0.0);
    }
}

} // namespace
} // namespace quellon
