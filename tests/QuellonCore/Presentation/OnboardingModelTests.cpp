#include "QuellonCore/Presentation/OnboardingModel.h"

#include "SettingsWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::SizeIs;
using Kind = NumberField::Kind;
using Limit = OnboardingModel::Limit;

class Onboarding : public testing::Test {
protected:
    SettingsWorld world;
    OnboardingModel model() { return OnboardingModel::of(world.engine, world.state); }
};

TEST_F(Onboarding, atFirst)
{
    const auto shown = model();
    EXPECT_EQ(OnboardingModel::windowTitle, "Welcome to Quellon");
    EXPECT_EQ(OnboardingModel::title, "Quellon");
    EXPECT_EQ(OnboardingModel::text, "Stops apps from quietly burning your hotspot data.");
    EXPECT_EQ(OnboardingModel::previewHeading, "Will be set up as");
    EXPECT_EQ(OnboardingModel::note,
              "Warnings are delivered on screen. Allowing notifications adds a second way to reach you.");
    EXPECT_EQ(shown.planSize.label, "My plan");
    EXPECT_EQ(shown.planSize.suffix, "GB / month");
    EXPECT_EQ(shown.planSize.accessibilityLabel, "Monthly plan in gigabytes");
    EXPECT_EQ(shown.planSize.text, "30");
    EXPECT_EQ(shown.startDay.label, "Billing starts on");
    EXPECT_EQ(shown.startDay.suffix, "of each month");
    EXPECT_EQ(shown.startDay.accessibilityLabel, "Billing cycle start day");
    EXPECT_EQ(shown.startDay.text, "1");
    EXPECT_EQ(shown.usageProfile.label, "Mainly used for");
    EXPECT_EQ(shown.usageProfile.selected, 1U);
    EXPECT_EQ(shown.dailyBudget, "Daily budget 1.00 GB");
    EXPECT_THAT(shown.limits,
                ElementsAre(Limit{"Over 46.1 MB", "in 1min", "Notify me"}, Limit{"Over 358.4 MB", "in 1h", "Ask me"}));
    EXPECT_EQ(shown.start, (FormButton{"Start guarding", "Start guarding", StartGuarding{}}));
    EXPECT_EQ(shown, model()) << "looking at it changes nothing";
}

TEST_F(Onboarding, thePreviewFollowsWhatIsTyped)
{
    world.types(Kind::planSize, "15");
    EXPECT_EQ(model().dailyBudget, "Daily budget 512.0 MB");
    EXPECT_EQ(model().limits[0].over, "Over 23.0 MB");
    world.does(SetUsageProfile{UsageProfile::light});
    EXPECT_THAT(model().limits,
                ElementsAre(Limit{"Over 15.4 MB", "in 1min", "Notify me"}, Limit{"Over 128.0 MB", "in 1h", "Ask me"}));
    world.types(Kind::planSize, "15x");
    EXPECT_EQ(model().dailyBudget, "Daily budget 1.00 GB") << "the plan as it is";
    world.types(Kind::planSize, "0");
    EXPECT_EQ(model().limits[1].over, "Over 0.0 MB");
}

TEST_F(Onboarding, theWholePlanIsShownNotItsRoundedText)
{
    world.change([](GuardSettings& settings) { settings.planGB() = 0.20062; });
    EXPECT_EQ(model().planSize.text, "0.201");
    EXPECT_EQ(model().dailyBudget, "Daily budget 6.8 MB");
    world.types(Kind::planSize, "0.2010");
    EXPECT_EQ(model().dailyBudget, "Daily budget 6.9 MB");
    world.state.drafts.clear();
    world.change([](GuardSettings& settings) { settings.planGB() = 1e9; });
    EXPECT_EQ(model().dailyBudget, "Daily budget 33333333.33 GB") << "larger than anything that could be typed";
}

TEST_F(Onboarding, startGuarding)
{
    world.types(Kind::planSize, "50");
    world.types(Kind::startDay, "15");
    world.does(SetUsageProfile{UsageProfile::heavy});
    EXPECT_FALSE(world.settings().onboarded);
    EXPECT_TRUE(world.does(model().start.action)) << "the window is to close";
    EXPECT_TRUE(world.settings().onboarded);
    EXPECT_EQ(world.settings().planGB(), 50.0);
    EXPECT_EQ(world.settings().billingCycleStartDay(), 15);
    ASSERT_THAT(world.settings().rules(), SizeIs(2));
    EXPECT_EQ(world.settings().rules()[0].thresholdBytes, RuleDerivation::dailyBudgetBytes(50.0) * 8 / 100);
    EXPECT_NE(world.settings().rules()[0].id, SettingsWorld::shortRule);
}

TEST_F(Onboarding, aRefusedNumberKeepsTheWindowOpen)
{
    struct Case {
        const char* name;
        Kind kind;
        const char* typed;
    };
    for (const auto& c : {Case{"plan", Kind::planSize, "100001"}, Case{"day", Kind::startDay, "32"}}) {
        SCOPED_TRACE(c.name);
        SettingsWorld each;
        each.types(c.kind, c.typed);
        EXPECT_FALSE(OnboardingModel::of(each.engine, each.state).start.enabled);
        EXPECT_FALSE(each.does(StartGuarding{}));
        EXPECT_FALSE(each.settings().onboarded);
        EXPECT_EQ(each.settings().rules()[0].id, SettingsWorld::shortRule);
    }
}

TEST_F(Onboarding, whatWasTypedElsewhereDoesNotHoldItBack)
{
    world.types(Kind::carrierReading, "18.2");
    world.types({Kind::ruleLimit, SettingsWorld::longRule}, "many");
    EXPECT_TRUE(world.does(StartGuarding{}));
    EXPECT_TRUE(world.settings().onboarded);
}

TEST_F(Onboarding, closingTheWindowLeavesItToBeDone)
{
    world.types(Kind::planSize, "50");
    world.state = {};
    EXPECT_FALSE(world.settings().onboarded);
    EXPECT_EQ(world.settings().planGB(), 30.0);
}

} // namespace
} // namespace quellon
