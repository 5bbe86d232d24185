#include "SettingsViews.h"

#include "QuellonUI/Kit/Appearance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QScreen>
#include <QShortcut>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SettingsWindowTest : public testing::Test {
protected:
    SettingsView view;
    std::string focus() const
    {
        return QApplication::focusWidget() != nullptr ? QApplication::focusWidget()->accessibleName().toStdString()
                                                      : "";
    }
};

TEST_F(SettingsWindowTest, frame)
{
    view.open(SettingsTab::plan);
    EXPECT_EQ(view.window.windowTitle(), QStringLiteral("Quellon Settings"));
    EXPECT_EQ(view.window.minimumSize(), view.window.maximumSize()) << "it can't be resized";
    EXPECT_FALSE(view.window.windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    EXPECT_TRUE(view.window.windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_TRUE(view.window.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_LE(view.window.height(), view.window.screen()->availableGeometry().height());
    EXPECT_EQ(focus(), "Plan");
}

TEST_F(SettingsWindowTest, tabs)
{
    view.open(SettingsTab::plan);
    for (const auto& row : settingsTabs.rows) {
        SCOPED_TRACE(row.raw);
        auto& tab = view.the<Pressable>(std::string{row.label}.c_str());
        tab.click();
        settleEvents();
        EXPECT_EQ(view.state.tab, row.value);
        EXPECT_TRUE(tab.isChecked());
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&tab);
        EXPECT_EQ(accessible->role(), QAccessible::PageTab);
        EXPECT_TRUE(accessible->state().selected);
        EXPECT_EQ(accessible->parent()->role(), QAccessible::PageTabList);
        EXPECT_TRUE(accessible->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    }
    QAccessible::queryAccessibleInterface(named(view.window, "Rules"))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(view.state.tab, SettingsTab::rules);
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(named(view.window, "About"))->state().selected);
}

TEST_F(SettingsWindowTest, arrowsGoFromTabToTab)
{
    view.open(SettingsTab::plan);
    std::vector<std::string> seen;
    for (const int code :
         {Qt::Key_Left, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Left}) {
        key(code);
        settleEvents();
        EXPECT_EQ(focus(), settingsTabs.label(view.state.tab));
        seen.emplace_back(settingsTabs.raw(view.state.tab));
    }
    EXPECT_THAT(seen, ElementsAre("plan", "rules", "apps", "log", "about", "about", "log"));
}

TEST_F(SettingsWindowTest, theFocusFollowsAPageThatSomebodyElseOpens)
{
    view.open(SettingsTab::plan);
    view.open(SettingsTab::log);
    EXPECT_EQ(focus(), "Log");
}

TEST_F(SettingsWindowTest, theFocusStaysOnATabWhenThePageChangesItsTexts)
{
    view.use(3'000 * mega);
    view.open(SettingsTab::plan);
    key(Qt::Key_Tab);
    ASSERT_EQ(focus(), "Rules");
    const SettingsModel before = view.model();
    view.use(50 * mega);
    ASSERT_NE(view.model(), before);
    view.refresh();
    EXPECT_EQ(focus(), "Rules");
}

/// Where Tab leads on each page, once round.
TEST_F(SettingsWindowTest, keyboardAlone)
{
    view.use(3'000 * mega);
    view.does(AddProfile{});
    view.use(1);
    view.does(SetPolicy{"a-tool", AppPolicy::always});
    struct Case {
        SettingsTab tab;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {SettingsTab::plan,
         {"Active plan profile", "Rename this profile", "Add a plan profile", "Delete the active profile",
          "Monthly plan in gigabytes", "Billing cycle start day", "Mainly used for", "Re-derive limits from plan",
          "Usage your carrier shows, in gigabytes", "Match"}},
        {SettingsTab::rules,
         {"Enable 1min rule", "Limit in megabytes", "Action for 1min rule", "Enable 1h rule", "Limit in megabytes",
          "Action for 1h rule", "Add rule", "When stepping in"}},
        {SettingsTab::apps,
         {"Details for a-tool", "Policy for a-tool", "Remove a-tool", "Add an app to the policy list",
          "Block common development tools on hotspot"}},
        {SettingsTab::log, {"Log"}},
        {SettingsTab::about, {"Website", "Send feedback", "Copy diagnostics"}},
    };
    const std::vector<std::string> tabs{"Plan", "Rules", "Apps", "Log", "About"};
    for (const auto& c : cases) {
        SCOPED_TRACE(settingsTabs.raw(c.tab));
        view.open(c.tab);
        view.the<Pressable>("Plan").setFocus();
        std::vector<std::string> walked;
        for (std::size_t i = 0; i < tabs.size() + c.names.size(); ++i) {
            walked.push_back(focus());
            key(Qt::Key_Tab);
        }
        EXPECT_EQ(focus(), "Plan") << "round";
        std::vector<std::string> wanted = tabs;
        wanted.insert(wanted.end(), c.names.begin(), c.names.end());
        EXPECT_EQ(walked, wanted);
        key(Qt::Key_Backtab);
        EXPECT_EQ(focus(), wanted.back());
    }
}

TEST_F(SettingsWindowTest, spaceAndEnterPressEveryButton)
{
    view.use(3'000 * mega);
    view.does(AddProfile{});
    view.does(SetPolicy{"a-tool", AppPolicy::always});
    SettingsWindow window;
    int acted = 0;
    QObject::connect(&window, &SettingsWindow::acted, &window, [&] { ++acted; });
    QObject::connect(&window, &SettingsWindow::openURL, &window, [&] { ++acted; });
    for (const auto& row : settingsTabs.rows) {
        view.state.tab = row.value;
        window.setModel(view.model());
        window.show();
        window.activateWindow();
        settleEvents();
        for (Pressable* const each : window.findChildren<Pressable*>()) {
            if (!each->isVisible() || each->accessibleName() == QStringLiteral("Add rule")) continue;
            for (const int code : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
                SCOPED_TRACE(each->accessibleName().toStdString());
                each->setFocus();
                const int before = acted;
                key(code);
                EXPECT_EQ(acted, before + 1);
            }
        }
    }
    EXPECT_GT(acted, 60);
}

TEST_F(SettingsWindowTest, everyControlHasAName)
{
    view.use(3'000 * mega);
    view.does(SetPolicy{"a-tool", AppPolicy::always});
    for (const auto& row : settingsTabs.rows) {
        view.open(row.value);
        for (QWidget* const each : view.window.findChildren<QWidget*>()) {
            if (!each->isVisible() || (each->focusPolicy() & Qt::TabFocus) != Qt::TabFocus) continue;
            EXPECT_FALSE(each->accessibleName().isEmpty()) << row.raw << " " << each->metaObject()->className();
        }
    }
}

TEST_F(SettingsWindowTest, anEqualModelPaintsNothing)
{
    view.use(3'000 * mega);
    view.does(SetPolicy{"a-tool", AppPolicy::always});
    for (const auto& row : settingsTabs.rows) {
        SCOPED_TRACE(row.raw);
        view.open(row.value);
        PaintCounter painted{view.window};
        painted.restart();
        view.refresh();
        settleEvents();
        EXPECT_EQ(painted.count, 0);
        view.does(SelectTab{row.value}); // does nothing, and the model is handed in again
        Q_EMIT view.window.acted(SelectTab{row.value});
        settleEvents();
        EXPECT_EQ(painted.count, 0);
        view.window.update();
        settleEvents();
        EXPECT_GT(painted.count, 0) << "the counter counts";
    }
}

TEST_F(SettingsWindowTest, oneChangedTextLeavesTheRestAlone)
{
    view.use(3'000 * mega);
    view.open(SettingsTab::plan);
    PaintCounter painted{view.the<QWidget>("Monthly plan in gigabytes")};
    painted.restart();
    auto model = view.model();
    std::get<PlanTabModel>(model.page).cycle->used.value = "9.99 GB (33%)";
    view.window.setModel(model);
    settleEvents();
    EXPECT_NE(label(view.window, "9.99 GB (33%)"), nullptr);
    EXPECT_EQ(painted.count, 0);
}

TEST_F(SettingsWindowTest, whatIsTypedCountsWhenThePageOrTheWindowIsLeft)
{
    view.open(SettingsTab::plan);
    typeInto(view.the<FieldEdit>("Monthly plan in gigabytes"), "70");
    view.click("Rules");
    EXPECT_EQ(view.settings().planGB(), 70.0);
    view.click("Plan");
    typeInto(view.the<FieldEdit>("Monthly plan in gigabytes"), "80");
    view.window.close();
    EXPECT_EQ(view.settings().planGB(), 80.0);
}

TEST_F(SettingsWindowTest, closesByKey)
{
    view.open(SettingsTab::plan);
    int closed = 0;
    QObject::connect(&view.window, &SettingsWindow::closed, &view.window, [&] { ++closed; });
    auto* const shortcut = view.window.findChild<QShortcut*>();
    ASSERT_NE(shortcut, nullptr);
    EXPECT_EQ(shortcut->key(), QKeySequence{QKeySequence::Close});
    Q_EMIT shortcut->activated();
    EXPECT_FALSE(view.window.isVisible());
    EXPECT_EQ(closed, 1);
}

TEST_F(SettingsWindowTest, tellsThatItWasMoved)
{
    int moved = 0;
    QObject::connect(&view.window, &SettingsWindow::moved, &view.window, [&] { ++moved; });
    view.window.move(20, 20);
    EXPECT_EQ(moved, 0) << "nobody has seen it yet";
    view.open(SettingsTab::plan);
    moved = 0;
    view.window.move(40, 40);
    settleEvents();
    EXPECT_GE(moved, 1);
    EXPECT_EQ(view.window.pos(), QPoint(40, 40));
}

/// The labels and controls that do not lie within the window.
std::vector<std::string> cutOff(const QWidget& window)
{
    std::vector<std::string> found;
    for (const QWidget* each : window.findChildren<QWidget*>()) {
        if (!each->isVisible() || each->window() != &window) continue;
        const int left = each->mapTo(&window, QPoint{}).x();
        if (left < 0 || left + each->width() > window.width()) found.emplace_back(each->metaObject()->className());
    }
    return found;
}

TEST_F(SettingsWindowTest, largerFonts)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(QFontInfo{usual}.pointSizeF() * 1.6);
    QApplication::setFont(large);
    {
        SettingsView each;
        each.use(3'000 * mega);
        each.does(SetPolicy{"a-tool", AppPolicy::always});
        for (const auto& row : settingsTabs.rows) {
            SCOPED_TRACE(row.raw);
            each.open(row.value);
            EXPECT_THAT(cutOff(each.window), IsEmpty());
        }
    }
    QApplication::setFont(usual);
}

TEST_F(SettingsWindowTest, followsTheAppearance)
{
    view.open(SettingsTab::plan);
    const auto corner = [&] { return view.window.grab().toImage().pixelColor(2, 2); };
    for (const bool dark : {true, false}) {
        Appearance::apply(dark);
        settleEvents();
        EXPECT_EQ(corner(), (dark ? Theme::dark() : Theme::light()).background);
    }
}

TEST_F(SettingsWindowTest, aThousandTimesOpenedAndClosed)
{
    view.use(3'000 * mega);
    view.move({{"firefox", 5 * mega}});
    view.does(SetPolicy{"a-tool", AppPolicy::always});
    const auto cycle = [&](int i) {
        const auto tab = settingsTabs.rows[static_cast<std::size_t>(i) % settingsTabs.rows.size()].value;
        view.does(SelectTab{tab});
        if (tab == SettingsTab::apps) view.does(OpenPicker{});
        view.does(OpenDetails{i % 2 == 0 ? "firefox" : "helperd"});
        view.refresh();
        view.window.show();
        view.does(SetPolicy{"b-tool", i % 2 == 0 ? AppPolicy::never : AppPolicy::global});
        view.refresh();
        view.window.close();
        view.does(RemovePolicy{"b-tool"});
        view.refresh();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    const auto objects = [&] {
        return view.window.findChildren<QObject*>().size() + QApplication::allWidgets().size();
    };
    for (int i = 0; i < 20; ++i) cycle(i);
    const auto before = objects();
    for (int i = 0; i < 1'000; ++i) cycle(i);
    EXPECT_EQ(objects(), before);
}

TEST_F(SettingsWindowTest, aWindowThatIsDestroyedReportsNothing)
{
    int acted = 0;
    {
        SettingsWindow window;
        QObject::connect(&window, &SettingsWindow::acted, qApp, [&] { ++acted; });
        window.setModel(view.model());
        window.show();
        window.activateWindow();
        settleEvents();
        typeInto(*named<FieldEdit>(window, "Monthly plan in gigabytes"), "9");
        EXPECT_EQ(acted, 1);
    }
    EXPECT_EQ(acted, 1);
}

TEST_F(SettingsWindowTest, nothingStaysOfAWindowThatIsGone)
{
    const auto before = QApplication::allWidgets().size();
    for (int i = 0; i < 20; ++i) {
        SettingsView each;
        for (const auto& row : settingsTabs.rows) {
            each.state.tab = row.value;
            each.refresh();
        }
        each.does(OpenDetails{"firefox"});
        each.refresh();
        each.window.show();
    }
    settleEvents();
    EXPECT_EQ(QApplication::allWidgets().size(), before);
}

} // namespace
} // namespace quellon
