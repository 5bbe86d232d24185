#include "QuellonCore/Rules/RuleEvaluator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <random>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Usage by window, and which windows were asked for.
struct World {
    std::map<double, std::vector<AppUsage>> usage;
    std::vector<double> asked;

    RuleEvaluator::Lookup lookup()
    {
        return [this](Seconds window) {
            asked.push_back(window.count());
            return usage[window.count()];
        };
    }
};

GuardRule rule(double seconds, std::uint64_t thresholdBytes, ActionLevel level = ActionLevel::notify,
               bool enabled = true)
{
    return {UUID{}, Seconds{seconds}, thresholdBytes, level, enabled};
}

TEST(RuleEvaluator, evaluate)
{
    const GuardRule notifying = rule(60, 100, ActionLevel::notify);
    const GuardRule asking = rule(3600, 1000, ActionLevel::ask);
    const GuardRule stricter = rule(300, 50, ActionLevel::notify);
    const GuardRule disabled = rule(60, 0, ActionLevel::enforce, false);
    const GuardRule open = rule(60, 0, ActionLevel::highlight);
    struct Case {
        const char* name;
        std::vector<GuardRule> rules;
        std::map<double, std::vector<AppUsage>> usage;
        std::vector<RuleBreach> breaches;
    };
    const Case cases[] = {
        {"no rules", {}, {{60, {{"A", 500, {1}}}}}, {}},
        {"no usage", {notifying, asking}, {}, {}},
        {"a disabled rule is skipped", {disabled}, {{60, {{"A", 500, {1}}}}}, {}},
        {"at the threshold", {notifying}, {{60, {{"A", 100, {1, 2}}}}}, {{"A", notifying, 100, {1, 2}}}},
        {"a byte below the threshold", {notifying}, {{60, {{"A", 99, {1}}}}}, {}},
        {"a threshold of nothing is crossed by nothing", {open}, {{60, {{"A", 0, {}}}}}, {{"A", open, 0, {}}}},
        {"over two rules: the higher level, with its window's bytes",
         {notifying, asking},
         {{60, {{"A", 900, {1}}}}, {3600, {{"A", 1500, {1, 2}}}}},
         {{"A", asking, 1500, {1, 2}}}},
        {"over two rules, the higher level first",
         {asking, notifying},
         {{60, {{"A", 900, {1}}}}, {3600, {{"A", 1500, {1, 2}}}}},
         {{"A", asking, 1500, {1, 2}}}},
        {"over two rules of one level: the first, though the second shows more",
         {notifying, stricter},
         {{60, {{"A", 100, {1}}}}, {300, {{"A", 700, {2}}}}},
         {{"A", notifying, 100, {1}}}},
        {"the second of one level counts where the first was not crossed",
         {notifying, stricter},
         {{60, {{"A", 99, {1}}}}, {300, {{"A", 99, {2}}}}},
         {{"A", stricter, 99, {2}}}},
        {"an application that stands twice keeps its first figure",
         {notifying},
         {{60, {{"A", 100, {1}}, {"A", 200, {2}}}}},
         {{"A", notifying, 100, {1}}}},
        {"by level, then bytes, then label",
         {notifying, asking},
         {{60, {{"b", 100, {}}, {"c", 300, {}}, {"a", 100, {}}, {"d", 900, {}}}}, {3600, {{"d", 1000, {}}}}},
         {{"d", asking, 1000, {}}, {"c", notifying, 300, {}}, {"a", notifying, 100, {}}, {"b", notifying, 100, {}}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        World world{c.usage, {}};
        EXPECT_EQ(RuleEvaluator::evaluate(c.rules, world.lookup()), c.breaches);
    }
}

TEST(RuleEvaluator, asksOnceForEachEnabledRuleInOrder)
{
    World world;
    const auto off = rule(7200, 1, ActionLevel::enforce, false);
    EXPECT_THAT(RuleEvaluator::evaluate({rule(60, 1), off, rule(3600, 1), rule(60, 2)}, world.lookup()), IsEmpty());
    EXPECT_THAT(world.asked, ElementsAre(60.0, 3600.0, 60.0));
}

/// The same by counting for each application what each rule says, and inserting each breach at its place.
std::vector<RuleBreach> evaluatedSlowly(const std::vector<GuardRule>& rules, World& world)
{
    std::vector<RuleBreach> sorted;
    std::set<std::string> apps;
    for (const auto& [window, usages] : world.usage) {
        for (const auto& usage : usages) apps.insert(usage.app);
    }
    for (const auto& app : apps) {
        std::optional<RuleBreach> best;
        for (const auto& each : rules) {
            for (const auto& usage : world.usage[each.windowSeconds.count()]) {
                const bool breaks = each.enabled && usage.app == app && usage.bytes >= each.thresholdBytes;
                if (breaks && (!best || rank(each.level) > rank(best->level()))) {
                    best = RuleBreach{app, each, usage.bytes, usage.pids};
                }
            }
        }
        if (!best) continue;
        auto place = sorted.begin();
        while (place != sorted.end() && (rank(place->level()) > rank(best->level()) ||
                                         (place->level() == best->level() && place->bytes >= best->bytes))) {
            ++place; // labels come ascending, so an equal one already there has the smaller label
        }
        sorted.insert(place, *best);
    }
    return sorted;
}

TEST(RuleEvaluator, agreesWithTheSlowWay)
{
    std::mt19937_64 random{20'260};
    const auto below = [&random](std::uint64_t limit) { return random() % limit; };
    std::size_t compared = 0;
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        World world;
        std::vector<GuardRule> rules(below(7));
        for (auto& each : rules) {
            each = rule(60.0 * static_cast<double>(1 + below(3)), below(6), actionLevels.rows[below(4)].value,
                        below(4) != 0);
            each.id.bytes[0] = static_cast<std::uint8_t>(&each - rules.data());
        }
        for (const double window : {60.0, 120.0, 180.0}) {
            for (std::uint64_t i = below(9); i > 0; --i) {
                world.usage[window].push_back({std::string(1, static_cast<char>('a' + below(8))),
                                               below(6),
                                               {static_cast<std::int32_t>(below(5))}});
            }
        }
        const auto slow = evaluatedSlowly(rules, world);
        EXPECT_EQ(RuleEvaluator::evaluate(rules, world.lookup()), slow);
        compared += slow.size();
    }
    EXPECT_GT(compared, 300U);
}

TEST(RuleEvaluator, manyRulesOverManyApps)
{
    std::vector<AppUsage> usage;
    for (int i = 0; i < 1000; ++i) {
        usage.push_back({"Application " + std::to_string(i), static_cast<std::uint64_t>(i), {i}});
    }
    std::vector<GuardRule> rules;
    for (std::uint64_t i = 0; i < 20; ++i) {
        rules.push_back(rule(60.0 + static_cast<double>(i), 500 + i, actionLevels.rows[i / 5].value));
    }
    const auto breaches = RuleEvaluator::evaluate(rules, [&usage](Seconds) { return usage; });
    ASSERT_EQ(breaches.size(), 500U);
    EXPECT_EQ(breaches.front(), (RuleBreach{"Application 999", rules[15], 999, {999}}));
    // 515 is the threshold of the first enforcing rule; 514 to 500 stay with the rules below it.
    EXPECT_EQ(breaches[484].rule, rules[15]);
    EXPECT_EQ(breaches[485], (RuleBreach{"Application 514", rules[10], 514, {514}}));
    EXPECT_EQ(breaches.back(), (RuleBreach{"Application 500", rules[0], 500, {500}}));
}

TEST(RuleEvaluator, chronicApps)
{
    const GuardRule shortRule = rule(60, 100);
    const GuardRule longRule = rule(3600, 1000);
    const auto off = [](GuardRule each) {
        each.enabled = false;
        return each;
    };
    const std::vector<GuardRule> both{shortRule, longRule};
    struct Case {
        const char* name;
        std::vector<GuardRule> rules;
        std::vector<AppUsage> inShort, inLong;
        std::set<std::string> apps;
    };
    const Case cases[] = {
        {"no rules", {}, {}, {{"A", 900, {}}}, {}},
        {"only disabled rules", {off(shortRule), off(longRule)}, {}, {{"A", 900, {}}}, {}},
        {"one enabled rule", {off(shortRule), longRule}, {}, {{"A", 900, {}}}, {}},
        {"two rules of one window", {longRule, rule(3600, 1)}, {}, {{"A", 900, {}}}, {}},
        {"no usage", both, {}, {}, {}},
        {"only recent usage", both, {{"A", 1, {}}}, {}, {}},
        {"slowly draining", both, {{"A", 1, {}}}, {{"A", 900, {}}}, {"A"}},
        {"the order of the rules plays no part", {longRule, shortRule}, {{"A", 1, {}}}, {{"A", 900, {}}}, {"A"}},
        {"absent from the short window", both, {{"B", 99, {}}}, {{"A", 900, {}}}, {"A"}},
        {"exactly half of the long threshold", both, {}, {{"A", 500, {}}}, {"A"}},
        {"a byte below half of it", both, {}, {{"A", 499, {}}}, {}},
        {"exactly a fifth of the short threshold", both, {{"A", 20, {}}}, {{"A", 900, {}}}, {}},
        {"a byte below a fifth of it", both, {{"A", 19, {}}}, {{"A", 900, {}}}, {"A"}},
        {"a burst", both, {{"A", 300, {}}}, {{"A", 900, {}}}, {}},
        {"over the long threshold", both, {}, {{"A", 5000, {}}}, {"A"}},
        {"a long threshold of 0 counts as 1", {shortRule, rule(3600, 0)}, {}, {{"A", 1, {}}, {"B", 0, {}}}, {"A"}},
        {"a short threshold of 0 counts as 1",
         {rule(60, 0), longRule},
         {{"A", 1, {}}},
         {{"A", 900, {}}, {"B", 900, {}}},
         {"B"}},
        {"of equal windows the first rule counts",
         {rule(60, 100), rule(60, 10'000), rule(3600, 1000), rule(3600, 10)},
         {{"A", 50, {}}},
         {{"A", 900, {}}, {"B", 400, {}}},
         {}},
        {"a rule between the two plays no part",
         {shortRule, rule(300, 1), longRule},
         {},
         {{"A", 500, {}}, {"B", 100, {}}},
         {"A"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        World world{{{60, c.inShort}, {3600, c.inLong}}, {}};
        EXPECT_EQ(RuleEvaluator::chronicApps(c.rules, world.lookup(), 0.5, 0.2), c.apps);
    }
}

TEST(RuleEvaluator, chronicAppsAsksForTheShortWindowFirst)
{
    World world;
    EXPECT_THAT(RuleEvaluator::chronicApps({rule(3600, 1), rule(60, 1)}, world.lookup(), 0.5, 0.2), IsEmpty());
    EXPECT_THAT(world.asked, ElementsAre(60.0, 3600.0));
}

TEST(RuleEvaluator, chronicAppsAsksForNothingWithoutAContrast)
{
    World world;
    EXPECT_THAT(RuleEvaluator::chronicApps({rule(60, 1), rule(60, 9)}, world.lookup(), 0.5, 0.2), IsEmpty());
    EXPECT_THAT(world.asked, IsEmpty());
}

} // namespace
} // namespace quellon
