#include "PanelTest.h"

namespace quellon {
namespace {

using namespace PanelModels;
using PanelAccessibilityTest = PanelTest;

TEST_F(PanelAccessibilityTest, accessibilityTree)
{
    open(everything());
    struct Case {
        const char* name;
        QAccessible::Role role;
    };
    constexpr Case cases[] = {
        {"Guard", QAccessible::CheckBox},
        {"How to fix", QAccessible::Button},
        {"Dismiss update notice", QAccessible::Button},
        {"Switch plan profile", QAccessible::ButtonMenu},
        {"Collapse firefox", QAccessible::Button},
        {"Open details for firefox", QAccessible::Button},
        {"Explain syncthing", QAccessible::Button},
        {"Resume all", QAccessible::Button},
        {"Resume", QAccessible::Button},
        {"Open settings", QAccessible::Button},
        {"Quit Quellon", QAccessible::Button},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QAbstractButton* const found = button(c.name);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(roleOf(*found), c.role);
        EXPECT_EQ(found->focusPolicy() & Qt::TabFocus, Qt::TabFocus);
    }
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(button("Guard"))->state().checked);
    EXPECT_EQ(roleOf(*bar("firefox")), QAccessible::ProgressBar);
    auto* const values = QAccessible::queryAccessibleInterface(bar("This month"))->valueInterface();
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(values->currentValue().toInt() * 1000, values->maximumValue().toInt() * 930);
    EXPECT_EQ(nameOf(*runs("at least — 2 gap(s) couldn't be measured")), "at least — 2 gap(s) couldn't be measured");
}

TEST_F(PanelAccessibilityTest, assistiveTechnologyPresses)
{
    open(everything());
    for (const char* const name : {"Guard", "Collapse firefox", "Resume all"}) {
        SCOPED_TRACE(name);
        acted.clear();
        auto* const actions = QAccessible::queryAccessibleInterface(button(name))->actionInterface();
        ASSERT_NE(actions, nullptr);
        actions->doAction(actions->actionNames().front());
        // The toolkit shows the button pressed for a moment.
        for (int i = 0; i < 1000 && acted.empty(); ++i) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_EQ(acted.size(), 1U);
        EXPECT_TRUE(button("Guard")->isChecked());
    }
}

TEST_F(PanelAccessibilityTest, theTreeBelowTheWindow)
{
    open(everything());
    auto* const window = QAccessible::queryAccessibleInterface(&panel);
    EXPECT_EQ(window->text(QAccessible::Name), QStringLiteral("Quellon"));
    EXPECT_EQ(window->role(), QAccessible::Window);
    // Everything that can be pressed hangs below the window, and under the name of its section.
    for (QWidget* const stop : content().stops()) {
        if (!stop->isVisible()) continue;
        std::vector<std::string> names;
        for (auto* each = QAccessible::queryAccessibleInterface(stop)->parent(); each != nullptr;
             each = each->parent()) {
            names.push_back(each->text(QAccessible::Name).toStdString());
            if (each == window) break;
        }
        EXPECT_EQ(names.back(), "Quellon") << nameOf(*stop);
        int sections = 0;
        for (const auto& row : MenuPanelModel::sectionTable.rows) {
            sections += static_cast<int>(std::count(names.begin(), names.end(), row.label));
        }
        EXPECT_EQ(sections, 1) << nameOf(*stop);
    }
}

} // namespace
} // namespace quellon
