#include "SettingsViews.h"

#include "QuellonUI/Kit/StatusDot.h"
#include "QuellonUI/Settings/Spinner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;

class AppDetailViewTest : public testing::Test {
protected:
    SettingsView view;
    AppDetailViewTest() { view.open(SettingsTab::plan); }

    void details(const char* app)
    {
        view.does(OpenDetails{app});
        view.refresh();
        settleEvents();
    }
    void draw(const AppDetailModel& detail)
    {
        auto model = view.model();
        model.detail = detail;
        view.window.setModel(model);
        settleEvents();
    }
};

TEST_F(AppDetailViewTest, somethingUnknown)
{
    details("helperd");
    const auto detail = *view.model().detail;
    for (const std::string& text : {detail.app, detail.unknown->text, std::string{"Usage"}, detail.lastHour.label,
                                    detail.lastHour.value, std::string{"Guard actions"}, detail.actions[0]}) {
        EXPECT_NE(label(view.window, text), nullptr) << text;
    }
    EXPECT_EQ(role(named(view.window, "Policy for helperd")), QAccessible::ComboBox);
    EXPECT_EQ(role(named(view.window, "Look up helperd online")), QAccessible::Button);
    EXPECT_EQ(role(named(view.window, "Close")), QAccessible::Button);
    EXPECT_EQ(QApplication::focusWidget(), named(view.window, "Close"));
    choose(view.the<ChoiceBox>("Policy for helperd"), 2);
    EXPECT_EQ(view.settings().appPolicies.policy("helperd"), AppPolicy::always);
}

TEST_F(AppDetailViewTest, somethingKnown)
{
    details("ollama");
    const auto identity = *view.model().detail->identity;
    for (const std::string& text : {*view.model().detail->subtitle, identity.whatItIs, identity.whyTraffic,
                                    identity.advice, identity.provenance}) {
        EXPECT_NE(label(view.window, text), nullptr) << text;
    }
    EXPECT_EQ(named(view.window, "Look up ollama online"), nullptr);
    AppDetailModel detail = *view.model().detail;
    detail.identity->limitNote = "A note.";
    detail.chronic = "🐌 slow but steady";
    detail.identity->adviceTint = Tint::red;
    draw(detail);
    EXPECT_NE(label(view.window, "A note."), nullptr);
    EXPECT_NE(label(view.window, "🐌 slow but steady"), nullptr);
    EXPECT_EQ(view.window.findChild<StatusDot*>()->colour(), Theme::of(view.window.palette()).tint(Tint::red));
}

TEST_F(AppDetailViewTest, aLookup)
{
    view.host.http().reply = {HttpResponse{500, ""}, 2s};
    details("helperd");
    view.click("Look up helperd online");
    EXPECT_NE(label(view.window, "Look up unknown apps online?"), nullptr);
    EXPECT_EQ(named(view.window, "Look up helperd online"), nullptr);
    view.click("Decline online app lookups");
    EXPECT_EQ(view.settings().explainConsent, UpdateCheckConsent::denied);
    view.click("Look up helperd online");
    view.click("Allow online app lookups");
    auto* const spinner = view.window.findChild<Spinner*>();
    ASSERT_NE(spinner, nullptr);
    EXPECT_TRUE(spinner->isTurning());
    EXPECT_EQ(role(spinner), QAccessible::ProgressBar);
    EXPECT_EQ(spinner->accessibleName(), QStringLiteral("Looking it up…"));
    view.click("Close");
    EXPECT_FALSE(spinner->isTurning()) << "it turns only where it is seen";
    details("helperd");
    EXPECT_TRUE(spinner->isTurning()) << "the lookup goes on";
    view.host.advance(3s);
    view.refresh();
    settleEvents();
    EXPECT_FALSE(spinner->isTurning());
    EXPECT_NE(label(view.window, *view.model().detail->unknown->failure), nullptr);
}

TEST_F(AppDetailViewTest, closesInEveryWay)
{
    details("helperd");
    view.click("Close");
    EXPECT_EQ(named(view.window, "Close"), nullptr);
    details("helperd");
    key(Qt::Key_Escape);
    EXPECT_EQ(view.engine.detailApp(), std::nullopt);
    details("helperd");
    view.window.close();
    EXPECT_EQ(view.engine.detailApp(), std::nullopt);
}

TEST_F(AppDetailViewTest, pauseControls)
{
    details("helperd");
    AppDetailModel detail = *view.model().detail;
    detail.pauseControls = {{"Ask me again", "Stop muting helperd", UnmuteAsks{"helperd"}},
                            {"Stop allowing", "Watch helperd again", ResumeWatching{"helperd"}}};
    draw(detail);
    auto& unmute = view.the<Pressable>("Stop muting helperd");
    auto& watch = view.the<Pressable>("Watch helperd again");
    EXPECT_LT(unmute.x(), watch.x());
    EXPECT_LT(watch.x(), view.the<QWidget>("Close").x());
    std::vector<std::string> order;
    for (int i = 0; i < 4; ++i) {
        key(Qt::Key_Tab);
        order.push_back(QApplication::focusWidget()->accessibleName().toStdString());
    }
    EXPECT_THAT(order, testing::Contains("Stop muting helperd"));
    unmute.click();
    EXPECT_THAT(view.all<UnmuteAsks>(), ElementsAre(UnmuteAsks{"helperd"}));
    EXPECT_EQ(named(view.window, "Stop muting helperd"), nullptr) << "the engine has muted nothing";
}

TEST_F(AppDetailViewTest, whatIsToldOfAnApplicationCanBeCopied)
{
    details("ollama");
    const auto detail = *view.model().detail;
    for (const std::string& text : {detail.app, *detail.subtitle, detail.lastHour.value, detail.identity->whatItIs}) {
        SCOPED_TRACE(text);
        QLabel* const shown = label(view.window, text);
        ASSERT_NE(shown, nullptr);
        EXPECT_TRUE(shown->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    }
}

TEST_F(AppDetailViewTest, textsOfOthersAreNoMarkup)
{
    details("<b>evil</b>");
    EXPECT_NE(label(view.window, "<b>evil</b>"), nullptr);
    for (const QLabel* each : view.window.findChildren<QLabel*>()) {
        EXPECT_EQ(each->textFormat(), Qt::PlainText) << each->text().toStdString();
    }
}

} // namespace
} // namespace quellon
