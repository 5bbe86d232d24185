#include "SettingsViews.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMenu>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::SizeIs;

class RulesPageTest : public testing::Test {
protected:
    SettingsView view;
    RulesPageTest() { view.open(SettingsTab::rules); }

    const GuardRule& rule(std::size_t place) const { return view.settings().rules()[place]; }
    /// The fields for limits, from above to below.
    std::vector<FieldEdit*> limits() const
    {
        std::vector<FieldEdit*> found;
        for (FieldEdit* const each : view.window.findChildren<FieldEdit*>()) {
            if (each->isVisible() && each->accessibleName() == QStringLiteral("Limit in megabytes")) {
                found.push_back(each);
            }
        }
        return found;
    }
};

TEST_F(RulesPageTest, controlsAndTexts)
{
    struct Case {
        const char* name;
        QAccessible::Role role;
    };
    constexpr Case cases[] = {
        {"Enable 1min rule", QAccessible::CheckBox},       {"Enable 1h rule", QAccessible::CheckBox},
        {"Limit in megabytes", QAccessible::EditableText}, {"Action for 1min rule", QAccessible::ComboBox},
        {"Action for 1h rule", QAccessible::ComboBox},     {"Add rule", QAccessible::ButtonMenu},
        {"When stepping in", QAccessible::ComboBox},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QWidget* const control = named(view.window, c.name);
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(role(control), c.role);
    }
    for (const char* text : {"Step in when any of these is exceeded", "1min", "1h", "MB", "≈ 4.5% of daily budget",
                             "≈ 35.0% of daily budget", "When stepping in"}) {
        EXPECT_NE(label(view.window, text), nullptr) << text;
    }
}

TEST_F(RulesPageTest, aRuleIsSwitched)
{
    auto& control = view.the<Pressable>("Enable 1min rule");
    EXPECT_TRUE(control.isChecked());
    control.setFocus();
    key(Qt::Key_Space);
    EXPECT_FALSE(rule(0).enabled);
    EXPECT_FALSE(control.isChecked());
    EXPECT_TRUE(control.hasFocus());
    key(Qt::Key_Return);
    EXPECT_TRUE(rule(0).enabled);
}

TEST_F(RulesPageTest, aLimitIsTyped)
{
    ASSERT_THAT(limits(), SizeIs(2));
    FieldEdit& field = *limits()[1];
    typeInto(field, "100");
    key(Qt::Key_Return);
    EXPECT_EQ(rule(1).thresholdBytes, 100 * mega);
    EXPECT_EQ(rule(0).thresholdBytes, view.settings().rules()[0].thresholdBytes);
    EXPECT_NE(label(view.window, "≈ 9.8% of daily budget"), nullptr);
    typeInto(field, "-5");
    key(Qt::Key_Return);
    EXPECT_EQ(rule(1).thresholdBytes, 0U);
    EXPECT_EQ(field.text(), QStringLiteral("0"));
    typeInto(field, "much");
    EXPECT_EQ(field.accessibleDescription(), QStringLiteral("Enter a number."));
}

TEST_F(RulesPageTest, whatARuleDoes)
{
    choose(view.the<ChoiceBox>("Action for 1h rule"), 3);
    EXPECT_EQ(rule(1).level, ActionLevel::enforce);
    choose(view.the<ChoiceBox>("When stepping in"), 1);
    EXPECT_EQ(
        view.settings().enforcementAction,
        std::get<SetEnforcementAction>(std::get<RulesTabModel>(view.model().page).steppingIn.options[1].action).action);
}

TEST_F(RulesPageTest, aRuleIsAddedFromTheMenu)
{
    auto& button = view.the<Pressable>("Add rule");
    button.setFocus();
    key(Qt::Key_Return);
    settleEvents();
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    std::vector<std::string> titles;
    for (const QAction* each : menu->actions()) titles.push_back(each->text().toStdString());
    EXPECT_THAT(titles, ElementsAre("1min", "5min", "15min", "1h"));
    menu->actions()[2]->trigger();
    menu->close();
    settleEvents();
    ASSERT_THAT(view.settings().rules(), SizeIs(3));
    EXPECT_EQ(rule(2).windowSeconds, Seconds{900.0});
    EXPECT_NE(named(view.window, "Enable 15min rule"), nullptr);
    EXPECT_THAT(limits(), SizeIs(3));
}

TEST_F(RulesPageTest, whatIsTypedStaysWithItsRule)
{
    FieldEdit* const field = limits()[1];
    typeInto(*field, "77");
    view.change([](GuardSettings& settings) { std::swap(settings.rules()[0], settings.rules()[1]); });
    view.refresh();
    settleEvents();
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(field->text(), QStringLiteral("77"));
    key(Qt::Key_Return);
    EXPECT_EQ(rule(0).id, SettingsWorld::longRule);
    EXPECT_EQ(rule(0).thresholdBytes, 77 * mega);
    EXPECT_LT(field->mapTo(&view.window, QPoint{}).y(),
              view.the<QWidget>("Enable 1min rule").mapTo(&view.window, QPoint{}).y());
}

TEST_F(RulesPageTest, aRuleThatGoesTakesItsRowAlong)
{
    limits()[0]->setFocus();
    view.change([](GuardSettings& settings) { settings.rules().erase(settings.rules().begin()); });
    view.refresh();
    settleEvents();
    EXPECT_EQ(named(view.window, "Enable 1min rule"), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), &view.the<QWidget>("Enable 1h rule"));
}

TEST_F(RulesPageTest, remarks)
{
    view.change([](GuardSettings& settings) {
        settings.enforcementAction = EnforcementAction::terminate;
        for (GuardRule& each : settings.rules()) each.level = ActionLevel::enforce;
    });
    view.refresh();
    auto model = view.model();
    auto& page = std::get<RulesTabModel>(model.page);
    page.blocked = FormRemark{"lock.fill", "Stepping in is <b>not</b> possible here."};
    page.risk = FormRemark{"exclamationmark.triangle.fill", "This quits applications."};
    view.window.setModel(model);
    settleEvents();
    EXPECT_NE(label(view.window, page.blocked->text), nullptr) << "as it is, not as markup";
    EXPECT_NE(label(view.window, page.risk->text), nullptr);
    page.blocked.reset();
    page.risk.reset();
    view.window.setModel(model);
    EXPECT_EQ(label(view.window, "This quits applications."), nullptr);
}

} // namespace
} // namespace quellon
