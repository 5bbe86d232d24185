#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CountingWorld : ActingWorld {
    /// The interface has carried so many bytes by now.
    void carries(std::uint64_t bytes, std::string_view interface = "en0")
    {
        host.tool(ToolRole::netstat).prints(counterText(interface, bytes, 0));
    }
    /// What the cycle has used after a round at this reading.
    std::uint64_t usedAfter(std::uint64_t bytes)
    {
        carries(bytes);
        round();
        return engine->budgetStatus()->usedBytes;
    }
    [[nodiscard]] std::optional<BudgetStore> savedBudget()
    {
        return Persistence{host.host()}.load<BudgetStore>(Persistence::budgetFile);
    }
};

TEST(EngineBudget, theFirstReadingIsTheBaseline)
{
    CountingWorld world;
    world.carries(5'000);
    world.begin();
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 0U);
    EXPECT_EQ(world.engine->budget().interfaceBaseline, (InterfaceReading{"en0", 5'000, world.host.now()}));
    EXPECT_EQ(world.usedAfter(7'500), 2'500U);
    EXPECT_EQ(world.engine->dailyStatus()->usedTodayBytes, 2'500U);
}

TEST(EngineBudget, bothDirectionsCount)
{
    CountingWorld world;
    world.begin(); // 5,000 and 700
    world.host.tool(ToolRole::netstat).prints(EngineWorld::counterText("en0", 5'010, 701));
    world.round();
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 11U);
}

TEST(EngineBudget, aCounterThatFallsIsAGap)
{
    CountingWorld world;
    world.carries(5'000);
    world.begin();
    EXPECT_EQ(world.usedAfter(100), 0U);
    EXPECT_EQ(world.engine->budgetStatus()->unmeasuredGaps, 1);
    EXPECT_EQ(world.usedAfter(150), 50U) << "on from the new reading";
    EXPECT_EQ(world.engine->budgetStatus()->unmeasuredGaps, 1);
}

TEST(EngineBudget, aVisitAtHomeIsChargedWithTheReturn)
{
    CountingWorld world;
    world.carries(5'000);
    world.begin();
    const auto baseline = world.engine->budget().interfaceBaseline;
    world.goHome();
    world.carries(6'000);
    world.round();
    EXPECT_EQ(world.engine->budget().interfaceBaseline, baseline) << "not read off the hotspot";
    world.joinHotspot();
    world.host.advance(30s);
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 1'000U);
}

TEST(EngineBudget, aCounterThatCanNotBeReadKeepsTheBaseline)
{
    CountingWorld world;
    world.carries(5'000);
    world.begin();
    world.host.tool(ToolRole::netstat).fails();
    world.round();
    EXPECT_EQ(world.engine->budget().interfaceBaseline->totalBytes, 5'000U);
    EXPECT_EQ(world.usedAfter(5'300), 300U);
}

TEST(EngineBudget, anotherInterfaceSetsItsOwnBaseline)
{
    CountingWorld world;
    world.carries(5'000);
    world.begin();
    world.joinHotspot("en5");
    world.carries(90'000, "en5");
    world.round();
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 0U);
    EXPECT_EQ(world.engine->budget().interfaceBaseline->interface, "en5");
}

TEST(EngineBudget, aRoundSavesItOnlyWithTheOthers)
{
    CountingWorld world;
    world.carries(5'000);
    world.begin();
    world.carries(6'000);
    EXPECT_THAT(world.round(), IsEmpty());
    EXPECT_EQ(world.savedBudget()->days.size(), 0U);
    EXPECT_THAT(world.rounds(5), ElementsAre("save ledger.json", "save budget.json", "save liveness.json"));
    EXPECT_EQ(world.savedBudget(), world.engine->budget());
    EXPECT_EQ(world.savedBudget()->days.at(0).bytes, 1'000U);
}

TEST(EngineBudget, theForecastMovesOnInARoundThatCountsNothing)
{
    CountingWorld world;
    world.settings.meteredOnly = false;
    world.goHome();
    world.host.setClock(world.host.now() + 14h - 3s); // 23:59:57
    BudgetStore stored;
    stored.days = {{"2026-03-15", 600}};
    Persistence{world.host.host()}.save(stored, Persistence::budgetFile);
    world.begin();
    ASSERT_EQ(world.engine->dailyStatus()->usedTodayBytes, 600U);
    const int days = world.engine->budgetStatus()->daysRemaining;
    world.round();
    EXPECT_EQ(world.engine->dailyStatus()->usedTodayBytes, 0U) << "a new day";
    EXPECT_EQ(world.engine->budgetStatus()->daysRemaining, days - 1);
}

TEST(EngineBudget, anAssignmentIsShownAndSavedAtOnce)
{
    CountingWorld world;
    world.begin();
    BudgetStore budget = world.engine->budget();
    budget.calibrate(123'456, world.host.now(), world.host.host().clock.calendar());
    world.engine->setBudget(budget);
    EXPECT_THAT(world.trace.take(), ElementsAre("save budget.json"));
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 123'456U);
    EXPECT_EQ(world.savedBudget(), budget);
}

TEST(EngineBudget, withoutAFileItFollowsThePlan)
{
    CountingWorld world;
    world.settings.planGB() = 12.5;
    world.settings.billingCycleStartDay() = 31;
    world.options.autoStart = false;
    world.begin();
    BudgetStore fresh;
    fresh.planGB = 12.5;
    fresh.billingCycleStartDay = 28;
    EXPECT_EQ(world.engine->budget(), fresh) << "a day that every month has";
    EXPECT_FALSE(world.savedBudget());
}

TEST(EngineBudget, aFileStandsAsItIs)
{
    CountingWorld world;
    BudgetStore stored;
    stored.planGB = 7.0;
    stored.days = {{"2026-03-14", 5}};
    Persistence{world.host.host()}.save(stored, Persistence::budgetFile);
    world.options.autoStart = false;
    world.begin();
    EXPECT_EQ(world.engine->budget(), stored);
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 5U) << "derived before the first round";
}

TEST(EngineBudget, aBuildThatCanNotSampleCountsButSavesOnlyOnStop)
{
    CountingWorld world;
    world.options.capabilities = Capabilities{.canSampleTraffic = false};
    world.carries(5'000);
    world.begin();
    world.carries(6'000);
    EXPECT_THAT(world.rounds(10), IsEmpty());
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 1'000U);
    EXPECT_FALSE(world.savedBudget());
    world.engine->stop();
    EXPECT_EQ(world.savedBudget(), world.engine->budget());
}

} // namespace
} // namespace quellon
