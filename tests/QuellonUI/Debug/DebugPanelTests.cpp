#include "QuellonUI/Debug/DebugPanel.h"

#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QListWidget>
#include <QPlainTextEdit>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DebugPanelTest : public testing::Test {
protected:
    DebugPanel panel;
    std::vector<DebugAction> actions;
    DebugPanelModel model;

    DebugPanelTest()
    {
        QObject::connect(&panel, &DebugPanel::acted, &panel,
                         [this](const DebugAction& action) { actions.push_back(action); });
        model.pages = {{"Snapshot"}, {"Network log"}, {"ledger.json"}};
        model.text = "first line\nsecond line";
        model.note = "a note";
        model.copy = {"Copy", "Copy", DebugActions::ShowCopied{true}};
        model.refresh = {"Refresh", "Refresh", DebugActions::Refresh{}};
        model.commands = {{"One", "One", DebugActions::Run{DebugCommand::warn}},
                          {"Two", "Two", DebugActions::Run{DebugCommand::failNextSample}}};
        panel.setModel(model);
        panel.show();
    }

    template <typename T>
    T& only()
    {
        const auto found = panel.findChildren<T*>();
        EXPECT_EQ(found.size(), 1);
        return *found.first();
    }
    PushButton* button(const char* title)
    {
        for (auto* const each : panel.findChildren<PushButton*>()) {
            if (each->isVisibleTo(&panel) && each->text() == toQString(title)) return each;
        }
        return nullptr;
    }
    void press(int key)
    {
        QKeyEvent event{QEvent::KeyPress, key, Qt::NoModifier};
        QApplication::sendEvent(&panel, &event);
    }
};

TEST_F(DebugPanelTest, drawsItsModel)
{
    auto& list = only<QListWidget>();
    ASSERT_EQ(list.count(), 3);
    EXPECT_EQ(list.item(2)->text(), QStringLiteral("ledger.json"));
    EXPECT_EQ(list.currentRow(), 0);
    auto& text = only<QPlainTextEdit>();
    EXPECT_EQ(text.toPlainText(), QStringLiteral("first line\nsecond line"));
    EXPECT_EQ(text.accessibleName(), QStringLiteral("Snapshot"));
    EXPECT_TRUE(text.isReadOnly());
    EXPECT_NE(button("One"), nullptr);
    EXPECT_THAT(actions, IsEmpty()) << "drawing is nobody's doing";

    model.pages.pop_back();
    model.page = 1;
    model.text = "other";
    model.commands.clear();
    panel.setModel(model);
    EXPECT_EQ(list.count(), 2);
    EXPECT_EQ(list.currentRow(), 1);
    EXPECT_EQ(text.toPlainText(), QStringLiteral("other"));
    EXPECT_EQ(button("One"), nullptr);
    EXPECT_THAT(actions, IsEmpty());
}

TEST_F(DebugPanelTest, reportsWhatIsDone)
{
    only<QListWidget>().setCurrentRow(2);
    button("Refresh")->click();
    button("Two")->click();
    EXPECT_THAT(actions, ElementsAre(DebugAction{DebugActions::SelectPage{2}}, DebugAction{DebugActions::Refresh{}},
                                     DebugAction{DebugActions::Run{DebugCommand::failNextSample}}));
}

TEST_F(DebugPanelTest, copiesTheText)
{
    button("Copy")->click();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("first line\nsecond line"));
    EXPECT_THAT(actions, ElementsAre(DebugAction{DebugActions::ShowCopied{true}}));
}

TEST_F(DebugPanelTest, anEqualTextKeepsWhatIsSelected)
{
    auto& text = only<QPlainTextEdit>();
    text.selectAll();
    model.copy.title = "Copied ✓";
    panel.setModel(model);
    EXPECT_TRUE(text.textCursor().hasSelection());
}

TEST_F(DebugPanelTest, escapeCloses)
{
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel.isVisible());
}

} // namespace
} // namespace quellon
