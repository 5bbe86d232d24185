#include "SettingsViews.h"

#include "QuellonUI/Kit/TextLabel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QScrollArea>
#include <QScrollBar>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::SizeIs;

class AppsPageTest : public testing::Test {
protected:
    SettingsView view;
    AppsPageTest()
    {
        view.move({{"firefox", 0}, {"cloud-sync", 0}, {"云盘", 0}});
        view.move({{"firefox", 5 * mega}, {"cloud-sync", 90 * mega}, {"云盘", 1 * mega}});
        view.open(SettingsTab::apps);
    }
    [[nodiscard]] AppPolicy policy(const char* app) const { return view.settings().appPolicies.policy(app); }
    std::string focus() const { return QApplication::focusWidget()->accessibleName().toStdString(); }
};

TEST_F(AppsPageTest, empty)
{
    for (const auto text : {AppsTabModel::intro, AppsTabModel::Empty{}.title, AppsTabModel::Empty{}.text}) {
        EXPECT_NE(label(view.window, std::string{text}), nullptr) << text;
    }
    for (const char* name : {"Add an app to the policy list", "Block common development tools on hotspot"}) {
        ASSERT_NE(named(view.window, name), nullptr) << name;
        EXPECT_EQ(role(named(view.window, name)), QAccessible::Button);
    }
    view.click("Block common development tools on hotspot");
    EXPECT_EQ(label(view.window, std::string{AppsTabModel::Empty{}.title}), nullptr);
    EXPECT_NE(named(view.window, "Remove npm"), nullptr);
}

TEST_F(AppsPageTest, row)
{
    view.does(SetPolicy{"firefox", AppPolicy::always});
    view.refresh();
    settleEvents();
    EXPECT_EQ(role(named(view.window, "Details for firefox")), QAccessible::Button);
    EXPECT_EQ(role(named(view.window, "Policy for firefox")), QAccessible::ComboBox);
    EXPECT_EQ(role(named(view.window, "Remove firefox")), QAccessible::Button);
    auto& box = view.the<ChoiceBox>("Policy for firefox");
    EXPECT_EQ(box.currentText(), QStringLiteral("Block"));
    choose(box, 0);
    EXPECT_EQ(policy("firefox"), AppPolicy::never);
    view.click("Remove firefox");
    EXPECT_EQ(policy("firefox"), AppPolicy::global);
    EXPECT_EQ(named(view.window, "Remove firefox"), nullptr);
}

TEST_F(AppsPageTest, theFocusStaysWithItsApplication)
{
    view.does(SetPolicy{"a-tool", AppPolicy::always});
    view.does(SetPolicy{"b-tool", AppPolicy::always});
    view.refresh();
    settleEvents();
    auto& box = view.the<ChoiceBox>("Policy for a-tool");
    box.setFocus();
    choose(box, 0); // it goes below the other
    settleEvents();
    EXPECT_TRUE(box.hasFocus());
    EXPECT_EQ(box.accessibleName(), QStringLiteral("Policy for a-tool"));
    EXPECT_GT(box.mapTo(&view.window, QPoint{}).y(),
              view.the<QWidget>("Policy for b-tool").mapTo(&view.window, QPoint{}).y());
    key(Qt::Key_Tab);
    EXPECT_EQ(focus(), "Remove a-tool");
    key(Qt::Key_Tab);
    EXPECT_EQ(focus(), "Add an app to the policy list") << "Tab follows the rows";
}

TEST_F(AppsPageTest, theFocusGoesOnWhenARowIsRemoved)
{
    for (const char* app : {"a-tool", "b-tool", "c-tool"}) view.does(SetPolicy{app, AppPolicy::always});
    view.refresh();
    settleEvents();
    view.the<Pressable>("Remove b-tool").setFocus();
    key(Qt::Key_Return);
    settleEvents();
    EXPECT_EQ(focus(), "Remove c-tool");
    key(Qt::Key_Return);
    settleEvents();
    EXPECT_EQ(focus(), "Remove a-tool");
    key(Qt::Key_Return);
    settleEvents();
    EXPECT_EQ(focus(), "Add an app to the policy list");
}

TEST_F(AppsPageTest, aLongNameIsElidedInTheMiddle)
{
    const std::string name = "begin-" + std::string(200, 'x') + "-end";
    view.does(SetPolicy{name, AppPolicy::always});
    view.refresh();
    settleEvents();
    auto* const shown = qobject_cast<TextLabel*>(label(view.window, name));
    ASSERT_NE(shown, nullptr);
    EXPECT_TRUE(shown->shownText().startsWith(QStringLiteral("begin-")));
    EXPECT_TRUE(shown->shownText().endsWith(QStringLiteral("-end")));
    EXPECT_LT(shown->shownText().size(), 200);
}

class AppPickerTest : public AppsPageTest {
protected:
    AppPickerTest()
    {
        view.the<Pressable>("Add an app to the policy list").setFocus();
        key(Qt::Key_Return);
        settleEvents();
    }
    std::vector<std::string> candidates() const
    {
        std::vector<std::string> found;
        const auto page = std::get<AppsTabModel>(view.model().page);
        for (const auto& row : page.picker->rows) {
            if (named(view.window, ("Details for " + row.app).c_str()) != nullptr) found.push_back(row.app);
        }
        return found;
    }
};

