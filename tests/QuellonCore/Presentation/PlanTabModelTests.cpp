#include "QuellonCore/Presentation/PlanTabModel.h"

#include "SettingsWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = NumberField::Kind;

constexpr std::uint64_t giga = 1024 * mega;

class PlanTab : public testing::Test {
protected:
    SettingsWorld world;
    PlanTabModel model() { return PlanTabModel::of(world.engine, world.state); }
};

std::vector<std::string> titles(const FormChoice& choice)
{
    std::vector<std::string> result;
    for (const auto& each : choice.options) result.push_back(each.title);
    return result;
}

TEST_F(PlanTab, onePlan)
{
    const auto shown = model();
    EXPECT_EQ(shown.profile.label, "Plan profile");
    EXPECT_EQ(shown.profile.accessibilityLabel, "Active plan profile");
    EXPECT_THAT(titles(shown.profile), ElementsAre("My plan"));
    EXPECT_EQ(shown.profile.selected, 0U);
    EXPECT_EQ(shown.name, (FormText{"Profile name", "Rename this profile", "My plan"}));
    EXPECT_EQ(shown.add, (FormButton{"Add profile…", "Add a plan profile", AddProfile{}}));
    EXPECT_EQ(shown.remove, std::nullopt) << "the last plan can't be deleted";
    EXPECT_EQ(shown.profilesFooter, std::nullopt);

    EXPECT_EQ(shown.planSize.label, "Monthly plan");
    EXPECT_EQ(shown.planSize.suffix, "GB");
    EXPECT_EQ(shown.planSize.text, "30");
    EXPECT_EQ(shown.planSize.refusal, std::nullopt);
    EXPECT_EQ(shown.startDay.label, "Billing starts on");
    EXPECT_EQ(shown.startDay.suffix, "of each month");
    EXPECT_EQ(shown.startDay.text, "1");
    EXPECT_EQ(shown.usageProfile.label, "Mainly used for");
    EXPECT_THAT(titles(shown.usageProfile),
                ElementsAre("Light — mail, docs, browsing", "Development — code, dependencies, builds",
                            "Heavy — video calls, streaming"));
    EXPECT_EQ(shown.usageProfile.selected, 1U);
    EXPECT_EQ(shown.rederive.title, "Re-derive limits from plan");
    EXPECT_EQ(shown.dailyBudget, "Daily budget 1.00 GB");
    EXPECT_EQ(shown.question, std::nullopt);
}

TEST_F(PlanTab, twoPlans)
{
    const UUID first = world.settings().activeProfileID;
    world.does(AddProfile{});
    const UUID second = world.settings().activeProfileID;
    auto shown = model();
    EXPECT_THAT(titles(shown.profile), ElementsAre("My plan", "New profile"));
    EXPECT_EQ(shown.profile.selected, 1U);
    EXPECT_EQ(shown.profile.options[0].action, SettingsAction{SelectProfile{first}});
    ASSERT_TRUE(shown.remove);
    EXPECT_EQ(shown.remove->title, "Delete this profile");
    EXPECT_EQ(shown.remove->accessibilityLabel, "Delete the active profile");
    EXPECT_TRUE(shown.remove->destructive);
    EXPECT_EQ(shown.remove->action, SettingsAction{DeleteProfile{second}});
    EXPECT_EQ(shown.profilesFooter, "Each profile keeps its own monthly ledger. Switching remembers which profile you "
                                    "use on which connection.");

    world.does(RenameProfile{"Work\x1B"});
    EXPECT_EQ(model().name.text, "Work�");
    EXPECT_THAT(titles(model().profile), ElementsAre("My plan", "Work�"));
    world.does(SelectProfile{first});
    EXPECT_EQ(model().profile.selected, 0U);
    EXPECT_EQ(model().name.text, "My plan");
    world.does(DeleteProfile{second});
    EXPECT_EQ(model().remove, std::nullopt);
    EXPECT_EQ(world.settings().profiles.size(), 1U);
}

