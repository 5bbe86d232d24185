#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;

constexpr const char* budgetLine = "0% of your plan used · 30.00 GB left";

/// Lets a supervisor start the application anew and that one breach; what the guard did about it.
ActingWorld::Lines comesBack(ActingWorld& world, std::int32_t former, std::int32_t now)
{
    if (world.host.process(former).alive) world.leaves(former);
    world.app("Player", {now});
    world.rounds(2); // past the cool-down
    return withoutCadence(world.roundWith(now, 2 * mebibyte));
}

TEST(EngineLoop, theThirdEnforcementFreezesAndSaysSoOnceAnHour)
{
    ActingWorld world;
    world.settings.enforcementAction = EnforcementAction::terminate;
    world.begin();
    world.leaves(502);
    world.roundWith(501, 2 * mebibyte);
    EXPECT_THAT(comesBack(world, 501, 511),
                ElementsAre("TERM 511", "save enforcement-history.json", "enforced: Player used 2.0 MB in 1min → 退出",
                            "start time of 511", "notify: Player was stopped"));
    world.plans.clear();
    EXPECT_THAT(comesBack(world, 511, 521),
                ElementsAre("STOP 521", "save enforcement-history.json",
                            "enforced: Player used 2.0 MB in 1min → 暂停（可恢复） (kill loop breaker)",
                            "start time of 521", "spawn sleep 1800; kill -CONT 521 2>/dev/null", "save suspended.json",
                            "save enforcement-history.json", "notify: Player keeps coming back"));
    ASSERT_THAT(world.plans, testing::SizeIs(1));
    EXPECT_EQ(world.plans[0].style, NotificationStyle::persistent);
    EXPECT_EQ(world.plans[0].subtitle, "3 times in 6 h · ≥6.0 MB spent retrying");
    EXPECT_EQ(world.plans[0].body, std::string{"Stopping it just makes it start over, so it is frozen instead. Let it "
                                               "finish once, or never limit it.\n"} +
                                       budgetLine);
    EXPECT_THAT(world.plans[0].actions, ElementsAre(NotificationAction::resumeAndSnooze, NotificationAction::allowlist,
                                                    NotificationAction::view));
    EXPECT_EQ(world.engine->enforcementHistory().records.back().action, EnforcementAction::suspend);
    EXPECT_EQ(world.engine->enforcementHistory().records.back().loopBreaker, true);

    EXPECT_THAT(comesBack(world, 521, 531),
                ElementsAre("STOP 531", "save enforcement-history.json",
                            "enforced: Player used 2.0 MB in 1min → 暂停（可恢复） (kill loop breaker)",
                            "start time of 531", "spawn sleep 1800; kill -CONT 531 2>/dev/null",
                            "save suspended.json"));
    EXPECT_EQ(world.plans.size(), 1U) << "at most one notice an hour";

    world.host.advance(3'600s);
    EXPECT_EQ(comesBack(world, 531, 541).back(), "notify: Player keeps coming back");
}

TEST(EngineLoop, theThirdFreezeOfAConfiguredPauseCarriesTheSameWords)
{
    ActingWorld world;
    world.begin();
    world.leaves(502);
    world.roundWith(501, 2 * mebibyte);
    EXPECT_EQ(comesBack(world, 501, 511).back(), "notify: Player was paused");
    const auto done = comesBack(world, 511, 521);
    EXPECT_THAT(done, testing::Contains("enforced: Player used 2.0 MB in 1min → 暂停（可恢复） (kill loop breaker)"));
    EXPECT_EQ(done.back(), "notify: Player keeps coming back");
    EXPECT_EQ(world.engine->enforcementHistory().records.back().loopBreaker, true);
}

TEST(EngineLoop, enforcementsOfSixHoursAgoMakeNoLoop)
{
    ActingWorld world;
    world.settings.enforcementAction = EnforcementAction::kill;
    EnforcementHistory history;
    const Date first = world.host.now() + 5s; // when the breach will be
    for (const Seconds age : {21'600s, 21'601s}) {
        history.records.push_back({"Player", first - age, 1, EnforcementAction::kill, "1min", std::nullopt,
                                   EnforcementHistory::Kind::enforced});
    }
    Persistence{world.host.host()}.save(history, Persistence::enforcementHistoryFile);
    world.begin();
    EXPECT_EQ(world.roundWith(501, 2 * mebibyte).front(), "KILL 501") << "one of the two still counts";
    EXPECT_EQ(world.engine->enforcementHistory().records.size(), 2U) << "the other one was dropped";
}

} // namespace
} // namespace quellon
