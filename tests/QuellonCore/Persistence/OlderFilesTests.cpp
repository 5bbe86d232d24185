#include "StateRecords.h"

#include "QuellonCore/Rules/DevToolPresets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <set>

// Files that earlier versions wrote, and what they must give for as long as there is a program that reads them.

namespace quellon {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr std::string_view phoneID = "6F9619FF-8B86-4D01-B42D-00CF4FC964FF";
constexpr std::string_view travelID = "C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11";

UUID id(std::string_view text)
{
    return UUID::parse(text).value();
}

/// What a rule comes to, without its identifier.
struct PlainRule {
    double windowSeconds;
    std::uint64_t thresholdBytes;
    ActionLevel level;
    bool enabled;
    bool operator==(const PlainRule&) const = default;
};
using PlainRules = std::vector<PlainRule>;

PlainRules plain(const std::vector<GuardRule>& rules)
{
    PlainRules result;
    for (const GuardRule& each : rules) {
        result.push_back({each.windowSeconds.count(), each.thresholdBytes, each.level, each.enabled});
    }
    return result;
}

PlainRules derived(std::uint64_t minute, std::uint64_t hour)
{
    return {{60.0, minute, ActionLevel::notify, true}, {3600.0, hour, ActionLevel::ask, true}};
}
const PlainRules developer30GB = derived(48'318'382, 375'809'638);
const PlainRules light10GB = derived(10'737'418, 89'478'485);
const PlainRules light50GB = derived(53'687'091, 447'392'426);
const PlainRules developer12GB = derived(20'132'659, 156'587'349);
const PlainRules developer40GB = derived(64'424'509, 501'079'517);

void expectPlan(const PlanProfile& plan, const char* name, double planGB, std::int64_t startDay, UsageProfile usage,
                const PlainRules& rules, const char* budgetFile)
{
    SCOPED_TRACE(plan.name);
    EXPECT_NE(plan.id, UUID{});
    EXPECT_EQ(plan.name, name);
    EXPECT_EQ(plan.planGB, planGB);
    EXPECT_EQ(plan.billingCycleStartDay, startDay);
    EXPECT_EQ(plan.usageProfile, usage);
    EXPECT_EQ(plain(plan.rules), rules);
    EXPECT_EQ(plan.budgetFile, budgetFile);
}

/// Everything but the plans is as on a first start.
void expectOnlyPlans(GuardSettings settings)
{
    CountedIdentifiers ids;
    auto expected = GuardSettings::defaults(ids);
    expected.profiles = settings.profiles;
    expected.activeProfileID = settings.activeProfileID;
    expected.lastProfileByInterface = settings.lastProfileByInterface;
    expected.migratedFromLegacyPlan = settings.migratedFromLegacyPlan;
    EXPECT_EQ(settings, expected);
}

void expectSinglePlan(const GuardSettings& settings, double planGB, std::int64_t startDay, UsageProfile usage,
                      const PlainRules& rules)
{
    EXPECT_TRUE(settings.migratedFromLegacyPlan);
    ASSERT_THAT(settings.profiles, SizeIs(1));
    expectPlan(settings.profiles[0], "My plan", planGB, startDay, usage, rules, "budget.json");
    EXPECT_EQ(settings.activeProfileID, settings.profiles[0].id);
    EXPECT_THAT(settings.lastProfileByInterface, IsEmpty());
}

void singlePlanWithRules(const GuardSettings& settings)
{
    expectSinglePlan(settings, 10.0, 15, UsageProfile::heavy, {{60.0, 1'000'000, ActionLevel::notify, true}});
    EXPECT_EQ(settings.sampleInterval, Seconds{10.0});
    EXPECT_EQ(settings.direction, CountDirection::incoming);
    EXPECT_FALSE(settings.meteredOnly);
    EXPECT_FALSE(settings.notify);
    EXPECT_EQ(settings.enforcementAction, EnforcementAction::kill);
    EXPECT_EQ(settings.snoozeMinutes, 5.0);
}

void plansWithMissingKeys(const GuardSettings& settings)
{
    constexpr auto light = UsageProfile::light;
    EXPECT_FALSE(settings.migratedFromLegacyPlan);
    ASSERT_THAT(settings.profiles, SizeIs(7));
    expectPlan(settings.profiles[0], "No id", 1.0, 2, light, {}, "a.json");
    expectPlan(settings.profiles[1], "My plan", 1.0, 2, light, {}, "a.json");
    expectPlan(settings.profiles[2], "No size", 30.0, 2, light, {}, "a.json");
    expectPlan(settings.profiles[3], "No day", 1.0, 1, light, {}, "a.json");
    expectPlan(settings.profiles[4], "No usage profile", 1.0, 2, UsageProfile::developer, {}, "a.json");
    expectPlan(settings.profiles[5], "No rules", 50.0, 2, light, light50GB, "a.json");
    expectPlan(settings.profiles[6], "No budget file", 1.0, 2, light, {}, "budget.json");
    EXPECT_EQ(settings.activeProfileID, settings.profiles[0].id);
    expectOnlyPlans(settings);
}

void activePlanGone(const GuardSettings& settings)
{
    ASSERT_THAT(settings.profiles, SizeIs(2));
    EXPECT_EQ(settings.activeProfileID, id(phoneID));
    EXPECT_THAT(settings.lastProfileByInterface, ElementsAre(Pair("en0", id(travelID))));
    expectOnlyPlans(settings);
}

/// One plan with this identifier and nothing else told.
void onePlanWithID(const GuardSettings& settings)
{
    EXPECT_FALSE(settings.migratedFromLegacyPlan);
    ASSERT_THAT(settings.profiles, SizeIs(1));
    EXPECT_EQ(settings.profiles[0].id, id(phoneID));
    EXPECT_EQ(settings.activeProfileID, id(phoneID));
    expectPlan(settings.profiles[0], "My plan", 30.0, 1, UsageProfile::developer, developer30GB, "budget.json");
    expectOnlyPlans(settings);
}

void protectedExtra(const GuardSettings& settings)
{
    EXPECT_THAT(settings.appPolicies.entries(),
                ElementsAre(Pair("Backup", AppPolicy::never), Pair("Browser", AppPolicy::always),
                            Pair("Player", AppPolicy::never)));
    EXPECT_THAT(settings.protectedExtra, ElementsAre("Backup", "Browser", "Player"));
}

using SettingsCheck = std::function<void(const GuardSettings&)>;
const std::map<std::string, SettingsCheck> settingsFiles{
    {"settings-empty-object.json",
     [](const auto& settings) {
         expectSinglePlan(settings, 30.0, 1, UsageProfile::developer, developer30GB);
         expectOnlyPlans(settings);
     }},
    {"settings-single-plan.json",
     [](const auto& settings) {
         expectSinglePlan(settings, 10.0, 15, UsageProfile::light, light10GB);
         expectOnlyPlans(settings);
     }},
    {"settings-single-plan-with-rules.json", singlePlanWithRules},
    {"settings-empty-profiles.json",
     [](const auto& settings) {
         expectSinglePlan(settings, 12.5, 1, UsageProfile::developer, developer12GB);
         EXPECT_TRUE(settings.onboarded);
     }},
    {"settings-profile-without-keys.json",
     [](const auto& settings) {
         EXPECT_FALSE(settings.migratedFromLegacyPlan);
         ASSERT_THAT(settings.profiles, SizeIs(1));
         expectPlan(settings.profiles[0], "My plan", 30.0, 1, UsageProfile::developer, developer30GB, "budget.json");
         expectOnlyPlans(settings);
     }},
    {"settings-profiles-with-missing-keys.json", plansWithMissingKeys},
    {"settings-unknown-keys.json", onePlanWithID},
    {"settings-lower-case-identifiers.json", onePlanWithID},
    {"settings-active-plan-gone.json", activePlanGone},
    {"settings-mirror-differs.json",
     [](const auto& settings) {
         ASSERT_THAT(settings.profiles, SizeIs(1));
         expectPlan(settings.profiles[0], "My plan", 40.0, 1, UsageProfile::developer, developer40GB, "budget.json");
     }},
    {"settings-protected-extra.json", protectedExtra},
    {"settings-presets-applied.json",
     [](const auto& settings) {
         EXPECT_THAT(settings.presetSeededApps, SizeIs(DevToolPresets::names.size()));
         for (const auto name : DevToolPresets::names) EXPECT_TRUE(settings.wasSeededByPreset(name)) << name;
         EXPECT_FALSE(settings.wasSeededByPreset("Player"));
     }},
    {"settings-presets-edited.json",
     [](const auto& settings) {
         EXPECT_THAT(settings.presetSeededApps, IsEmpty());
         EXPECT_EQ(settings.appPolicies.policy("cargo"), AppPolicy::always);
     }},
    {"settings-whole-numbers-with-a-point.json",
     [](const auto& settings) {
         expectSinglePlan(settings, 30.0, 15, UsageProfile::developer, {{60.0, 1'000'000, ActionLevel::ask, false}});
     }},
};

/// A budget of 20 GB with one day and nothing else told.
BudgetStore budget(std::int64_t startDay, std::uint64_t bytes)
{
    BudgetStore store;
    store.planGB = 20.0;
    store.billingCycleStartDay = startDay;
    if (bytes > 0) store.days = {{"2026-03-15", bytes}};
    return store;
}

BudgetStore budgetWithPoints()
{
    BudgetStore store = budget(5, 1'024);
    store.calibrationOffsetBytes = -7;
    store.unmeasuredGaps = 1;
    return store;
}

BudgetStore budgetBeforeGaps()
{
    BudgetStore store = budget(5, 1'024);
    store.interfaceBaseline = {"en0", 4'096, Date{Seconds{795'261'600.0}}};
    return store;
}

const std::map<std::string, BudgetStore> budgetFiles{
    {"budget-empty-object.json", BudgetStore{}},     {"budget-start-day-0.json", budget(1, 0)},
    {"budget-start-day-31.json", budget(28, 0)},     {"budget-whole-numbers-with-a-point.json", budgetWithPoints()},
    {"budget-before-gaps.json", budgetBeforeGaps()}, {"budget-unknown-keys.json", budget(1, 1'024)},
};

using Record = EnforcementHistory::Record;
using Kind = EnforcementHistory::Kind;
const Record killed{"Player", Date{Seconds{795'261'600.0}}, 1'048'576, EnforcementAction::kill, "100 MB / 1min", {},
                    {}};
const Record suspended{"Player", Date{Seconds{795'261'700.0}}, 2, EnforcementAction::suspend, {}, true, {}};
const Record asked{"npm", Date{Seconds{795'261'600.5}}, 7, {}, {}, {}, Kind::asked};
const std::map<std::string, EnforcementHistory> historyFiles{
    {"history-empty-object.json", {}},
    {"history-without-kind.json", {{killed, suspended}, {}}},
    {"history-without-notices.json", {{asked}, {}}},
    {"history-only-notices.json", {{}, {{"Player", Date{Seconds{795'261'600.0}}}}}},
    {"history-unknown-keys.json", {{{"npm", Date{Seconds{1.0}}, 7, {}, {}, {}, {}}}, {}}},
};

const std::map<std::string, LivenessStats> livenessFiles{
    {"liveness-empty-object.json", {}},
    {"liveness-only-trigger-count.json", {0.0, {}, 41, {}}},
    {"liveness-without-a-trigger.json", {90'061.0, {}, 0, {}}},
    {"liveness-unknown-keys.json", {0.0, {{"a", 1, "1h", Date{Seconds{2.0}}}}, 3, {}}},
};

constexpr const char* folder = TEST_DATA "/state/";

TEST(OlderFiles, settings)
{
    for (const auto& [file, check] : settingsFiles) {
        SCOPED_TRACE(file);
        const auto settings = decodeSettings(fileText(folder + file));
        ASSERT_TRUE(settings);
        check(*settings);
    }
}

template <typename T>
void expectValues(const std::map<std::string, T>& files)
{
    for (const auto& [file, value] : files) {
        SCOPED_TRACE(file);
        EXPECT_EQ(decode<T>(fileText(folder + file)), value);
    }
}

TEST(OlderFiles, budget)
{
    expectValues(budgetFiles);
}

TEST(OlderFiles, history)
{
    expectValues(historyFiles);
    EXPECT_EQ(killed.effectiveKind(), Kind::enforced) << "from before there were kinds";
}

TEST(OlderFiles, liveness)
{
    expectValues(livenessFiles);
}

TEST(OlderFiles, noneIsWithoutAnExpectation)
{
    std::set<std::string> expected;
    const auto add = [&expected](const auto& files) {
        for (const auto& each : files) expected.insert(each.first);
    };
    add(settingsFiles);
    add(budgetFiles);
    add(historyFiles);
    add(livenessFiles);
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator{folder})
        found.insert(entry.path().filename().string());
    EXPECT_EQ(found, expected);
}

} // namespace
} // namespace quellon
