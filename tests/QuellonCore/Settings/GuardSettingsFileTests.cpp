#include "QuellonCore/Rules/DevToolPresets.h"
#include "QuellonCore/Settings/SettingsText.h"

#include <fmt/format.h>
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

/// A file with the two plans, and more keys.
std::string twoPlans(std::string_view more)
{
    return fmt::format(R"({{"profiles":[{{"id":"{}"}},{{"id":"{}"}}]{}{}}})", firstID.text(), secondID.text(),
                       more.empty() ? "" : ",", more);
}

/// The presets as policies, all "always" but the last, which is as told.
std::string presetPolicies(std::string_view last)
{
    std::string result;
    for (const std::string_view name : DevToolPresets::names) {
        const bool isLast = name == DevToolPresets::names.back();
        result += fmt::format(R"({}"{}":"{}")", result.empty() ? "" : ",", name, isLast ? last : "always");
    }
    return "{" + result + "}";
}

TEST(GuardSettingsFile, anEmptyObjectIsAFileOfTheSinglePlanLayout)
{
    CountedIdentifiers ids;
    const auto settings = GuardSettings::fromJson(Json::object(), ids).value();
    CountedIdentifiers sameIDs;
    auto expected = GuardSettings::defaults(sameIDs);
    expected.migratedFromLegacyPlan = true;
    EXPECT_EQ(settings, expected);
    EXPECT_EQ(settings.activeProfile().budgetFile, "budget.json");
}

TEST(GuardSettingsFile, theSinglePlanLayout)
{
    const auto derived = decodeSettings(R"({"planGB":10,"billingCycleStartDay":15,"profile":"light"})").value();
    EXPECT_TRUE(derived.migratedFromLegacyPlan);
    ASSERT_EQ(derived.profiles.size(), 1U);
    const PlanProfile& plan = derived.profiles[0];
    EXPECT_EQ(plan, (PlanProfile{plan.id, "My plan", 10.0, 15, UsageProfile::light, plan.rules, "budget.json"}));
    ASSERT_EQ(plan.rules.size(), 2U);
    EXPECT_EQ(plan.rules[0].thresholdBytes, 10'737'418U);
    EXPECT_EQ(plan.rules[1].thresholdBytes, 89'478'485U);
    EXPECT_EQ(derived.activeProfileID, plan.id);

    EXPECT_THAT(decodeSettings(R"({"rules":[]})").value().rules(), IsEmpty()) << "rules that are there are taken";
}

