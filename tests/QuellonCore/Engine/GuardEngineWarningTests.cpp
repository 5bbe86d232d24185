#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* budgetLine = "0% of your plan used · 30.00 GB left";

TEST(EngineWarning, aBurstOfProcessesThatHaveLeftTheTableIsToldStill)
{
    ActingWorld world;
    world.begin();
    world.engine->snooze("Player", 0.1); // over after 6 s
    static_cast<void>(world.trace.take());
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte), IsEmpty());
    world.leavesTable(501);
    EXPECT_THAT(world.round(), ElementsAre("warning: Player used 2.0 MB in 1min"));
    EXPECT_EQ(world.round(), ActingWorld::Lines{"notify: Player is using a lot of data"});
    EXPECT_THAT(world.host.signals(), IsEmpty());
}

TEST(EngineWarning, warningsAreGatheredForFiveSeconds)
{
    ActingWorld world{ActionLevel::ask};
    world.app("Studio", {601});
    world.begin();
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte), ElementsAre("warning: Player used 2.0 MB in 1min"));
    EXPECT_THAT(world.roundWith(601, mebibyte),
                ElementsAre("warning: Studio used 1.0 MB in 1min", "notify: 2 apps are using a lot of data"));
    EXPECT_THAT(world.plans.at(0).apps, ElementsAre("Player", "Studio"));
    EXPECT_THAT(world.rounds(3), IsEmpty());
}

TEST(EngineWarning, aSingleWarningComesDueInARoundWithoutOne)
{
    ActingWorld world{ActionLevel::ask};
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    EXPECT_THAT(world.round(), ElementsAre("notify: Player is using a lot of data"));
    EXPECT_EQ(world.plans.at(0).subtitle, "2.0 MB in 1min · limit 1.0 MB");
    EXPECT_EQ(world.plans.at(0).body, budgetLine);
}

TEST(EngineWarning, warningsWhileNotifyingIsOffAreNotHeldForLater)
{
    ActingWorld world{ActionLevel::ask};
    world.settings.notify = false;
    world.begin();
    world.roundWith(501, 2 * mebibyte);
    GuardSettings settings = world.engine->settings();
    settings.notify = true;
    world.engine->setSettings(settings);
    world.rounds(4);
    EXPECT_THAT(world.plans, IsEmpty());
}

TEST(EngineWarning, aHighlightGetsEverythingButANotification)
{
    ActingWorld world{ActionLevel::highlight};
    world.begin();
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte), ElementsAre("warning: Player used 2.0 MB in 1min"));
    EXPECT_THAT(world.rounds(3), IsEmpty());
    EXPECT_EQ(world.engine->liveness().triggerCount, 1);
    EXPECT_EQ(world.engine->lastAlert()->app, "Player");
    EXPECT_TRUE(world.engine->cooldown().contains("Player"));
}

TEST(EngineWarning, aWarningComesBackWhenItsCoolDownIsOver)
{
    ActingWorld world{ActionLevel::notify};
    world.settings.rules()[0].windowSeconds = 600s;
    world.begin();
    EXPECT_THAT(world.roundWith(501, 2 * mebibyte), ElementsAre("warning: Player used 2.0 MB in 10min"));
    world.round();
    EXPECT_THAT(withoutCadence(world.rounds(58)), IsEmpty());
    EXPECT_THAT(withoutCadence(world.round()), ElementsAre("warning: Player used 2.0 MB in 10min"))
        << "300 s later; what it used is still there";
}

} // namespace
} // namespace quellon
