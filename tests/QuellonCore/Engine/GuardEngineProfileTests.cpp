#include "ActingWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Two plans: "Phone" (active, in "budget.json") and "Travel" (in a file of its own).
struct PlansWorld : ActingWorld {
    UUID phone;
    UUID travel;

    PlansWorld()
    {
        phone = settings.activeProfileID;
        settings.activeProfile().name = "Phone";
        settings.profiles.push_back(settings.activeProfile());
        travel.bytes[0] = 0x77;
        settings.profiles[1].id = travel;
        settings.profiles[1].name = "Travel";
        settings.profiles[1].planGB = 5.0;
        settings.profiles[1].budgetFile = travelFile;
    }

    static constexpr std::string_view travelFile = "budget-travel.json";

    [[nodiscard]] std::optional<BudgetStore> savedBudget(std::string_view name)
    {
        return Persistence{host.host()}.load<BudgetStore>(name);
    }
    /// Changes the settings through the engine; what it did.
    Lines change(const std::function<void(GuardSettings&)>& edit)
    {
        GuardSettings changed = engine->settings();
        edit(changed);
        static_cast<void>(trace.take());
        engine->setSettings(changed);
        return trace.take();
    }
    /// The interface has carried so many bytes by now.
    void carries(std::uint64_t bytes) { host.tool(ToolRole::netstat).prints(counterText("en0", bytes, 0)); }
};

TEST(EngineProfiles, theSizeOfTheActivePlanReachesTheBudgetAtOnce)
{
    PlansWorld world;
    world.begin();
    world.carries(1'005'700);
    world.round();
    ASSERT_EQ(world.engine->budgetStatus()->usedBytes, 1'000'000U);
    EXPECT_THAT(world.change([](GuardSettings& settings) { settings.planGB() = 10.0; }),
                ElementsAre("save budget.json", "save budget.json", "save settings.json"));
    EXPECT_EQ(world.engine->budget().planGB, 10.0);
    EXPECT_EQ(world.engine->budgetStatus()->planBytes, 10 * 1024 * mebibyte);
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 1'000'000U) << "the days stay";
    EXPECT_EQ(world.savedBudget("budget.json"), world.engine->budget());
}

TEST(EngineProfiles, theStartDayReachesTheBudgetTheSameWay)
{
    PlansWorld world;
    world.begin();
    EXPECT_THAT(world.change([](GuardSettings& settings) { settings.billingCycleStartDay() = 15; }),
                ElementsAre("save budget.json", "save budget.json", "save settings.json"));
    EXPECT_EQ(world.engine->budget().billingCycleStartDay, 15);
    EXPECT_EQ(world.savedBudget("budget.json")->billingCycleStartDay, 15);
}

TEST(EngineProfiles, anotherPlanThanTheActiveOneTouchesNoBudget)
{
    PlansWorld world;
    world.begin();
    const BudgetStore before = world.engine->budget();
    EXPECT_THAT(world.change([](GuardSettings& settings) {
        settings.profiles[1].planGB = 1.0;
        settings.profiles[1].billingCycleStartDay = 9;
    }),
                ElementsAre("save settings.json"));
    EXPECT_EQ(world.engine->budget(), before);
    EXPECT_FALSE(world.savedBudget(PlansWorld::travelFile));
}

TEST(EngineProfiles, theOtherFieldsOfThePlanTouchNoBudgetEither)
{
    PlansWorld world;
    world.begin();
    EXPECT_THAT(world.change([](GuardSettings& settings) { settings.activeProfile().name = "Other"; }),
                ElementsAre("save settings.json"));
}

TEST(EngineProfiles, selectingOnAHotspotIsRemembered)
{
    PlansWorld world;
    world.begin();
    world.engine->selectProfile(world.travel);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("save settings.json", // the memory
                            "save budget.json", "save budget-travel.json", "save settings.json",
                            "info: Switched to plan profile \"Travel\""));
    EXPECT_EQ(world.engine->settings().activeProfileID, world.travel);
    EXPECT_EQ(world.engine->settings().lastProfileByInterface.at("en0"), world.travel);
    EXPECT_EQ(world.engine->budget().planGB, 5.0);
    EXPECT_EQ(world.engine->budgetStatus()->planBytes, 5 * 1024 * mebibyte);
}

