#include "Quellon/SettingsWindowOpener.h"

#include "OffscreenApplication.h"
#include "QuellonCore/Diagnostics/DebugHooks.h"
#include "QuellonCore/Presentation/SettingsWorld.h"
#include "QuellonCore/Settings/LaunchAgent.h"
#include "QuellonUI/Kit/Switch.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QScreen>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace quellon {
namespace {

/// The settings of a guard whose time the test moves.
class SettingsWindowOpenerTest : public ::testing::Test {
    OffscreenApplication application_; // Outlives the window.

protected:
    SettingsWorld world;
    int dismissed = 0;
    int closed = 0;
    std::unique_ptr<SettingsWindowOpener> opener;

    SettingsWindowOpenerTest() { begin(); }

    /// As at the start of the program.
    void begin()
    {
        opener.reset();
        opener = std::make_unique<SettingsWindowOpener>(world.engine, AboutModel::Build{}, [this] { ++dismissed; });
        opener->onClosed = [this] { ++closed; };
    }
    /// The one that can be seen.
    [[nodiscard]] static SettingsWindow& window()
    {
        for (QWidget* const each : QApplication::topLevelWidgets()) {
            auto* const found = qobject_cast<SettingsWindow*>(each);
            if (found != nullptr && found->isVisible()) return *found;
        }
        throw std::runtime_error{"no window"};
    }
    template <typename Widget>
    [[nodiscard]] static Widget& child()
    {
        auto* const found = window().findChild<Widget*>();
        if (found == nullptr) throw std::runtime_error{"no such child"};
        return *found;
    }
    [[nodiscard]] static QLineEdit& field(const char* name)
    {
        for (QLineEdit* const each : window().findChildren<QLineEdit*>()) {
            if (each->accessibleName() == QLatin1String{name}) return *each;
        }
        throw std::runtime_error{"no field"};
    }
};

TEST_F(SettingsWindowOpenerTest, oneWindowForAllOfTheRun)
{
    EXPECT_FALSE(opener->isOpen());
    opener->open();
    EXPECT_EQ(dismissed, 1);
    EXPECT_TRUE(opener->isOpen());
    EXPECT_TRUE(opener->isVisible());
    SettingsWindow* const first = &window();
    first->close();
    EXPECT_TRUE(opener->isOpen());
    EXPECT_FALSE(opener->isVisible());
    EXPECT_EQ(closed, 1);
    opener->open(SettingsTab::log);
    EXPECT_EQ(&window(), first);
    EXPECT_EQ(dismissed, 2);
}

TEST_F(SettingsWindowOpenerTest, aRefusedNumberGoesWithTheWindow)
{
    opener->open();
    field("Monthly plan in gigabytes").setText(QStringLiteral("many"));
    field("Billing cycle start day").setText(QStringLiteral("15"));
    EXPECT_FALSE(field("Monthly plan in gigabytes").accessibleDescription().isEmpty());
    window().close();
    opener->open();
    EXPECT_EQ(field("Monthly plan in gigabytes").text(), QStringLiteral("30"));
    EXPECT_TRUE(field("Monthly plan in gigabytes").accessibleDescription().isEmpty());
    EXPECT_EQ(world.settings().billingCycleStartDay(), 15);
}

TEST_F(SettingsWindowOpenerTest, itsPlaceIsKeptOnceItRests)
{
    const auto saved = [this] { return world.host.files().get(world.settingsFile.parent_path() / "windows.json"); };
    opener->open();
    window().move(30, 40);
    EXPECT_EQ(saved(), std::nullopt);
    world.host.advance(Seconds{2.0});
    EXPECT_NE(saved(), std::nullopt);
    begin();
    opener->open();
    EXPECT_EQ(window().pos(), QPoint(30, 40));
    window().move(50, 60);
    begin(); // before it rested
    opener->open();
    EXPECT_EQ(window().pos(), QPoint(50, 60));
}

TEST_F(SettingsWindowOpenerTest, aPlaceOnAScreenThatIsGoneIsNotTaken)
{
    opener->open();
    window().move(5'000, 40);
    begin();
    opener->open();
    const QRect area = window().screen()->availableGeometry();
    EXPECT_TRUE(area.contains(window().pos()));
    EXPECT_LE(std::abs(window().geometry().center().x() - area.center().x()), 2);
}

TEST_F(SettingsWindowOpenerTest, theStartAtLoginIsSwitched)
{
    const std::filesystem::path agent =
        world.host.files().homeDirectory() / "Library/LaunchAgents" / LaunchAgent::fileName;
    opener->open(SettingsTab::about);
    Switch& start = child<Switch>();
    EXPECT_FALSE(start.isChecked());
    start.click();
    EXPECT_TRUE(start.isChecked());
    EXPECT_NE(world.host.files().get(agent), std::nullopt);
    start.click();
    EXPECT_FALSE(start.isChecked());
    EXPECT_EQ(world.host.files().get(agent), std::nullopt);
}

TEST_F(SettingsWindowOpenerTest, isolatedStateLeavesTheSessionAlone)
{
    world.host.environment("QUELLON_STATE_DIR", "/isolated");
    begin();
    opener->open(SettingsTab::about);
    EXPECT_FALSE(child<Switch>().isVisible());
}

TEST_F(SettingsWindowOpenerTest, sevenPressesOnTheVersionOpenWhatIsAttached)
{
    GuardEngine* opened = nullptr;
    DebugHooks::openDebugPanel = [&](GuardEngine& engine) { opened = &engine; };
    opener->open(SettingsTab::about);
    const auto tap = [] { Q_EMIT window().versionTapped(); };
    for (int i = 0; i < 6; ++i) tap();
    world.host.advance(SecretTapGesture::longestPause);
    for (int i = 0; i < 6; ++i) tap();
    EXPECT_EQ(opened, nullptr);
    tap();
    EXPECT_EQ(opened, &world.engine);
    DebugHooks::openDebugPanel = nullptr;
}

} // namespace
} // namespace quellon