TEST_F(PlanTab, aNameReachesThePlanThatItWasTypedFor)
{
    const UUID first = world.settings().activeProfileID;
    EXPECT_EQ(model().plan, first);
    world.does(AddProfile{});
    EXPECT_EQ(model().plan, world.settings().activeProfileID);
    world.does(RenameProfile{"Home", first}); // while another plan has become the active one
    EXPECT_EQ(world.settings().profiles[0].name, "Home");
    EXPECT_EQ(world.settings().profiles[1].name, "New profile");
    world.does(RenameProfile{"Travel"});
    EXPECT_EQ(world.settings().profiles[1].name, "Travel") << "no plan is named: the active one";
    const auto before = world.settings();
    world.does(RenameProfile{"Gone", UUID{{9}}});
    EXPECT_EQ(world.settings(), before);
}

TEST_F(PlanTab, numbers)
{
    world.enters(Kind::planSize, "50");
    EXPECT_EQ(world.settings().planGB(), 50.0);
    EXPECT_EQ(model().planSize.text, "50");
    world.enters(Kind::startDay, "31");
    EXPECT_EQ(world.settings().billingCycleStartDay(), 31);
    EXPECT_EQ(world.engine.budget().billingCycleStartDay, 28);
    EXPECT_THAT(world.state.drafts, IsEmpty());
}

TEST_F(PlanTab, aNumberTakesEffectWhenItsFieldIsLeft)
{
    world.types(Kind::planSize, "5");
    EXPECT_EQ(world.settings().planGB(), 30.0);
    EXPECT_EQ(model().planSize.text, "5");
    world.does(CommitNumber{{Kind::planSize, {}}});
    EXPECT_EQ(world.settings().planGB(), 5.0);
}

TEST_F(PlanTab, aRefusedNumberStaysWithTheWordWhy)
{
    world.enters(Kind::planSize, "100001");
    world.enters(Kind::startDay, "0");
    EXPECT_EQ(world.settings().planGB(), 30.0);
    EXPECT_EQ(world.settings().billingCycleStartDay(), 1);
    EXPECT_EQ(model().planSize.text, "100001");
    EXPECT_EQ(model().planSize.refusal, "Enter 0 to 100,000 GB.");
    EXPECT_EQ(model().startDay.text, "0");
    EXPECT_EQ(model().startDay.refusal, "Enter a day from 1 to 31.");
    world.enters(Kind::planSize, "60");
    EXPECT_EQ(model().planSize.refusal, std::nullopt) << "mended";
    world.does(SelectTab{SettingsTab::rules});
    EXPECT_EQ(model().startDay.text, "1") << "forgotten with the page";
}

TEST_F(PlanTab, aTextLeftAsItStoodDoesNotRoundItsValue)
{
    world.change([](GuardSettings& settings) { settings.planGB() = 12.34567; });
    world.enters(Kind::planSize, "12.346");
    EXPECT_EQ(world.settings().planGB(), 12.34567);
    world.enters(Kind::planSize, "12.3460");
    EXPECT_EQ(world.settings().planGB(), 12.346);
}

TEST_F(PlanTab, usageProfile)
{
    const auto before = world.settings().rules();
    world.does(SetUsageProfile{UsageProfile::heavy});
    EXPECT_EQ(world.settings().profile(), UsageProfile::heavy);
    EXPECT_EQ(model().usageProfile.selected, 2U);
    EXPECT_EQ(world.settings().rules(), before);
}

TEST_F(PlanTab, rederiveWithNothingToLose)
{
    world.does(RederiveRules{});
    EXPECT_EQ(model().question, std::nullopt) << "the rules are the derived ones already";
    EXPECT_NE(world.settings().rules().front().id, SettingsWorld::shortRule) << "stored at once";
    EXPECT_THAT(world.settings().rules(), SizeIs(2));
}