TEST_F(AppPickerTest, controlsAndTexts)
{
    for (const auto text : {AppPickerModel::title, AppPickerModel::text, std::string_view{"90.0 MB"}}) {
        EXPECT_NE(label(view.window, std::string{text}), nullptr) << text;
    }
    EXPECT_EQ(focus(), "Filter");
    EXPECT_EQ(role(QApplication::focusWidget()), QAccessible::EditableText);
    for (const char* name :
         {"Details for firefox", "Always block firefox on hotspot", "Never limit firefox", "Cancel"}) {
        ASSERT_NE(named(view.window, name), nullptr) << name;
        EXPECT_EQ(role(named(view.window, name)), QAccessible::Button);
    }
    EXPECT_THAT(candidates(), ElementsAre("cloud-sync", "firefox", "云盘"));
}

TEST_F(AppPickerTest, filterAndBlock)
{
    typeInto(view.the<QLineEdit>("Filter"), "FIRE");
    settleEvents();
    EXPECT_THAT(candidates(), ElementsAre("firefox"));
    EXPECT_EQ(named(view.window, "Details for cloud-sync"), nullptr);
    key(Qt::Key_Tab);
    EXPECT_EQ(focus(), "Details for firefox");
    key(Qt::Key_Tab);
    key(Qt::Key_Return);
    settleEvents();
    EXPECT_EQ(policy("firefox"), AppPolicy::always);
    EXPECT_EQ(named(view.window, "Filter"), nullptr);
    EXPECT_EQ(focus(), "Add an app to the policy list");
}

TEST_F(AppPickerTest, neverLimit)
{
    view.click("Never limit 云盘");
    EXPECT_EQ(policy("云盘"), AppPolicy::never);
    EXPECT_FALSE(view.state.showingPicker);
}

TEST_F(AppPickerTest, cancelAndEscape)
{
    view.click("Cancel");
    EXPECT_EQ(named(view.window, "Filter"), nullptr);
    view.click("Add an app to the policy list");
    EXPECT_EQ(view.the<QLineEdit>("Filter").text(), QString{});
    key(Qt::Key_Escape);
    settleEvents();
    EXPECT_EQ(named(view.window, "Filter"), nullptr);
    EXPECT_THAT(view.all<ClosePicker>(), SizeIs(2));
}

TEST_F(AppPickerTest, theKeyboardStaysInside)
{
    std::vector<std::string> names;
    for (int i = 0; i < 11; ++i) {
        key(Qt::Key_Tab);
        names.push_back(focus());
    }
    EXPECT_THAT(names, ElementsAre("Details for cloud-sync", "Always block cloud-sync on hotspot",
                                   "Never limit cloud-sync", "Details for firefox", "Always block firefox on hotspot",
                                   "Never limit firefox", "Details for 云盘", "Always block 云盘 on hotspot",
                                   "Never limit 云盘", "Cancel", "Filter"));
}

TEST_F(AppPickerTest, detailsOnTopAndBack)
{
    view.the<Pressable>("Details for firefox").setFocus();
    key(Qt::Key_Space);
    settleEvents();
    EXPECT_EQ(view.engine.detailApp(), "firefox");
    EXPECT_EQ(focus(), "Close");
    key(Qt::Key_Escape);
    settleEvents();
    EXPECT_EQ(view.engine.detailApp(), std::nullopt);
    EXPECT_EQ(focus(), "Details for firefox");
    EXPECT_TRUE(view.state.showingPicker) << "only the sheet on top was closed";
}

TEST_F(AppPickerTest, aPressOnAButtonThatMovedAwayDoesNotCount)
{
    auto& button = view.the<Pressable>("Always block firefox on hotspot");
    QMouseEvent down{QEvent::MouseButtonPress, QPointF{4, 4},  button.mapToGlobal(QPointF{4, 4}),
                     Qt::LeftButton,           Qt::LeftButton, {}};
    const QPoint spot = button.mapToGlobal(QPoint{4, 4});
    QApplication::sendEvent(&button, &down);
    view.move({{"firefox", 500 * mega}, {"cloud-sync", 90 * mega}, {"云盘", 1 * mega}}); // now the first
    view.refresh();
    settleEvents();
    const QPointF now = button.mapFromGlobal(spot);
    EXPECT_FALSE(button.rect().contains(now.toPoint()));
    QMouseEvent up{QEvent::MouseButtonRelease, now, QPointF{spot}, Qt::LeftButton, Qt::NoButton, {}};
    QApplication::sendEvent(&button, &up);
    EXPECT_EQ(policy("firefox"), AppPolicy::global);
    EXPECT_EQ(policy("cloud-sync"), AppPolicy::global);
}

TEST_F(AppPickerTest, beginsAtTheTopEachTime)
{
    view.click("Cancel");
    for (int i = 0; i < 30; ++i) {
        const std::string app = "app-" + std::to_string(i);
        view.move({{app, 0}});
        view.move({{app, mega}});
    }
    view.click("Add an app to the policy list");
    auto* const row = &view.the<QWidget>("Details for cloud-sync");
    QScrollArea* list = nullptr;
    for (QWidget* each = row; each != nullptr && list == nullptr; each = each->parentWidget()) {
        list = qobject_cast<QScrollArea*>(each);
    }
    ASSERT_NE(list, nullptr);
    QScrollBar& bar = *list->verticalScrollBar();
    bar.setValue(bar.maximum());
    ASSERT_GT(bar.value(), 0);
    view.refresh();
    EXPECT_GT(bar.value(), 0) << "a new model leaves it where it is";
    view.click("Cancel");
    view.click("Add an app to the policy list");
    EXPECT_EQ(bar.value(), 0);
}

} // namespace
} // namespace quellon
