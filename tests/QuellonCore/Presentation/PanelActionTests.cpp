#include "QuellonCore/Presentation/PanelAction.h"

#include "PanelWorld.h"
#include "QuellonCore/Notifications/DesktopNotices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using Kind = PanelAction::Kind;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class PanelActionTest : public testing::Test {
protected:
    PanelWorld world;
    GuardEngine& engine = world.engine;
    PanelState state;
    std::vector<std::string> asked; ///< What the desktop was asked for.
    PanelDesktop desktop{
        [this](const std::string& url) { asked.push_back("open " + url); },
        [this](const std::vector<Command>& programs) {
            for (const Command& each : programs) asked.push_back("start " + each.path);
            return true;
        },
        [this](const NotificationPlan& plan) { asked.push_back("tell " + plan.title); },
        [this] { asked.emplace_back("settings"); },
        [this] { asked.emplace_back("quit"); },
    };

    void press(Kind kind, const std::string& target = {}) { perform({kind, target}, engine, state, desktop); }
    void suspend(const std::string& app, std::int32_t pid)
    {
        world.host.process(pid, {.start = "A"});
        world.host.tool(ToolRole::ps)
            .prints(fmt::format("{0} 501 {0} /Applications/{1}.app/Contents/MacOS/{1}\n", pid, app));
        engine.enforceNow({app}, EnforcementAction::suspend);
    }
};

TEST_F(PanelActionTest, theSwitch)
{
    press(Kind::stop);
    EXPECT_FALSE(engine.isRunning());
    press(Kind::start);
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(PanelActionTest, oneRowIsOpenAtMost)
{
    press(Kind::toggleRow, "A");
    EXPECT_EQ(state.expandedApp, "A");
    press(Kind::toggleRow, "B");
    EXPECT_EQ(state.expandedApp, "B");
    press(Kind::toggleRow, "B");
    EXPECT_EQ(state.expandedApp, std::nullopt);
}

TEST_F(PanelActionTest, tetherHint)
{
    GuardEngine::TickInputs tick;
    tick.idleTether = "en7";
    engine.apply(tick);
    press(Kind::showTetherSteps);
    EXPECT_TRUE(state.showSteps);
    settle(state, engine);
    EXPECT_TRUE(state.showSteps) << "the row is still there";
    press(Kind::openNetworkSettings);
    EXPECT_THAT(asked, ElementsAre("open x-apple.systempreferences:com.apple.Network-Settings.extension"));
    press(Kind::dismissTetherHint);
    EXPECT_TRUE(engine.settings().tetherHintDismissed);
    EXPECT_FALSE(engine.showsTetherHint());
    settle(state, engine);
    EXPECT_FALSE(state.showSteps) << "it begins anew with the row";
}

TEST(PanelActionOnLinux, networkSettingsAreAProgram)
{
    PanelWorld world{Platform::linux()};
    PanelState state;
    std::vector<Command> programs;
    std::vector<NotificationPlan> told;
    bool isInstalled = true;
    PanelDesktop desktop;
    desktop.startFirst = [&](const std::vector<Command>& offered) {
        programs = offered;
        return isInstalled;
    };
    desktop.tell = [&](const NotificationPlan& plan) { told.push_back(plan); };
    perform({Kind::openNetworkSettings, ""}, world.engine, state, desktop);
    EXPECT_THAT(programs,
                ElementsAre(Command{"gnome-control-center", {"network"}},
                            Command{"systemsettings", {"kcm_networkmanagement"}}, Command{"nm-connection-editor", {}}));
    EXPECT_THAT(told, IsEmpty());
    isInstalled = false;
    perform({Kind::openNetworkSettings, ""}, world.engine, state, desktop);
    EXPECT_THAT(told, ElementsAre(DesktopNotices::noNetworkSettings()));
    desktop.startFirst = {};
    perform({Kind::openNetworkSettings, ""}, world.engine, state, desktop);
    EXPECT_THAT(told, SizeIs(1)) << "a desktop that starts nothing";
}

TEST_F(PanelActionTest, updateConsent)
{
    press(Kind::declineUpdateChecks);
    EXPECT_EQ(engine.settings().updateCheckConsent, UpdateCheckConsent::denied);
    world.host.http().reply = {HttpResponse{200, R"({"latestVersion":"1.3","downloadURL":"https://q.example/d"})"}, 0s};
    press(Kind::allowUpdateChecks);
    EXPECT_EQ(engine.settings().updateCheckConsent, UpdateCheckConsent::granted);
    world.host.advance(1s);
    ASSERT_TRUE(engine.availableUpdate());
    press(Kind::openDownloadPage, "https://q.example/d");
    EXPECT_THAT(asked, ElementsAre("open https://q.example/d"));
    EXPECT_TRUE(engine.availableUpdate()) << "the notice stays";
    press(Kind::dismissUpdate);
    EXPECT_EQ(engine.availableUpdate(), std::nullopt);
}

TEST_F(PanelActionTest, selectProfile)
{
    const UUID first = engine.settings().activeProfileID;
    const UUID second = engine.addProfile("Travel");
    press(Kind::selectProfile, first.text());
    EXPECT_EQ(engine.settings().activeProfileID, first);
    press(Kind::selectProfile, "no id");
    EXPECT_EQ(engine.settings().activeProfileID, first);
    press(Kind::selectProfile, second.text());
    EXPECT_EQ(engine.settings().activeProfileID, second);
}

TEST_F(PanelActionTest, resume)
{
    suspend("Player", 501);
    suspend("Browser", 502);
    suspend("Mailer", 503);
    ASSERT_THAT(engine.suspended(), SizeIs(3));
    const std::string id = engine.suspended()[1].id();
    press(Kind::resume, id);
    ASSERT_THAT(engine.suspended(), SizeIs(2));
    EXPECT_EQ(engine.suspended()[1].app, "Mailer");
    EXPECT_THAT(engine.snoozedUntil(), IsEmpty());
    EXPECT_EQ(engine.events().front().message, "Resumed Browser");
    press(Kind::resume, id);
    EXPECT_THAT(engine.suspended(), SizeIs(2)) << "it is no longer there";
    press(Kind::resumeAll);
    EXPECT_THAT(engine.suspended(), IsEmpty());
    EXPECT_EQ(engine.events().front().message, "Resumed all (2)");
}

TEST_F(PanelActionTest, windows)
{
    press(Kind::openSettings);
    EXPECT_EQ(engine.detailApp(), std::nullopt);
    press(Kind::openDetails, "Player");
    EXPECT_EQ(engine.detailApp(), "Player");
    press(Kind::quit);
    EXPECT_THAT(asked, ElementsAre("settings", "settings", "quit"));
}

TEST_F(PanelActionTest, aDesktopThatCanDoNothing)
{
    desktop = {};
    for (const Kind kind :
         {Kind::openNetworkSettings, Kind::openDownloadPage, Kind::openSettings, Kind::openDetails, Kind::quit}) {
        press(kind, "A");
    }
    EXPECT_EQ(engine.detailApp(), "A");
    EXPECT_TRUE(engine.isRunning());
}

} // namespace
} // namespace quellon
