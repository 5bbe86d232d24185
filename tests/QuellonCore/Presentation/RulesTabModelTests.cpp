#include "QuellonCore/Presentation/RulesTabModel.h"

#include "QuellonCore/Rules/RuleRiskNotice.h"
#include "SettingsWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::SizeIs;

class RulesTab : public testing::Test {
protected:
    SettingsWorld world;
    RulesTabModel model() { return RulesTabModel::of(world.engine, world.state); }
    NumberField limit{NumberField::Kind::ruleLimit, SettingsWorld::shortRule};
};

std::vector<std::string> titles(const FormChoice& choice)
{
    std::vector<std::string> result;
    for (const auto& each : choice.options) result.push_back(each.title);
    return result;
}

TEST_F(RulesTab, rows)
{
    const auto shown = model();
    EXPECT_EQ(std::string{shown.headline.before}, "Step in when ");
    EXPECT_EQ(shown.headline.bold, "any");
    EXPECT_EQ(shown.headline.after, " of these is exceeded");
    EXPECT_EQ(shown.blocked, std::nullopt);
    EXPECT_EQ(shown.risk, std::nullopt);
    ASSERT_THAT(shown.rows, SizeIs(2));
    const auto& row = shown.rows[0];
    EXPECT_EQ(row.rule, SettingsWorld::shortRule);
    EXPECT_EQ(row.enabled, (FormSwitch{"Enable 1min rule", true, SetRuleEnabled{SettingsWorld::shortRule, false}}));
    EXPECT_EQ(row.windowLabel, "1min");
    EXPECT_EQ(row.limit.accessibilityLabel, "Limit in megabytes");
    EXPECT_EQ(row.limit.text, "46.08");
    EXPECT_EQ(row.share, "≈ 4.5% of daily budget");
    EXPECT_EQ(row.action.accessibilityLabel, "Action for 1min rule");
    EXPECT_EQ(row.action.label, "");
    EXPECT_THAT(titles(row.action), ElementsAre("Highlight only", "Notify me", "Ask me", "Step in automatically"));
    EXPECT_EQ(row.action.selected, 1U);
    EXPECT_EQ(shown.rows[1].windowLabel, "1h");
    EXPECT_EQ(shown.rows[1].share, "≈ 35.0% of daily budget");
    EXPECT_EQ(shown.rows[1].action.selected, 2U);
}

TEST_F(RulesTab, controlsOfARow)
{
    world.does(model().rows[0].enabled.action);
    EXPECT_FALSE(world.settings().rules()[0].enabled);
    EXPECT_TRUE(world.settings().rules()[1].enabled);
    world.does(model().rows[0].enabled.action);
    EXPECT_TRUE(world.settings().rules()[0].enabled);
    world.does(model().rows[1].action.options[3].action);
    EXPECT_EQ(world.settings().rules()[1].level, ActionLevel::enforce);
    EXPECT_EQ(world.settings().rules()[0].level, ActionLevel::notify);
}