TEST_F(PlanTab, rederiveAsksBeforeALimitIsLost)
{
    world.change([](GuardSettings& settings) {
        settings.rules()[0].thresholdBytes = 30 * mega;
        settings.rules().push_back({UUID{{3}}, Seconds{300}, 20 * mega, ActionLevel::ask});
    });
    const auto before = world.settings().rules();
    world.does(RederiveRules{});
    ASSERT_TRUE(model().question);
    EXPECT_EQ(model().question->title, "Replace your limits with the derived defaults?");
    EXPECT_THAT(model().question->changes, ElementsAre("1min 30.0 MB → 46.1 MB", "5min 20.0 MB → removed"));
    EXPECT_EQ(model().question->replace.title, "Replace");
    EXPECT_TRUE(model().question->replace.destructive);
    EXPECT_EQ(model().question->keep.title, "Keep mine");
    EXPECT_FALSE(model().question->keep.destructive);
    EXPECT_EQ(world.settings().rules(), before);

    world.does(model().question->keep.action);
    EXPECT_EQ(model().question, std::nullopt);
    EXPECT_EQ(world.settings().rules(), before);
    world.does(ReplaceRules{});
    EXPECT_EQ(world.settings().rules(), before) << "nobody was asked";

    world.does(RederiveRules{});
    world.does(model().question->replace.action);
    EXPECT_EQ(model().question, std::nullopt);
    ASSERT_THAT(world.settings().rules(), SizeIs(2));
    EXPECT_EQ(world.settings().rules()[0].thresholdBytes, 48'318'382U);
}