TEST(EngineProfiles, selectingElsewhereIsNotRemembered)
{
    struct Case {
        const char* name;
        void (*go)(PlansWorld&);
    };
    constexpr Case cases[] = {
        {"at home", [](PlansWorld& world) { world.goHome(); }},
        {"offline", [](PlansWorld& world) { world.goOffline(); }},
        {"metered without an interface", [](PlansWorld& world) { world.host.tool(ToolRole::route).fails(); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PlansWorld world;
        c.go(world);
        world.begin();
        world.engine->selectProfile(world.travel);
        EXPECT_THAT(world.engine->settings().lastProfileByInterface, IsEmpty());
        EXPECT_EQ(world.engine->settings().activeProfileID, world.travel);
        EXPECT_THAT(world.trace.take(), ElementsAre("save budget.json", "save budget-travel.json", "save settings.json",
                                                    "info: Switched to plan profile \"Travel\""));
    }
}

TEST(EngineProfiles, selectingTheActiveOrAnUnknownPlanDoesNothing)
{
    PlansWorld world;
    world.begin();
    world.engine->selectProfile(world.phone);
    world.engine->selectProfile(UUID{});
    EXPECT_THAT(world.trace.take(), IsEmpty());
    EXPECT_THAT(world.engine->settings().lastProfileByInterface, IsEmpty());
}

TEST(EngineProfiles, awayAndBackBothKeepTheirDaysAndLoseTheirBaselines)
{
    PlansWorld world;
    world.begin(); // 5,700 bytes are the baseline
    world.carries(10'000);
    world.round();
    ASSERT_EQ(world.engine->budgetStatus()->usedBytes, 4'300U);
    world.engine->selectProfile(world.travel);
    EXPECT_EQ(world.engine->budget().interfaceBaseline, std::nullopt);
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 0U);
    world.carries(20'000);
    world.round();
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 0U) << "the first round only sets the baseline";
    world.carries(21'000);
    world.round();
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 1'000U);
    world.engine->selectProfile(world.phone);
    EXPECT_EQ(world.engine->budget().interfaceBaseline, std::nullopt);
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 4'300U);
    EXPECT_EQ(world.savedBudget(PlansWorld::travelFile)->days.at(0).bytes, 1'000U);
    world.engine->selectProfile(world.travel);
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 1'000U);
}

TEST(EngineProfiles, theNumbersOfThePlanStandAboveThoseOfItsFile)
{
    PlansWorld world;
    BudgetStore stored;
    stored.planGB = 99.0;
    stored.billingCycleStartDay = 20;
    stored.days = {{"2026-03-15", 77}};
    stored.interfaceBaseline = InterfaceReading{"en0", 1, {}};
    Persistence{world.host.host()}.save(stored, PlansWorld::travelFile);
    world.begin();
    world.engine->selectProfile(world.travel);
    EXPECT_EQ(world.engine->budget().planGB, 5.0);
    EXPECT_EQ(world.engine->budget().billingCycleStartDay, 1);
    EXPECT_EQ(world.engine->budgetStatus()->usedBytes, 77U);
    EXPECT_EQ(world.engine->budget().interfaceBaseline, std::nullopt);
    EXPECT_EQ(world.savedBudget(PlansWorld::travelFile), world.engine->budget());
}

TEST(EngineProfiles, aBudgetThatCanNotBeReadIsAnEmptyOne)
{
    PlansWorld world;
    world.host.files().set(world.file(PlansWorld::travelFile), "{");
    world.begin();
    world.engine->selectProfile(world.travel);
    BudgetStore empty;
    empty.planGB = 5.0;
    EXPECT_EQ(world.engine->budget(), empty);
    EXPECT_EQ(world.savedBudget(PlansWorld::travelFile), empty);
}

TEST(EngineProfiles, aNewPlanBecomesTheActiveOne)
{
    PlansWorld world;
    world.goHome();
    world.begin();
    const UUID id = world.engine->addProfile("Holiday");
    const GuardSettings& settings = world.engine->settings();
    ASSERT_EQ(settings.profiles.size(), 3U);
    const PlanProfile& plan = settings.profiles.back();
    EXPECT_EQ(plan.id, id);
    EXPECT_EQ(plan.name, "Holiday");
    EXPECT_EQ(plan.planGB, 30.0);
    EXPECT_EQ(plan.billingCycleStartDay, 1);
    EXPECT_EQ(plan.usageProfile, UsageProfile::developer);
    EXPECT_EQ(plan.budgetFile, "budget-" + id.text() + ".json");
    EXPECT_FALSE(plan.rules.empty());
    EXPECT_EQ(settings.activeProfileID, id);
    EXPECT_THAT(world.trace.take(), ElementsAre("save settings.json", "save budget.json", "save " + plan.budgetFile,
                                                "save settings.json", "info: Switched to plan profile \"Holiday\""));
}

TEST(EngineProfiles, deletingTheActivePlanSelectsTheFirstOtherOneBefore)
{
    PlansWorld world;
    world.begin();
    world.engine->selectProfile(world.travel);
    static_cast<void>(world.trace.take());
    world.engine->deleteProfile(world.travel);
    EXPECT_THAT(world.trace.take(),
                ElementsAre("save settings.json", "save budget-travel.json", "save budget.json", "save settings.json",
                            "info: Switched to plan profile \"Phone\"", "save settings.json", "save settings.json",
                            "remove budget-travel.json", "info: Deleted plan profile \"Travel\""));
    EXPECT_EQ(world.engine->settings().profiles.size(), 1U);
    EXPECT_EQ(world.engine->settings().activeProfileID, world.phone);
    EXPECT_EQ(world.engine->settings().lastProfileByInterface.at("en0"), world.phone);
}

TEST(EngineProfiles, deletingAnotherPlanForgetsItEverywhere)
{
    PlansWorld world;
    world.settings.lastProfileByInterface = {{"en5", world.travel}, {"en6", world.phone}};
    Persistence{world.host.host()}.save(BudgetStore{}, PlansWorld::travelFile);
    world.begin();
    world.engine->deleteProfile(world.travel);
    EXPECT_THAT(world.trace.take(), ElementsAre("save settings.json", "save settings.json", "remove budget-travel.json",
                                                "info: Deleted plan profile \"Travel\""));
    EXPECT_THAT(world.engine->settings().lastProfileByInterface, ElementsAre(testing::Pair("en6", world.phone)));
}

TEST(EngineProfiles, theFirstBudgetFileIsNeverRemoved)
{
    PlansWorld world;
    world.begin();
    world.engine->deleteProfile(world.phone);
    EXPECT_EQ(world.trace.take().back(), "info: Deleted plan profile \"Phone\"");
    EXPECT_EQ(world.engine->settings().activeProfileID, world.travel);
    EXPECT_TRUE(world.savedBudget("budget.json"));
}

TEST(EngineProfiles, theLastPlanAndAnUnknownOneStay)
{
    ActingWorld single;
    single.begin();
    single.engine->deleteProfile(single.settings.activeProfileID);
    EXPECT_THAT(single.trace.take(), IsEmpty());
    EXPECT_EQ(single.engine->settings().profiles.size(), 1U);

    PlansWorld two;
    two.begin();
    two.engine->deleteProfile(UUID{});
    EXPECT_THAT(two.trace.take(), IsEmpty());
    EXPECT_EQ(two.engine->settings().profiles.size(), 2U);
}

TEST(EngineProfiles, twoPlansOfOneIDStayWhenThereIsNoOther)
{
    PlansWorld world;
    world.settings.profiles[1].id = world.phone;
    world.begin();
    ASSERT_EQ(world.engine->settings().profiles.size(), 2U);
    world.engine->deleteProfile(world.phone);
    EXPECT_THAT(world.trace.take(), IsEmpty());
    EXPECT_EQ(world.engine->settings().profiles.size(), 2U);
}

TEST(EngineProfiles, aHotspotBringsItsPlanBack)
{
    PlansWorld world;
    world.settings.lastProfileByInterface = {{"en5", world.travel}};
    world.begin();
    world.joinHotspot("en5");
    EXPECT_THAT(world.round(), ElementsAre("info: 📶 en5 · gateway 172.20.10.1 (hotspot range)", "save budget.json",
                                           "save budget-travel.json", "save settings.json",
                                           "info: Switched to plan profile \"Travel\" (remembered for en5)"));
    EXPECT_EQ(world.engine->settings().activeProfileID, world.travel);
    EXPECT_EQ(world.engine->settings().lastProfileByInterface.size(), 1U);
}

TEST(EngineProfiles, whatBringsNoPlanBack)
{
    struct Case {
        const char* name;
        void (*arrange)(PlansWorld&);
    };
    constexpr Case cases[] = {
        {"no entry", [](PlansWorld&) {}},
        {"the active one",
         [](PlansWorld& world) {
             world.settings.lastProfileByInterface = {{"en5", world.phone}};
         }},
        {"a plan that was deleted",
         [](PlansWorld& world) {
             world.settings.lastProfileByInterface = {{"en5", world.travel}};
             world.settings.profiles.pop_back();
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PlansWorld world;
        c.arrange(world);
        world.begin();
        world.joinHotspot("en5");
        EXPECT_THAT(world.round(), ElementsAre("info: 📶 en5 · gateway 172.20.10.1 (hotspot range)"));
        EXPECT_EQ(world.engine->settings().activeProfileID, world.phone);
    }
}

TEST(EngineProfiles, aDeletedPlanThatIsStillRememberedChangesNothing)
{
    PlansWorld world;
    world.begin();
    // Assigned as a view might, with a memory of a plan that is not there.
    world.change([](GuardSettings& settings) { settings.lastProfileByInterface = {{"en5", UUID{}}}; });
    world.joinHotspot("en5");
    EXPECT_THAT(world.round(), ElementsAre("info: 📶 en5 · gateway 172.20.10.1 (hotspot range)"));
}

TEST(EngineProfiles, atHomeNoPlanIsSwitched)
{
    PlansWorld world;
    world.settings.lastProfileByInterface = {{"en5", world.travel}};
    world.begin();
    world.goHome("en5");
    world.round();
    EXPECT_EQ(world.engine->settings().activeProfileID, world.phone);
}

TEST(EngineProfiles, theRulesOfTheNewPlanDecideInTheSameRound)
{
    PlansWorld world;
    world.settings.lastProfileByInterface = {{"en5", world.travel}};
    world.settings.profiles[1].rules[0].thresholdBytes = 100;
    world.begin();
    world.engine->selectProfile(world.travel);
    world.roundWith(501, 100);
    EXPECT_TRUE(world.isStopped(501));
}

} // namespace
} // namespace quellon
