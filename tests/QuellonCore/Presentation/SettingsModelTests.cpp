#include "QuellonCore/Presentation/SettingsModel.h"

#include "QuellonCore/Presentation/SettingsSymbols.h"
#include "SettingsWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

class SettingsWindowModel : public testing::Test {
protected:
    SettingsWorld world;
    SettingsModel model()
    {
        return SettingsModel::of(world.engine, world.state, {"1.2.0", {}, "14.5.0"}, world.host.now());
    }
};

TEST_F(SettingsWindowModel, tabs)
{
    struct Case {
        SettingsTab tab;
        const char* title;
        const char* symbol;
    };
    constexpr Case cases[] = {
        {SettingsTab::plan, "Plan", "chart.pie"},     {SettingsTab::rules, "Rules", "gauge.with.needle"},
        {SettingsTab::apps, "Apps", "lock.shield"},   {SettingsTab::log, "Log", "list.bullet"},
        {SettingsTab::about, "About", "info.circle"},
    };
    EXPECT_EQ(SettingsModel::windowTitle, "Quellon Settings");
    EXPECT_EQ(world.state.tab, SettingsTab::plan);
    std::size_t place = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.title);
        ASSERT_THAT(model().tabs, SizeIs(5));
        const auto tab = model().tabs[place];
        EXPECT_EQ(tab.button.title, c.title);
        EXPECT_EQ(tab.button.symbol, c.symbol);
        EXPECT_EQ(tab.selected, world.state.tab == c.tab);
        world.does(tab.button.action);
        EXPECT_EQ(world.state.tab, c.tab);
        for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(model().tabs[i].selected, i == place);
        EXPECT_EQ(model().page.index(), place) << "the page is the tab's";
        ++place;
    }
}

TEST_F(SettingsWindowModel, whatStoodOnAPageIsForgottenWithIt)
{
    world.does(SelectTab{SettingsTab::apps});
    world.does(OpenPicker{});
    world.does(FilterPicker{"a"});
    world.does(ShowCopied{true});
    world.does(SelectTab{SettingsTab::apps});
    EXPECT_TRUE(std::get<AppsTabModel>(model().page).picker) << "it is the same page";
    EXPECT_EQ(world.state.query, "a");
    world.does(SelectTab{SettingsTab::log}); // as a notification does
    world.does(SelectTab{SettingsTab::apps});
    EXPECT_EQ(std::get<AppsTabModel>(model().page).picker, std::nullopt);
    EXPECT_EQ(world.state.query, "");
    world.does(SelectTab{SettingsTab::about});
    EXPECT_EQ(std::get<AboutModel>(model().page).copy.title, "Copy diagnostics");
}

TEST_F(SettingsWindowModel, whatIsTypedStaysWhenItsPageIsChosenAgain)
{
    world.types({NumberField::Kind::planSize, {}}, "many");
    world.types({NumberField::Kind::carrierReading, {}}, "18.2");
    world.does(SelectTab{SettingsTab::plan});
    EXPECT_EQ(std::get<PlanTabModel>(model().page).planSize.text, "many");
    world.does(SelectTab{SettingsTab::log});
    world.does(SelectTab{SettingsTab::plan});
    EXPECT_EQ(std::get<PlanTabModel>(model().page).planSize.text, "30");
    EXPECT_EQ(world.state.drafts.at({NumberField::Kind::carrierReading, {}}), "18.2") << "the window's own";
}

TEST_F(SettingsWindowModel, whatIsTypedTakesEffectWhenItsPageIsLeft)
{
    world.types(NumberField::Kind::planSize, "50");
    world.types(NumberField::Kind::startDay, "99");
    world.does(SelectTab{SettingsTab::rules}); // as a notification does, while the field still has the focus
    EXPECT_EQ(world.settings().planGB(), 50.0);
    EXPECT_EQ(world.settings().billingCycleStartDay(), 1) << "it is refused";
    world.types({NumberField::Kind::ruleLimit, SettingsWorld::shortRule}, "12");
    world.does(SelectTab{SettingsTab::plan});
    EXPECT_EQ(world.settings().rules()[0].thresholdBytes, 12 * mega);
    EXPECT_THAT(world.state.drafts, IsEmpty());
}

TEST_F(SettingsWindowModel, whatIsRefusedIsForgottenWithTheWindow)
{
    world.types(NumberField::Kind::planSize, "50");
    world.types(NumberField::Kind::startDay, "99");
    world.types(NumberField::Kind::carrierReading, "18.2");
    world.does(CloseWindow{});
    EXPECT_EQ(world.settings().planGB(), 50.0);
    EXPECT_EQ(std::get<PlanTabModel>(model().page).startDay.text, "1");
    EXPECT_EQ(std::get<PlanTabModel>(model().page).startDay.refusal, std::nullopt);
    EXPECT_EQ(world.state.drafts.at({NumberField::Kind::carrierReading, {}}), "18.2");
    world.does(SelectTab{SettingsTab::apps});
    world.does(OpenPicker{});
    world.does(CloseWindow{});
    EXPECT_EQ(std::get<AppsTabModel>(model().page).picker, std::nullopt);
    EXPECT_EQ(world.state.tab, SettingsTab::apps) << "the page that was chosen last stays";
}