TEST_F(PlanTab, cycle)
{
    struct Case {
        const char* name;
        double planGB;
        std::uint64_t used;
        const char* usedText;
        const char* left;
    };
    constexpr Case cases[] = {
        {"nothing", 30.0, 0, "0.0 MB (0%)", "30.00 GB · 16 days"},
        {"a part is cut off", 30.0, 12 * giga - 1, "12.00 GB (39%)", "18.00 GB · 16 days"},
        {"all", 30.0, 30 * giga, "30.00 GB (100%)", "0.0 MB · 16 days"},
        {"more than all", 30.0, 45 * giga, "45.00 GB (100%)", "0.0 MB · 16 days"},
        {"no plan", 0.0, giga, "1.00 GB (0%)", "0.0 MB · 16 days"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SettingsWorld each;
        each.change([&](GuardSettings& settings) { settings.planGB() = c.planGB; });
        each.use(c.used);
        const auto shown = PlanTabModel::of(each.engine, each.state);
        ASSERT_TRUE(shown.cycle);
        EXPECT_EQ(shown.cycle->used.label, "Used");
        EXPECT_EQ(shown.cycle->used.value, c.usedText);
        EXPECT_EQ(shown.cycle->left.label, "Left");
        EXPECT_EQ(shown.cycle->left.value, c.left);
        EXPECT_EQ(shown.cycle->gaps, std::nullopt);
        EXPECT_EQ(shown.cycle->clear, std::nullopt);
        EXPECT_EQ(shown.cycle->adjusted, std::nullopt);
    }
}

TEST_F(PlanTab, cycleTexts)
{
    world.use(giga);
    const auto shown = *model().cycle;
    EXPECT_EQ(PlanTabModel::cycleHeading, "This cycle");
    EXPECT_EQ(shown.note, "Measured at the network interface, so it includes protocol overhead and traffic from while "
                          "the guard wasn't running. Your carrier counts from their side, so expect a small difference "
                          "either way.");
    EXPECT_EQ(shown.carrier.label, "Carrier says");
    EXPECT_EQ(shown.carrier.prompt, "18.2");
    EXPECT_EQ(shown.carrier.text, "");
    EXPECT_EQ(shown.match.title, "Match");
}

TEST_F(PlanTab, gaps)
{
    world.use(giga);
    world.use(giga); // the counters begin anew
    ASSERT_TRUE(model().cycle);
    EXPECT_EQ(model().cycle->gaps, "1 period(s) this cycle couldn't be measured (the hotspot interface was "
                                   "reconnected). Actual usage is higher than shown — calibrate below.");
}

TEST_F(PlanTab, match)
{
    struct Case {
        const char* name;
        std::optional<std::string> typed;
        std::uint64_t used;
        std::optional<std::string> adjusted;
        std::string left; ///< In the field afterwards.
    };
    const Case cases[] = {
        {"nothing was ever typed", {}, 2 * giga, {}, ""},
        {"empty again", "", 2 * giga, {}, ""},
        {"negative", "-1", 2 * giga, {}, "-1"},
        {"no number", "x", 2 * giga, {}, "x"},
        {"more", "18.2", 19'542'101'196, "Adjusted by +16.20 GB this cycle.", ""},
        {"less", "1.5", giga + giga / 2, "Adjusted by −512.0 MB this cycle.", ""},
        {"zero", "0", 0, "Adjusted by −2.00 GB this cycle.", ""},
        {"the same", "2", 2 * giga, {}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SettingsWorld each;
        each.use(2 * giga);
        if (c.typed) each.enters(Kind::carrierReading, *c.typed);
        each.does(MatchCarrier{});
        EXPECT_EQ(each.engine.budgetStatus()->usedBytes, c.used);
        const auto shown = PlanTabModel::of(each.engine, each.state);
        EXPECT_EQ(shown.cycle->adjusted, c.adjusted);
        EXPECT_EQ(shown.cycle->clear.has_value(), c.adjusted.has_value());
        EXPECT_EQ(shown.cycle->carrier.text, c.left);
        EXPECT_EQ(shown.cycle->carrier.refusal.has_value(), !c.left.empty());
    }
}

TEST_F(PlanTab, clear)
{
    world.use(2 * giga);
    world.enters(Kind::carrierReading, "5");
    world.does(MatchCarrier{});
    world.types(Kind::carrierReading, "6");
    ASSERT_TRUE(model().cycle->clear);
    EXPECT_EQ(model().cycle->clear->title, "Clear");
    world.does(model().cycle->clear->action);
    EXPECT_EQ(world.engine.budgetStatus()->usedBytes, 2 * giga);
    EXPECT_EQ(model().cycle->clear, std::nullopt);
    EXPECT_EQ(model().cycle->carrier.text, "");
}

TEST_F(PlanTab, theLargestCorrections)
{
    world.use(giga);
    BudgetStore budget = world.engine.budget();
    budget.days.clear();
    budget.calibrationOffsetBytes = std::numeric_limits<std::int64_t>::min();
    world.engine.setBudget(budget);
    EXPECT_EQ(model().cycle->adjusted, "Adjusted by −8589934592.00 GB this cycle.");
}

/// The window as a whole: what is typed and asked belongs to the plan that was active then.
TEST_F(PlanTab, anotherPlanForgetsWhatWasTypedAndAsked)
{
    const UUID first = world.settings().activeProfileID;
    world.does(AddProfile{});
    world.engine.selectProfile(first);
    world.change([](GuardSettings& settings) { settings.rules()[0].thresholdBytes = 30 * mega; });
    world.types(Kind::planSize, "5");
    world.types(Kind::carrierReading, "6");
    world.does(RederiveRules{});
    const auto shown = [this] {
        return std::get<PlanTabModel>(SettingsModel::of(world.engine, world.state, {}, world.host.now()).page);
    };
    EXPECT_EQ(shown().planSize.text, "5");
    EXPECT_TRUE(shown().question);

    const UUID second = world.settings().profiles[1].id;
    world.engine.selectProfile(second); // by nobody's press, as on another network
    EXPECT_EQ(shown().planSize.text, "30");
    EXPECT_EQ(shown().question, std::nullopt);
    EXPECT_EQ(shown().cycle->carrier.text, "6") << "the carrier's word stays";
    const auto before = world.settings();
    world.does(CommitNumber{{Kind::planSize, {}}});
    world.does(ReplaceRules{});
    EXPECT_EQ(world.settings(), before) << "nothing of it reaches the other plan";
    world.does(SelectProfile{first});
    EXPECT_EQ(shown().planSize.text, "30");
    EXPECT_EQ(shown().question, std::nullopt);
}

} // namespace
} // namespace quellon
