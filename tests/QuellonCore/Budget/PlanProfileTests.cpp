#include "QuellonCore/Budget/PlanProfile.h"
#include "QuellonCore/Persistence/StateFile.h"

#include "ScriptedParts.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>

namespace quellon {
namespace {

std::optional<PlanProfile> decodePlan(std::string_view text)
{
    CountedIdentifiers ids;
    const auto json = parseJson(text);
    return json ? PlanProfile::fromJson(*json, ids) : std::nullopt;
}

std::vector<std::uint64_t> thresholds(const PlanProfile& plan)
{
    std::vector<std::uint64_t> result;
    for (const GuardRule& rule : plan.rules) result.push_back(rule.thresholdBytes);
    return result;
}

using Thresholds = std::vector<std::uint64_t>;
const Thresholds developer30GB{48'318'382, 375'809'638};
const Thresholds light50GB{53'687'091, 447'392'426};

TEST(PlanProfile, makeDefault)
{
    CountedIdentifiers ids;
    const GuardRule rule{UUID{{7}}, Seconds{300.0}, 5, ActionLevel::enforce, false};
    const auto withRules = PlanProfile::makeDefault("Phone", 12.5, 31, UsageProfile::heavy, std::vector{rule}, ids);
    EXPECT_EQ(withRules, (PlanProfile{withRules.id, "Phone", 12.5, 31, UsageProfile::heavy, {rule}, "budget.json"}));
    EXPECT_NE(withRules.id, UUID{});

    const auto noRules =
        PlanProfile::makeDefault("Phone", 12.5, 31, UsageProfile::heavy, std::vector<GuardRule>{}, ids);
    EXPECT_TRUE(noRules.rules.empty()) << "an empty list is a list";

    const auto derived = PlanProfile::makeDefault("Phone", 50.0, 1, UsageProfile::light, std::nullopt, ids);
    EXPECT_EQ(thresholds(derived), light50GB);
    EXPECT_NE(derived.id, noRules.id);
}

TEST(PlanProfile, makeAdditional)
{
    CountedIdentifiers ids;
    const auto first = PlanProfile::makeAdditional("Travel", ids);
    const auto second = PlanProfile::makeAdditional("Travel", ids);
    EXPECT_EQ(first, (PlanProfile{first.id, "Travel", 30.0, 1, UsageProfile::developer, first.rules,
                                  "budget-00000000-0000-4000-8000-000000000001.json"}));
    EXPECT_EQ(thresholds(first), developer30GB);
    EXPECT_NE(first.id, second.id);
    EXPECT_NE(first.budgetFile, second.budgetFile);
    EXPECT_EQ(first.budgetFile, "budget-" + first.id.text() + ".json");
    EXPECT_EQ(second.budgetFile, "budget-" + second.id.text() + ".json");
}

TEST(PlanProfile, anEmptyObjectIsADefaultPlan)
{
    CountedIdentifiers ids;
    const auto empty = Json::object();
    const auto first = PlanProfile::fromJson(empty, ids).value();
    EXPECT_EQ(first, (PlanProfile{first.id, "My plan", 30.0, 1, UsageProfile::developer, first.rules, "budget.json"}));
    EXPECT_EQ(thresholds(first), developer30GB);
    const auto second = PlanProfile::fromJson(empty, ids).value();
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(second.budgetFile, "budget.json") << "two such plans share it";
}

TEST(PlanProfile, missingRulesAreDerivedFromThePlansOwnValues)
{
    const auto plan = decodePlan(R"({"planGB":50,"usageProfile":"light"})").value();
    EXPECT_EQ(thresholds(plan), light50GB);
    EXPECT_EQ(plan.rules[0].level, ActionLevel::notify);
    EXPECT_EQ(plan.rules[1].level, ActionLevel::ask);
}

TEST(PlanProfile, shapes)
{
    struct Case {
        const char* name;
        const char* text;
        bool isRead;
    };
    constexpr Case cases[] = {
        {"an unknown key", R"({"more":[]})", true},
        {"null for every key",
         R"({"id":null,"name":null,"planGB":null,"billingCycleStartDay":null,"usageProfile":null,"rules":null,)"
         R"("budgetFile":null})",
         true},
        {"no rules", R"({"rules":[]})", true},
        {"a day no month has", R"({"billingCycleStartDay":32})", true},
        {"a day of a whole double", R"({"billingCycleStartDay":5.0})", true},
        {"a plan of nothing", R"({"planGB":0})", true},
        {"a little less than nothing, which no byte is missing for", R"({"planGB":-1e-10})", true},
        {"just below 2^64 bytes", R"({"planGB":17179869183.999996})", true},
        {"a list", "[]", false},
        {"null", "null", false},
        {"an id that is none", R"({"id":"1"})", false},
        {"a number for the id", R"({"id":1})", false},
        {"a number for the name", R"({"name":1})", false},
        {"a text for the size", R"({"planGB":"30"})", false},
        {"minus one byte", R"({"planGB":-9.31322574615478515625e-10})", false},
        {"a negative size", R"({"planGB":-5})", false},
        {"2^64 bytes", R"({"planGB":17179869184})", false},
        {"a size beyond all bytes", R"({"planGB":1e300})", false},
        {"half a day", R"({"billingCycleStartDay":1.5})", false},
        {"true for the day", R"({"billingCycleStartDay":true})", false},
        {"an unknown usage profile", R"({"usageProfile":"medium"})", false},
        {"a usage profile in other letters", R"({"usageProfile":"Light"})", false},
        {"an object for the rules", R"({"rules":{}})", false},
        {"a rule that lacks a key", R"({"rules":[{}]})", false},
        {"a number for the file", R"({"budgetFile":1})", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decodePlan(c.text).has_value(), c.isRead);
    }
}

TEST(PlanProfile, aBudgetNeverTakesThePlaceOfSomethingElse)
{
    struct Case {
        const char* name;
        const char* file; ///< As it stands in JSON.
        const char* budgetFile;
    };
    constexpr const char* own = "budget-6F9619FF-8B86-4D01-B42D-00CF4FC964FF.json";
    constexpr Case cases[] = {
        {"the first plan's", "budget.json", "budget.json"},
        {"a further plan's", "budget-1.json", "budget-1.json"},
        {"any other name", "Reise.json", "Reise.json"},
        {"a folder above", "../../x", own},
        {"a folder below", "sub/x", own},
        {"a file of the system", "/etc/x", own},
        {"no name", "", own},
        {"the folder itself", ".", own},
        {"a zero byte", "budget.json\\u0000", own},
        {"the settings", "settings.json", own},
        {"what is frozen", "suspended.json", own},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto plan =
            decodePlan(fmt::format(R"({{"id":"6F9619FF-8B86-4D01-B42D-00CF4FC964FF","budgetFile":"{}"}})", c.file));
        ASSERT_TRUE(plan);
        EXPECT_EQ(plan->budgetFile, c.budgetFile);
    }
    const auto plan = decodePlan(R"({"budgetFile":""})").value();
    EXPECT_EQ(plan.budgetFile, "budget-" + plan.id.text() + ".json") << "with the new identifier";
}

TEST(PlanProfile, comesBackAsItWasWritten)
{
    CountedIdentifiers ids;
    PlanProfile plan = PlanProfile::makeAdditional("Reise · 旅行", ids);
    plan.planGB = 0.1;
    plan.billingCycleStartDay = -7;
    plan.usageProfile = UsageProfile::heavy;
    plan.rules.pop_back();
    EXPECT_EQ(PlanProfile::fromJson(plan.toJson(), ids), plan);
    plan.rules.clear();
    EXPECT_EQ(PlanProfile::fromJson(plan.toJson(), ids), plan);
}

TEST(PlanProfile, canHold)
{
    EXPECT_TRUE(PlanProfile::canHold(0.0));
    EXPECT_TRUE(PlanProfile::canHold(30.0));
    EXPECT_FALSE(PlanProfile::canHold(-1.0));
    EXPECT_FALSE(PlanProfile::canHold(std::numeric_limits<double>::max())) << "the product is infinite";
    EXPECT_FALSE(PlanProfile::canHold(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(PlanProfile::canHold(std::numeric_limits<double>::quiet_NaN()));
}

} // namespace
} // namespace quellon
