#include "QuellonCore/Rules/RuleDerivation.h"

#include "ScriptedParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace quellon {
namespace {

using RuleDerivation::PendingRuleChange;

constexpr std::uint64_t mega = 1024 * 1024;

GuardRule rule(double seconds, std::uint64_t thresholdBytes, bool enabled = true)
{
    static CountedIdentifiers identifiers;
    return {identifiers.next(), Seconds{seconds}, thresholdBytes, ActionLevel::notify, enabled};
}

TEST(RuleDerivation, dailyBudgetBytes)
{
    struct Case {
        const char* name;
        double planGB;
        std::uint64_t bytes;
    };
    constexpr Case cases[] = {
        {"no plan", 0.0, 0},
        {"30 GB give a gigabyte a day", 30.0, 1'073'741'824},
        {"the rest is cut off", 1.0, 35'791'394},
        {"a fraction of a gigabyte", 0.5, 17'895'697},
        {"less than a byte a day", 1e-9, 0},
        {"less than a byte below nothing", -1e-10, 0},
        {"one step below 2^64 bytes", 17'179'869'183.999998, 614'891'469'123'651'712},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(RuleDerivation::dailyBudgetBytes(c.planGB), c.bytes);
    }
}

TEST(RuleDerivation, planOutOfRangeIsFatal)
{
    struct Case {
        const char* name;
        double planGB;
    };
    constexpr Case cases[] = {
        {"no number", std::numeric_limits<double>::quiet_NaN()},
        {"endless", std::numeric_limits<double>::infinity()},
        {"a product that is endless", 1e300},
        {"2^64 bytes, though a thirtieth of them would fit", 17'179'869'184.0},
        {"a byte below nothing, though a thirtieth of it is nothing", -1.0 / 1'073'741'824.0},
        {"below nothing", -1.0},
    };
    CountedIdentifiers identifiers;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EXIT((void)RuleDerivation::dailyBudgetBytes(c.planGB), testing::ExitedWithCode(70), "does not fit");
    }
    EXPECT_EXIT((void)RuleDerivation::defaultRules(-1.0, UsageProfile::light, identifiers), testing::ExitedWithCode(70),
                "does not fit");
    EXPECT_EXIT((void)RuleDerivation::shareOfDailyBudget(0, -1.0), testing::ExitedWithCode(70), "does not fit");
}

TEST(RuleDerivation, defaultRules)
{
    struct Case {
        const char* name;
        double planGB;
        UsageProfile profile;
        std::uint64_t minuteBytes, hourBytes;
    };
    constexpr Case cases[] = {
        {"light", 30.0, UsageProfile::light, 32'212'254, 268'435'456},
        {"developer", 30.0, UsageProfile::developer, 48'318'382, 375'809'638},
        {"heavy", 30.0, UsageProfile::heavy, 85'899'345, 536'870'912},
        {"a gigabyte", 1.0, UsageProfile::heavy, 2'863'311, 17'895'697},
        {"the daily budget is cut to bytes before it is shared out", 14.0, UsageProfile::developer, 22'548'578,
         175'377'830}, // 35 % of 501,079,517.87 would be ...831
        {"no plan", 0.0, UsageProfile::developer, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CountedIdentifiers given;
        CountedIdentifiers expected;
        const auto rules = RuleDerivation::defaultRules(c.planGB, c.profile, given);
        const GuardRule first{expected.next(), Seconds{60.0}, c.minuteBytes, ActionLevel::notify, true};
        const GuardRule second{expected.next(), Seconds{3600.0}, c.hourBytes, ActionLevel::ask, true};
        EXPECT_THAT(rules, testing::ElementsAre(first, second));
    }
}

TEST(RuleDerivation, shareOfDailyBudget)
{
    EXPECT_EQ(RuleDerivation::shareOfDailyBudget(1'073'741'824, 30.0), 1.0);
    EXPECT_EQ(RuleDerivation::shareOfDailyBudget(268'435'456, 30.0), 0.25);
    EXPECT_EQ(RuleDerivation::shareOfDailyBudget(3'221'225'472, 30.0), 3.0);
    EXPECT_EQ(RuleDerivation::shareOfDailyBudget(0, 30.0), 0.0);
    EXPECT_EQ(RuleDerivation::shareOfDailyBudget(0, 0.0), 0.0);
    EXPECT_EQ(RuleDerivation::shareOfDailyBudget(1, 0.0), 0.0);
    EXPECT_EQ(RuleDerivation::shareOfDailyBudget(std::numeric_limits<std::uint64_t>::max(), 0.0), 0.0);
}

TEST(RuleDerivation, pendingChanges)
{
    struct Case {
        const char* name;
        std::vector<GuardRule> from, to;
        std::vector<PendingRuleChange> changes;
    };
    const Case cases[] = {
        {"nothing at all", {}, {}, {}},
        {"equal in windows and thresholds, whatever the identifiers",
         {rule(60, 1), rule(3600, 2)},
         {rule(60, 1), rule(3600, 2)},
         {}},
        {"equal in another order", {rule(60, 1), rule(3600, 2)}, {rule(3600, 2), rule(60, 1)}, {}},
        {"a threshold changes", {rule(60, 1)}, {rule(60, 2)}, {{"1min", 1, 2}}},
        {"a custom rule of 300 seconds is removed", {rule(300, 7)}, {rule(60, 7)}, {{"5min", 7, std::nullopt}}},
        {"a rule that was not there before is not listed", {}, {rule(60, 1)}, {}},
        {"a disabled rule counts", {rule(60, 1, false)}, {rule(60, 2)}, {{"1min", 1, 2}}},
        {"a disabled rule of the others counts", {rule(60, 1)}, {rule(60, 2, false)}, {{"1min", 1, 2}}},
        {"of two with one window the first stays", {rule(60, 1)}, {rule(60, 1), rule(60, 9)}, {}},
        {"two present rules with one window each change", {rule(60, 1), rule(60, 2)}, {rule(60, 2)}, {{"1min", 1, 2}}},
        {"windows are compared, not labels", {rule(60.5, 1)}, {rule(60, 1)}, {{"1min", 1, std::nullopt}}},
        {"to nothing and from nothing",
         {rule(60, 0), rule(90, 3)},
         {rule(60, 5), rule(90, 0)},
         {{"1min", 0, 5}, {"90s", 3, 0}}},
        {"in the order of the present rules",
         {rule(3600, 1), rule(61, 2), rule(60, 3)},
         {rule(60, 30), rule(3600, 10)},
         {{"1h", 1, 10}, {"61s", 2, std::nullopt}, {"1min", 3, 30}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(RuleDerivation::pendingChanges(c.from, c.to), c.changes);
    }
}

TEST(RuleDerivation, aChangeOfLevelIsNotNoticed)
{
    GuardRule asking = rule(60, 1);
    asking.level = ActionLevel::enforce;
    EXPECT_TRUE(RuleDerivation::pendingChanges({rule(60, 1)}, {asking}).empty());
}

TEST(RuleDerivation, summary)
{
    struct Case {
        const char* name;
        PendingRuleChange change;
        bool isRemoval;
        const char* summary;
    };
    const Case cases[] = {
        {"a change", {"1min", 32 * mega, 1536 * mega}, false, "1min 32.0 MB → 1.50 GB"},
        {"a change to nothing", {"1h", 2048 * mega, 0}, false, "1h 2.00 GB → 0.0 MB"},
        {"a removal", {"5min", 32 * mega, std::nullopt}, true, "5min 32.0 MB → removed"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.change.isRemoval(), c.isRemoval);
        EXPECT_EQ(c.change.summary(), c.summary);
    }
}

} // namespace
} // namespace quellon