TEST(GuardSettingsFile, plans)
{
    struct Case {
        const char* name;
        std::string text;
        std::size_t plans;
        bool isMigrated;
    };
    const Case cases[] = {
        {"no plans, as if the key were missing", R"({"profiles":[]})", 1, true},
        {"null for the plans", R"({"profiles":null})", 1, true},
        {"one plan without a key", R"({"profiles":[{}]})", 1, false},
        {"two plans", twoPlans(""), 2, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto settings = decodeSettings(c.text).value();
        EXPECT_EQ(settings.profiles.size(), c.plans);
        EXPECT_EQ(settings.migratedFromLegacyPlan, c.isMigrated);
        EXPECT_EQ(settings.activeProfileID, settings.profiles[0].id);
    }
}

TEST(GuardSettingsFile, theActivePlan)
{
    const auto with = [](std::string_view id) {
        return decodeSettings(twoPlans(fmt::format(R"("activeProfileID":"{}")", id))).value().activeProfileID;
    };
    EXPECT_EQ(with(secondID.text()), secondID);
    EXPECT_EQ(with("30000000-0000-0000-0000-000000000000"), firstID) << "the id of no plan";

    const auto untold =
        decodeSettings(fmt::format(R"({{"profiles":[{{"id":"{}"}},{{"id":"{}"}}]}})", firstID.text(), UUID{}.text()));
    EXPECT_EQ(untold.value().activeProfileID, firstID) << "the first, also beside an identifier of zeros";
}

TEST(GuardSettingsFile, memoryOfADeletedPlanIsDropped)
{
    const auto settings = decodeSettings(twoPlans(fmt::format(
        R"("lastProfileByInterface":{{"en0":"{}","en5":"30000000-0000-0000-0000-000000000000"}})", secondID.text())));
    EXPECT_THAT(settings.value().lastProfileByInterface, ElementsAre(Pair("en0", secondID)));
}

TEST(GuardSettingsFile, ignoredKeysAreNotLookedAt)
{
    const auto mirrored = decodeSettings(twoPlans(R"("planGB":10)")).value();
    EXPECT_EQ(mirrored.planGB(), 30.0);
    EXPECT_EQ(mirrored, decodeSettings(twoPlans("")));
    EXPECT_EQ(mirrored,
              decodeSettings(twoPlans(R"("planGB":"x","billingCycleStartDay":0.5,"profile":"none","rules":[1])")));
    EXPECT_EQ(decodeSettings("{}"), decodeSettings(R"({"activeProfileID":5,"lastProfileByInterface":"en0"})"));
    EXPECT_EQ(decodeSettings("{}"), decodeSettings(R"({"migratedFromLegacyPlan":false,"more":{}})"));
}

TEST(GuardSettingsFile, protectedExtraIsFoldedIntoPolicies)
{
    const auto settings = decodeSettings(R"({"protectedExtra":["Always","Never","Global","New","New"],)"
                                         R"("appPolicies":{"Always":"always","Never":"never","Global":"global"}})")
                              .value();
    EXPECT_THAT(settings.appPolicies.entries(),
                ElementsAre(Pair("Always", AppPolicy::always), Pair("Global", AppPolicy::never),
                            Pair("Never", AppPolicy::never), Pair("New", AppPolicy::never)));
    EXPECT_THAT(settings.protectedExtra, ElementsAre("Always", "Never", "Global", "New", "New")) << "kept as it is";
}

TEST(GuardSettingsFile, presetInference)
{
    struct Case {
        const char* name;
        std::string text;
        std::size_t seeded;
    };
    const Case cases[] = {
        {"all thirteen", R"({"appPolicies":)" + presetPolicies("always") + "}", 13},
        {"null for the key", R"({"presetSeededApps":null,"appPolicies":)" + presetPolicies("always") + "}", 13},
        {"all thirteen and others", R"({"appPolicies":{"A":"never",)" + presetPolicies("always").substr(1) + "}", 13},
        {"one global", R"({"appPolicies":)" + presetPolicies("global") + "}", 0},
        {"one never", R"({"appPolicies":)" + presetPolicies("never") + "}", 0},
        {"one missing", R"({"appPolicies":)" + presetPolicies("global") + R"(,"protectedExtra":["go"]})", 0},
        {"all thirteen, one of them in the older list as well",
         R"({"appPolicies":)" + presetPolicies("always") + R"(,"protectedExtra":["go"]})", 13},
        {"present and empty", R"({"presetSeededApps":[],"appPolicies":)" + presetPolicies("always") + "}", 0},
        {"present with one", R"({"presetSeededApps":["git"],"appPolicies":)" + presetPolicies("always") + "}", 1},
        {"no policies", "{}", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decodeSettings(c.text).value().presetSeededApps.size(), c.seeded);
    }
}

TEST(GuardSettingsFile, everyKeyThatIsReadIsStrict)
{
    struct Case {
        const char* key;
        const char* good;
        const char* bad;
    };
    constexpr Case cases[] = {
        {"profiles", "[{}]", "{}"},
        {"profiles", "[]", "[[]]"},
        {"planGB", "1e-3", "\"1\""},
        {"planGB", "0", "-5"},
        {"planGB", "17179869183", "1e300"},
        {"billingCycleStartDay", "5.0", "5.5"},
        {"billingCycleStartDay", "-99", "1e19"},
        {"profile", "\"heavy\"", "\"Heavy\""},
        {"rules", "[]", "[{}]"},
        {"sampleInterval", "2", "\"2\""},
        {"sampleInterval", "-1e300", "true"},
        {"direction", "\"outgoing\"", "\"in\""},
        {"meteredOnly", "false", "0"},
        {"notify", "false", "\"no\""},
        {"enforcementAction", "\"kill\"", "\"stop\""},
        {"snoozeMinutes", "0.5", "[]"},
        {"appPolicies", "{\"a\":\"never\"}", "{\"a\":\"sometimes\"}"},
        {"appPolicies", "{}", "[]"},
        {"protectedExtra", "[\"a\"]", "[1]"},
        {"onboarded", "true", "1"},
        {"tetherHintDismissed", "true", "1"},
        {"updateCheckConsent", "\"granted\"", "\"yes\""},
        {"updateLastCheckedAt", "795261600.5", "\"2026-03-15\""},
        {"explainConsent", "\"denied\"", "\"\""},
        {"mutedAsksUntil", "{\"a\":5}", "{\"a\":\"5\"}"},
        {"mutedAsksUntil", "{}", "[5]"},
        {"presetSeededApps", "[\"git\",\"git\"]", "{\"git\":true}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(fmt::format("{}: {}", c.key, c.bad));
        EXPECT_TRUE(decodeSettings(fmt::format(R"({{"{}":{}}})", c.key, c.good)));
        EXPECT_TRUE(decodeSettings(fmt::format(R"({{"{}":null}})", c.key)));
        EXPECT_FALSE(decodeSettings(fmt::format(R"({{"{}":{}}})", c.key, c.bad)));
    }
    for (const char* text : {"[]", "null", "1", "\"\"", "", "{"}) EXPECT_FALSE(decodeSettings(text)) << text;
    EXPECT_FALSE(decodeSettings(twoPlans(R"("activeProfileID":5)")));
    EXPECT_FALSE(decodeSettings(twoPlans(R"("lastProfileByInterface":{"en0":"first"})")));
}

TEST(GuardSettingsFile, oddNumbersAreKept)
{
    const auto settings = decodeSettings(R"({"sampleInterval":0,"snoozeMinutes":1e300})").value();
    EXPECT_EQ(settings.sampleInterval, Seconds{0.0});
    EXPECT_EQ(settings.snoozeMinutes, 1e300);
}

TEST(GuardSettingsFile, mirrorsTheActivePlan)
{
    CountedIdentifiers ids;
    auto settings = decodeSettings(twoPlans("")).value();
    settings.activeProfileID = secondID;
    settings.planGB() = 12.5;
    settings.billingCycleStartDay() = 9;
    settings.profile() = UsageProfile::heavy;
    settings.rederiveRules(ids);
    const Json json = settings.toJson();
    EXPECT_EQ(json["planGB"], 12.5);
    EXPECT_EQ(json["billingCycleStartDay"], 9);
    EXPECT_EQ(json["profile"], "heavy");
    EXPECT_EQ(json["rules"], json["profiles"][1]["rules"]);
}

TEST(GuardSettingsFile, everyKeyIsWrittenButAnAbsentDate)
{
    CountedIdentifiers ids;
    auto settings = GuardSettings::defaults(ids);
    const Json json = settings.toJson();
    std::vector<std::string> keys;
    for (const auto& [key, value] : json.items()) keys.push_back(key);
    EXPECT_THAT(keys, testing::UnorderedElementsAre("profiles", "activeProfileID", "lastProfileByInterface", "planGB",
                                                    "billingCycleStartDay", "profile", "rules", "sampleInterval",
                                                    "direction", "meteredOnly", "notify", "enforcementAction",
                                                    "snoozeMinutes", "appPolicies", "protectedExtra", "onboarded",
                                                    "tetherHintDismissed", "updateCheckConsent", "explainConsent",
                                                    "mutedAsksUntil", "presetSeededApps"));
    settings.updateLastCheckedAt = Date{Seconds{5.0}};
    EXPECT_EQ(settings.toJson()["updateLastCheckedAt"], 5.0);
}

TEST(GuardSettingsFile, theMigrationIsNotWritten)
{
    CountedIdentifiers ids;
    const auto migrated = decodeSettings("{}").value();
    auto again = GuardSettings::fromJson(migrated.toJson(), ids).value();
    EXPECT_FALSE(again.migratedFromLegacyPlan);
    again.migratedFromLegacyPlan = true;
    EXPECT_EQ(again, migrated);
}

/// Settings as `fromJson` may give them, made by chance.
class AnySettings {
public:
    GuardSettings next()
    {
        GuardSettings settings;
        settings.profiles.resize(1 + below(3));
        for (PlanProfile& plan : settings.profiles) plan = anyPlan();
        settings.activeProfileID = settings.profiles[below(settings.profiles.size())].id;
        for (std::uint64_t i = below(3); i > 0; --i) settings.lastProfileByInterface[text()] = settings.profiles[0].id;
        settings.sampleInterval = Seconds{number()};
        settings.direction = any(countDirections);
        settings.meteredOnly = flag();
        settings.notify = flag();
        settings.enforcementAction = any(enforcementActions);
        settings.snoozeMinutes = number();
        for (std::uint64_t i = below(4); i > 0; --i) settings.appPolicies.set(any(appPolicies), text());
        for (std::uint64_t i = below(3); i > 0; --i) settings.mutedAsksUntil[text()] = Date{Seconds{number()}};
        for (std::uint64_t i = below(3); i > 0; --i) settings.presetSeededApps.insert(text());
        for (std::uint64_t i = below(3); i > 0; --i) addProtected(settings);
        settings.onboarded = flag();
        settings.tetherHintDismissed = flag();
        settings.updateCheckConsent = any(updateCheckConsents);
        if (flag()) settings.updateLastCheckedAt = Date{Seconds{number()}};
        settings.explainConsent = any(updateCheckConsents);
        return settings;
    }

private:
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
    bool flag() { return below(2) == 1; }
    double number() { return std::uniform_real_distribution{-1e9, 1e9}(random_); }
    std::string text() { return std::array{"", "a", "Xcode", "\"quoted\" \\ \n", "微信", "é\u0301"}[below(6)]; }
    UUID id()
    {
        UUID result;
        for (auto& byte : result.bytes) byte = static_cast<std::uint8_t>(below(256));
        return result;
    }
    template <typename Enum, std::size_t N>
    Enum any(const EnumTable<Enum, N>& table)
    {
        return table.rows[below(table.rows.size())].value;
    }
    PlanProfile anyPlan()
    {
        PlanProfile plan{
            id(), text(),          std::abs(number()), static_cast<std::int64_t>(random_()), any(usageProfiles),
            {},   text() + ".json"};
        for (std::uint64_t i = below(4); i > 0; --i) {
            plan.rules.push_back({id(), Seconds{number()}, random_(), any(actionLevels), flag()});
        }
        return plan;
    }
    /// A name of the older list, with what reading would make of it.
    void addProtected(GuardSettings& settings)
    {
        const std::string app = text();
        settings.protectedExtra.push_back(app);
        if (settings.appPolicies.policy(app) == AppPolicy::global) settings.appPolicies.set(AppPolicy::never, app);
    }

    std::mt19937_64 random_{1'789}; // the same settings in every run
};

TEST(GuardSettingsFile, comesBackAsItWasWritten)
{
    AnySettings any;
    CountedIdentifiers ids;
    for (int i = 0; i < 100; ++i) {
        const GuardSettings settings = any.next();
        const auto text = dumpJson(settings.toJson());
        ASSERT_TRUE(text);
        ASSERT_EQ(GuardSettings::fromJson(parseJson(*text).value(), ids), settings) << *text;
    }
}

} // namespace
} // namespace quellon
