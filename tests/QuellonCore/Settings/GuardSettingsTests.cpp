#include "QuellonCore/Settings/GuardSettings.h"

#include "QuellonCore/Rules/DevToolPresets.h"
#include "ScriptedParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr UUID firstID{{1}};
constexpr UUID secondID{{2}};
constexpr UUID goneID{{3}};

GuardRule rule(double window, bool enabled = true)
{
    return {UUID{{9}}, Seconds{window}, 1'000, ActionLevel::notify, enabled};
}

/// Two plans, the second of them active.
GuardSettings twoPlans()
{
    GuardSettings settings;
    settings.profiles.resize(2);
    settings.profiles[0].id = firstID;
    settings.profiles[1].id = secondID;
    settings.activeProfileID = secondID;
    return settings;
}

TEST(GuardSettings, defaults)
{
    CountedIdentifiers ids;
    const auto settings = GuardSettings::defaults(ids);
    ASSERT_EQ(settings.profiles.size(), 1U);
    const PlanProfile& plan = settings.profiles[0];
    EXPECT_EQ(plan, (PlanProfile{plan.id, "My plan", 30.0, 1, UsageProfile::developer, plan.rules, "budget.json"}));
    ASSERT_EQ(plan.rules.size(), 2U);
    EXPECT_EQ(plan.rules[0].thresholdBytes, 48'318'382U);
    EXPECT_EQ(plan.rules[1].thresholdBytes, 375'809'638U);
    EXPECT_EQ(settings.activeProfileID, plan.id);
    EXPECT_THAT(settings.lastProfileByInterface, IsEmpty());
    EXPECT_FALSE(settings.migratedFromLegacyPlan);
    EXPECT_EQ(settings.sampleInterval, Seconds{5.0});
    EXPECT_EQ(settings.direction, CountDirection::both);
    EXPECT_TRUE(settings.meteredOnly);
    EXPECT_TRUE(settings.notify);
    EXPECT_EQ(settings.enforcementAction, EnforcementAction::suspend);
    EXPECT_EQ(settings.snoozeMinutes, 15.0);
    EXPECT_TRUE(settings.appPolicies.isEmpty());
    EXPECT_THAT(settings.mutedAsksUntil, IsEmpty());
    EXPECT_THAT(settings.presetSeededApps, IsEmpty());
    EXPECT_THAT(settings.protectedExtra, IsEmpty());
    EXPECT_FALSE(settings.onboarded);
    EXPECT_FALSE(settings.tetherHintDismissed);
    EXPECT_EQ(settings.updateCheckConsent, UpdateCheckConsent::unasked);
    EXPECT_EQ(settings.updateLastCheckedAt, std::nullopt);
    EXPECT_EQ(settings.explainConsent, UpdateCheckConsent::unasked);
}

TEST(GuardSettings, activeProfile)
{
    GuardSettings settings = twoPlans();
    EXPECT_EQ(&settings.activeProfile(), &settings.profiles[1]);
    settings.activeProfileID = goneID;
    EXPECT_EQ(&settings.activeProfile(), &settings.profiles[0]) << "the first when there is no such plan";
    settings.profiles[1].id = firstID;
    settings.activeProfileID = firstID;
    EXPECT_EQ(&settings.activeProfile(), &settings.profiles[0]) << "the first of two with one id";
}

TEST(GuardSettings, fieldsOfTheActivePlan)
{
    GuardSettings settings = twoPlans();
    const GuardSettings before = settings;
    settings.planGB() = 7.5;
    settings.billingCycleStartDay() = 20;
    settings.profile() = UsageProfile::light;
    settings.rules() = {rule(60.0)};
    EXPECT_EQ(settings.profiles[0], before.profiles[0]);
    EXPECT_EQ(settings.profiles[1],
              (PlanProfile{secondID, "My plan", 7.5, 20, UsageProfile::light, {rule(60.0)}, "budget.json"}));
    const GuardSettings& read = settings;
    EXPECT_EQ(read.planGB(), 7.5);
    EXPECT_EQ(read.billingCycleStartDay(), 20);
    EXPECT_EQ(read.profile(), UsageProfile::light);
    EXPECT_THAT(read.rules(), ElementsAre(rule(60.0)));
}

TEST(GuardSettings, withoutAPlanTheActiveOneEndsTheProgram)
{
    EXPECT_EXIT(static_cast<void>(GuardSettings{}.activeProfile()), testing::ExitedWithCode(70),
                "settings without a plan");
}

TEST(GuardSettings, windowsOfTheRules)
{
    struct Case {
        const char* name;
        std::vector<GuardRule> rules;
        double primary;
        double retention;
        std::size_t enabled;
    };
    const Case cases[] = {
        {"no rule", {}, 60.0, 3600.0, 0},
        {"no enabled rule", {rule(30.0, false), rule(7200.0, false)}, 60.0, 3600.0, 0},
        {"one enabled rule of two hours", {rule(7200.0)}, 7200.0, 7200.0, 1},
        {"the shortest and the longest", {rule(300.0), rule(86'400.0), rule(60.0), rule(90.0)}, 60.0, 86'400.0, 4},
        {"disabled rules don't count", {rule(10.0, false), rule(120.0), rule(86'400.0, false)}, 120.0, 3600.0, 1},
        {"shorter than the default window", {rule(10.0)}, 10.0, 3600.0, 1},
        {"just an hour", {rule(3600.0)}, 3600.0, 3600.0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        GuardSettings settings = twoPlans();
        settings.profiles[0].rules = {rule(5.0), rule(1e6)};
        settings.rules() = c.rules;
        EXPECT_EQ(settings.primaryWindow(), Seconds{c.primary});
        EXPECT_EQ(settings.requiredRetention(), Seconds{c.retention});
        EXPECT_EQ(settings.enabledRuleCount(), c.enabled);
    }
}

TEST(GuardSettings, primaryRule)
{
    struct Case {
        const char* name;
        std::vector<GuardRule> rules;
        std::optional<std::size_t> place;
    };
    const Case cases[] = {
        {"no rule", {}, {}},
        {"no enabled rule", {rule(30.0, false)}, {}},
        {"the shortest", {rule(300.0), rule(60.0), rule(90.0)}, 1},
        {"disabled rules don't count", {rule(10.0, false), rule(120.0), rule(60.0, false)}, 1},
        {"of equals the first", {rule(300.0), rule(60.0), rule(60.0)}, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        GuardSettings settings = twoPlans();
        settings.profiles[0].rules = {rule(5.0)};
        settings.rules() = c.rules;
        EXPECT_EQ(settings.primaryRule(), c.place ? &settings.rules()[*c.place] : nullptr);
    }
}

TEST(GuardSettings, dailyBudgetBytes)
{
    GuardSettings settings = twoPlans();
    EXPECT_EQ(settings.dailyBudgetBytes(), 1'073'741'824U);
    settings.planGB() = 10.0;
    EXPECT_EQ(settings.dailyBudgetBytes(), 357'913'941U);
    settings.planGB() = 0.0;
    EXPECT_EQ(settings.dailyBudgetBytes(), 0U);
    settings.planGB() = -1.0;
    EXPECT_EXIT(static_cast<void>(settings.dailyBudgetBytes()), testing::ExitedWithCode(70), "fatal: ");
}

TEST(GuardSettings, rederiveRules)
{
    CountedIdentifiers ids;
    GuardSettings settings = twoPlans();
    settings.planGB() = 50.0;
    settings.profile() = UsageProfile::light;
    settings.rederiveRules(ids);
    EXPECT_THAT(settings.profiles[0].rules, IsEmpty());
    ASSERT_EQ(settings.rules().size(), 2U);
    EXPECT_EQ(settings.rules()[0].thresholdBytes, 53'687'091U);
    EXPECT_EQ(settings.rules()[1].thresholdBytes, 447'392'426U);
}

TEST(GuardSettings, normalize)
{
    CountedIdentifiers ids;
    GuardSettings settings = twoPlans();
    settings.lastProfileByInterface = {{"en0", firstID}, {"en5", secondID}};
    const GuardSettings whole = settings;
    settings.normalize(ids);
    EXPECT_EQ(settings, whole) << "nothing to mend";

    settings.activeProfileID = goneID;
    settings.lastProfileByInterface.emplace("en6", goneID);
    settings.normalize(ids);
    EXPECT_EQ(settings.activeProfileID, firstID);
    EXPECT_THAT(settings.lastProfileByInterface, ElementsAre(Pair("en0", firstID), Pair("en5", secondID)));

    settings.profiles.clear();
    settings.normalize(ids);
    ASSERT_EQ(settings.profiles.size(), 1U);
    EXPECT_EQ(settings.profiles[0].budgetFile, "budget.json");
    EXPECT_EQ(settings.activeProfileID, settings.profiles[0].id);
    EXPECT_THAT(settings.lastProfileByInterface, IsEmpty());
}

TEST(GuardSettings, normalizeTwiceEqualsOnce)
{
    std::mt19937_64 random{20'260'321};
    const auto below = [&random](std::uint64_t limit) { return random() % limit; };
    CountedIdentifiers ids;
    for (int i = 0; i < 300; ++i) {
        const auto anyID = [&below] { return UUID{{static_cast<std::uint8_t>(below(6))}}; };
        GuardSettings settings;
        settings.profiles.resize(below(4));
        for (PlanProfile& plan : settings.profiles) plan.id = anyID();
        settings.activeProfileID = anyID();
        for (const char* interface : {"en0", "en1", "en2"}) settings.lastProfileByInterface[interface] = anyID();
        settings.normalize(ids);
        GuardSettings again = settings;
        again.normalize(ids);
        ASSERT_EQ(again, settings);
    }
}

TEST(GuardSettings, presets)
{
    GuardSettings settings = twoPlans();
    settings.setPolicy(AppPolicy::never, "git");
    settings.addDevToolPresets();
    EXPECT_EQ(settings.presetSeededApps.size(), DevToolPresets::names.size() - 1);
    EXPECT_FALSE(settings.wasSeededByPreset("git")) << "the user's own word";
    EXPECT_EQ(settings.appPolicies.policy("git"), AppPolicy::never);
    EXPECT_TRUE(settings.wasSeededByPreset("npm"));
    EXPECT_FALSE(settings.wasSeededByPreset("NPM"));
    EXPECT_FALSE(settings.wasSeededByPreset("curl")) << "no preset";

    const GuardSettings once = settings;
    settings.addDevToolPresets();
    EXPECT_EQ(settings, once);
}

TEST(GuardSettings, aPolicyOfTheUserIsNoPresetAnyMore)
{
    for (const AppPolicy policy : {AppPolicy::never, AppPolicy::global, AppPolicy::always}) {
        SCOPED_TRACE(static_cast<int>(policy));
        GuardSettings settings = twoPlans();
        settings.addDevToolPresets();
        settings.setPolicy(policy, "cargo");
        EXPECT_FALSE(settings.wasSeededByPreset("cargo"));
        EXPECT_FALSE(settings.presetSeededApps.contains("cargo"));
        EXPECT_EQ(settings.appPolicies.policy("cargo"), policy);
        EXPECT_TRUE(settings.wasSeededByPreset("go"));
    }
}

TEST(GuardSettings, seedingNeedsThePolicyToo)
{
    GuardSettings settings = twoPlans();
    settings.presetSeededApps = {"npm"};
    EXPECT_FALSE(settings.wasSeededByPreset("npm"));
    settings.appPolicies.set(AppPolicy::never, "npm");
    EXPECT_FALSE(settings.wasSeededByPreset("npm"));
    settings.appPolicies.set(AppPolicy::always, "npm");
    EXPECT_TRUE(settings.wasSeededByPreset("npm"));
}

} // namespace
} // namespace quellon