TEST_F(RulesTab, limit)
{
    struct Case {
        const char* name;
        const char* typed;
        std::uint64_t bytes;
    };
    constexpr Case cases[] = {
        {"whole", "10", 10 * mega},
        {"decimals are cut to whole bytes", "0.3", 314'572},
        {"zero", "0", 0},
        {"negative", "-3", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world.enters(limit, c.typed);
        EXPECT_EQ(world.settings().rules()[0].thresholdBytes, c.bytes);
        EXPECT_EQ(world.settings().rules()[1].thresholdBytes, 375'809'638U);
    }
    world.enters(limit, "lots");
    EXPECT_EQ(world.settings().rules()[0].thresholdBytes, 0U);
    EXPECT_EQ(model().rows[0].limit.refusal, "Enter a number.");
    EXPECT_EQ(model().rows[1].limit.refusal, std::nullopt);
    EXPECT_EQ(model().rows[0].share, "≈ 0.0% of daily budget");
}

TEST_F(RulesTab, noShareOfNoPlan)
{
    world.change([](GuardSettings& settings) { settings.planGB() = 0.0; });
    EXPECT_EQ(model().rows[0].share, "≈ 0.0% of daily budget");
}

TEST_F(RulesTab, whatIsGoneIsLeftAlone)
{
    const auto before = world.settings();
    world.does(SetRuleEnabled{UUID{{9}}, false});
    world.does(SetRuleLevel{UUID{{9}}, ActionLevel::enforce});
    world.enters({NumberField::Kind::ruleLimit, UUID{{9}}}, "1");
    world.enters({NumberField::Kind::ruleLimit, UUID{{9}}}, "x");
    EXPECT_EQ(world.settings(), before);
    EXPECT_TRUE(world.state.drafts.empty());
}

TEST_F(RulesTab, addRule)
{
    world.change([](GuardSettings& settings) { settings.planGB() = 30'000'000.0 / (1024.0 * 1024.0 * 1024.0); });
    ASSERT_EQ(world.settings().dailyBudgetBytes(), 1'000'000U);
    EXPECT_EQ(RulesTabModel::addTitle, "Add rule");
    std::vector<std::string> offered;
    for (const auto& each : model().add) {
        offered.push_back(each.title);
        world.does(each.action);
    }
    EXPECT_THAT(offered, ElementsAre("1min", "5min", "15min", "1h"));
    const auto& rules = world.settings().rules();
    ASSERT_THAT(rules, SizeIs(6));
    const std::uint64_t thresholds[] = {45'000, 45'000, 45'000, 350'000};
    for (std::size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(offered[i]);
        EXPECT_EQ(rules[2 + i].windowSeconds, RulesTabModel::windows[i]);
        EXPECT_EQ(rules[2 + i].thresholdBytes, thresholds[i]);
        EXPECT_EQ(rules[2 + i].level, ActionLevel::notify);
        EXPECT_TRUE(rules[2 + i].enabled);
        EXPECT_NE(rules[2 + i].id, rules[1 + i].id);
    }
}

TEST_F(RulesTab, windowName)
{
    struct Case {
        const char* name;
        double seconds;
        const char* text;
    };
    constexpr Case cases[] = {
        {"none", 0, "0min"},
        {"below a minute", 59, "0min"},
        {"a minute and a half", 90, "1min"},
        {"just below an hour", 3'599.9, "59min"},
        {"an hour", 3'600, "1h"},
        {"an hour and a half", 5'400, "1h"},
        {"two days", 172'800, "48h"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(RulesTabModel::windowName(Seconds{c.seconds}), c.text);
    }
}

TEST_F(RulesTab, steppingIn)
{
    auto shown = model();
    EXPECT_EQ(shown.steppingIn.label, "When stepping in");
    EXPECT_THAT(titles(shown.steppingIn), ElementsAre("仅提醒", "暂停（可恢复）", "退出", "强制结束"));
    EXPECT_EQ(shown.steppingIn.selected, 1U);
    for (std::size_t i = 0; i < 4; ++i) {
        world.does(shown.steppingIn.options[i].action);
        EXPECT_EQ(model().steppingIn.selected, i);
    }
    EXPECT_EQ(world.settings().enforcementAction, EnforcementAction::kill);
}

TEST_F(RulesTab, risk)
{
    world.does(SetEnforcementAction{EnforcementAction::kill});
    EXPECT_EQ(model().risk, std::nullopt);
    world.does(SetRuleLevel{SettingsWorld::shortRule, ActionLevel::enforce});
    ASSERT_TRUE(model().risk);
    EXPECT_EQ(model().risk->symbol, "exclamationmark.triangle.fill");
    EXPECT_EQ(model().risk->text, *RuleRiskNotice::forceQuitWarning(world.settings().rules(), EnforcementAction::kill));
}

TEST_F(RulesTab, whereNobodyMayStepIn)
{
    SettingsWorld store{Platform::macOS(), Capabilities{.edition = AppEdition::appStore}};
    const auto shown = RulesTabModel::of(store.engine, store.state);
    ASSERT_TRUE(shown.blocked);
    EXPECT_EQ(shown.blocked->symbol, "lock.fill");
    EXPECT_EQ(shown.blocked->text, *store.engine.capabilities().enforcementBlockedReason());
    EXPECT_THAT(titles(shown.steppingIn), ElementsAre("仅提醒"));
    EXPECT_EQ(shown.steppingIn.selected, std::nullopt) << "the settings still say to pause";
}

} // namespace
} // namespace quellon