TEST_F(SettingsWindowModel, theQuestionAboutTheRulesEndsWithItsPage)
{
    world.change([](GuardSettings& settings) { settings.rules()[0].thresholdBytes = 30 * mega; });
    world.does(RederiveRules{});
    ASSERT_TRUE(std::get<PlanTabModel>(model().page).question);
    world.does(SelectTab{SettingsTab::rules});
    world.does(SelectTab{SettingsTab::plan});
    EXPECT_EQ(std::get<PlanTabModel>(model().page).question, std::nullopt);
    EXPECT_EQ(world.settings().rules()[0].thresholdBytes, 30 * mega);
}

TEST_F(SettingsWindowModel, detailSheet)
{
    EXPECT_EQ(model().detail, std::nullopt);
    world.engine.setDetailApp("helperd");
    ASSERT_TRUE(model().detail);
    EXPECT_EQ(model().detail->app, "helperd");
    world.does(ExplainOnline{"helperd"});
    EXPECT_TRUE(model().detail->unknown->consent);
    world.does(model().detail->close.action);
    EXPECT_EQ(model().detail, std::nullopt);
    EXPECT_EQ(world.engine.detailApp(), std::nullopt);
}

TEST_F(SettingsWindowModel, theQuestionAboutLookupsEndsWithItsSheet)
{
    world.does(OpenDetails{"helperd"});
    world.does(ExplainOnline{"helperd"});
    EXPECT_TRUE(model().detail->unknown->consent);
    world.engine.setDetailApp("otherd"); // as from a notification
    EXPECT_EQ(model().detail->unknown->consent, std::nullopt);
    settle(world.engine, world.state);
    world.engine.setDetailApp("helperd");
    EXPECT_EQ(model().detail->unknown->consent, std::nullopt);
}

TEST_F(SettingsWindowModel, log)
{
    GuardEngine fresh{world.host, world.stopped()};
    EXPECT_EQ(LogTabModel::emptyText, "Nothing yet");
    EXPECT_THAT(LogTabModel::of(fresh).rows, IsEmpty());
    fresh.append(GuardEvent::Kind::info, "first");
    world.host.advance(1s);
    fresh.append(GuardEvent::Kind::enforced, "evil\x1B");
    const auto shown = LogTabModel::of(fresh);
    ASSERT_THAT(shown.rows, SizeIs(2));
    EXPECT_EQ(shown.rows[0].message, "evil�");
    EXPECT_EQ(shown.rows[0].time, "10:00:01");
    EXPECT_EQ(shown.rows[1].message, "first");
    EXPECT_EQ(shown, (LogTabModel{OverviewModel::of(fresh, world.host.now()).log}));
}

TEST_F(SettingsWindowModel, aLineOfTheLogInWords)
{
    EXPECT_EQ(LogTabModel::line({UUID{}, "10:00:01", GuardEvent::Kind::info, "Quellon started"}),
              "10:00:01 info: Quellon started");
    EXPECT_EQ(LogTabModel::line({UUID{}, "10:00:02", GuardEvent::Kind::warning, "超时: a"}),
              "10:00:02 warning: 超时: a");
    EXPECT_EQ(LogTabModel::line({UUID{}, "", GuardEvent::Kind::enforced, ""}), " enforced: ");
}

TEST_F(SettingsWindowModel, symbolsOfTheLog)
{
    EXPECT_EQ(LogTabModel::symbol(GuardEvent::Kind::info), "info.circle");
    EXPECT_EQ(LogTabModel::symbol(GuardEvent::Kind::warning), "exclamationmark.triangle");
    EXPECT_EQ(LogTabModel::symbol(GuardEvent::Kind::enforced), "hand.raised.fill");
}

TEST_F(SettingsWindowModel, everySymbolIsListedOnce)
{
    const std::set<std::string_view> all{SettingsSymbols::all.begin(), SettingsSymbols::all.end()};
    EXPECT_THAT(all, SizeIs(SettingsSymbols::all.size()));
    for (const auto& row : guardEventKinds.rows) EXPECT_THAT(all, Contains(LogTabModel::symbol(row.value)));
    EXPECT_THAT(all, Contains(AppsTabModel::of(world.engine, world.state).empty->symbol));
}

TEST_F(SettingsWindowModel, anEqualStateGivesAnEqualModel)
{
    world.use(mega);
    for (const auto& row : settingsTabs.rows) {
        SCOPED_TRACE(row.raw);
        world.does(SelectTab{row.value});
        const auto shown = model();
        EXPECT_EQ(shown, model());
    }
}

TEST_F(SettingsWindowModel, whatIsDoneTakesEffectAndIsSaved)
{
    const auto saved = [this] { return world.host.files().get(world.settingsFile).value_or(""); };
    world.does(RenameProfile{"Travel"});
    EXPECT_THAT(saved(), testing::HasSubstr("Travel"));
    world.does(SetPolicy{"helperd", AppPolicy::never});
    EXPECT_THAT(saved(), testing::HasSubstr("helperd"));
}

TEST(Tint, table)
{
    std::set<std::string_view> raws;
    for (const auto& row : tints.rows) {
        EXPECT_EQ(tints.parse(row.raw), row.value);
        raws.insert(row.raw);
    }
    EXPECT_THAT(raws, SizeIs(7));
    EXPECT_EQ(tints.parse("purple"), std::nullopt);
}

} // namespace
} // namespace quellon
