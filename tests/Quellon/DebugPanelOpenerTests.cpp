#include "Quellon/DebugPanelOpener.h"

#include "OffscreenApplication.h"
#include "QuellonCore/Diagnostics/DebugHooks.h"
#include "QuellonCore/Presentation/SettingsWorld.h"
#include "QuellonUI/Debug/DebugPanel.h"
#include "QuellonUI/Kit/PushButton.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QListWidget>
#include <QPlainTextEdit>

#include <stdexcept>

namespace quellon {
namespace {

/// The panel on a guard whose files the test writes.
class DebugPanelOpenerTest : public ::testing::Test {
    OffscreenApplication application_; // Outlives the panel.

protected:
    SettingsWorld world;
    NotificationFeed feed;
    int refreshed = 0;
    DebugPanelOpener opener{AboutModel::Build{}, feed, [this] { ++refreshed; }};

    void put(const char* name, const char* content) { world.host.files().set(world.stateFolder / name, content); }

    [[nodiscard]] static DebugPanel& panel()
    {
        for (QWidget* const each : QApplication::topLevelWidgets()) {
            if (auto* const found = qobject_cast<DebugPanel*>(each)) return *found;
        }
        throw std::runtime_error{"no panel"};
    }
    [[nodiscard]] static QListWidget& pages() { return *panel().findChild<QListWidget*>(); }
    [[nodiscard]] static QString title() { return pages().currentItem()->text(); }
    /// What the page shows once everything has been read.
    [[nodiscard]] QString text()
    {
        world.host.advance(Seconds{0.0});
        return panel().findChild<QPlainTextEdit*>()->toPlainText();
    }
    static void refresh()
    {
        for (auto* const each : panel().findChildren<PushButton*>()) {
            if (each->text() == QLatin1String{"Refresh"}) each->click();
        }
    }
};

TEST_F(DebugPanelOpenerTest, aLargeFileIsNotRead)
{
    const std::string large(DebugPanelModel::largestFile + 1, ' ');
    put("suspended.json", large.c_str());
    DebugHooks::open(world.engine);
    put("suspended.json", "[1]"); // what reading it would find
    pages().setCurrentRow(pages().count() - 1);
    EXPECT_EQ(title(), QStringLiteral("suspended.json"));
    EXPECT_EQ(text().toStdString(), DebugPanelModel::tooLargeText());
    refresh();
    EXPECT_EQ(text(), QStringLiteral("1 item\n  [0]: 1"));
}

TEST_F(DebugPanelOpenerTest, aFileThatIsGoneMakesRoomForAnother)
{
    put("budget-1.json", "[]");
    put("suspended.json", "[1]");
    DebugHooks::open(world.engine);
    pages().setCurrentRow(pages().count() - 1);
    ASSERT_EQ(title(), QStringLiteral("suspended.json"));
    EXPECT_EQ(text(), QStringLiteral("1 item\n  [0]: 1"));
    world.host.files().remove(world.stateFolder / "suspended.json");
    refresh();
    EXPECT_EQ(refreshed, 1);
    const QString next = title();
    EXPECT_EQ(next, pages().item(pages().count() - 1)->text());
    EXPECT_NE(text().toStdString(), DebugPanelModel::readingText) << next.toStdString();
}

} // namespace
} // namespace quellon
