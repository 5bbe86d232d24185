#include "QuellonCore/Presentation/TrayModel.h"

#include "PanelWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using MenuPresentation::MenuBar;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class TrayModelTest : public testing::Test {
protected:
    PanelWorld world;
    GuardEngine& engine = world.engine;

    TrayModel model() { return TrayModel::of(engine, world.host.now()); }
    void suspend(const std::string& app, std::int32_t pid)
    {
        world.host.process(pid, {.start = "A"});
        world.host.tool(ToolRole::ps)
            .prints(fmt::format("{0} 501 {0} /Applications/{1}.app/Contents/MacOS/{1}\n", pid, app));
        engine.enforceNow({app}, EnforcementAction::suspend);
    }
    /// The application moves so much that the user is told.
    void warnOf(const std::string& app)
    {
        world.setRules({{UUID{}, 60s, 10 * mega, ActionLevel::notify, true}});
        world.move({{app, 12 * mega}});
    }
    void leaveHotspot(const std::optional<std::string>& idleTether = {})
    {
        GuardEngine::TickInputs tick;
        tick.status = {false, "en0", "en0 · ordinary network"};
        tick.idleTether = idleTether;
        engine.apply(tick);
    }
    void setPlan(double gigabytes)
    {
        world.change([&](GuardSettings& settings) { settings.profiles[0].planGB = gigabytes; });
        engine.refreshBudget(world.host.now());
    }
};

TEST_F(TrayModelTest, guarding)
{
    const TrayModel tray = model();
    EXPECT_EQ(tray.menuBar, (MenuBar{"0%", "shield.lefthalf.filled"}));
    EXPECT_EQ(tray.menuBar, engine.menuBar(world.host.now()));
    EXPECT_EQ(tray.tint, Tint::green);
    EXPECT_EQ(tray.badge, "0%");
    EXPECT_FALSE(tray.needsAttention);
    EXPECT_EQ(tray.accessibleText, "Quellon: Guarding · 0% of the plan used");
    EXPECT_THAT(tray.toolTip, StartsWith("en0 · gateway 172.20.10.1 (hotspot range)\nThis month: 0.0 MB / 30.00 GB · "
                                         "30.00 GB left · "));
    EXPECT_THAT(tray.toolTip, HasSubstr("d to reset\nToday: 0.0 MB / "));
    EXPECT_THAT(tray.toolTip, HasSubstr(" left today"));
}

TEST_F(TrayModelTest, menu)
{
    const TrayModel::Item separator{"", {}, false, true};
    EXPECT_THAT(model().items, ElementsAre(TrayModel::Item{"Open Quellon", TrayCommand::open}, separator,
                                           TrayModel::Item{"Guarding · 0% of the plan used", {}, false},
                                           TrayModel::Item{"Pause guarding", TrayCommand::startOrStop},
                                           TrayModel::Item{"Resume all", TrayCommand::resumeAll, false}, separator,
                                           TrayModel::Item{"Settings…", TrayCommand::settings},
                                           TrayModel::Item{"Quit Quellon", TrayCommand::quit}));
    suspend("Player", 501);
    EXPECT_TRUE(model().items[4].enabled);
    engine.stop();
    EXPECT_EQ(model().items[2].title, "Off");
    EXPECT_EQ(model().items[3], (TrayModel::Item{"Start guarding", TrayCommand::startOrStop}));
    EXPECT_FALSE(model().items[4].enabled) << "the end of guarding resumes them";
}

TEST_F(TrayModelTest, off)
{
    engine.stop();
    const TrayModel tray = model();
    EXPECT_EQ(tray.menuBar, (MenuBar{"Off", "shield.slash"}));
    EXPECT_EQ(tray.tint, Tint::secondary);
    EXPECT_EQ(tray.badge, "") << "the symbol says it";
    EXPECT_EQ(tray.accessibleText, "Quellon: Off");
}

TEST_F(TrayModelTest, standby)
{
    leaveHotspot();
    TrayModel tray = model();
    EXPECT_EQ(tray.menuBar, (MenuBar{"", "shield"}));
    EXPECT_EQ(tray.tint, Tint::secondary);
    EXPECT_EQ(tray.badge, "");
    EXPECT_EQ(tray.accessibleText, "Quellon: Idle · not a metered network");
    EXPECT_THAT(tray.toolTip, StartsWith("en0 · ordinary network\nThis month: "));
    leaveHotspot("en7");
    tray = model();
    EXPECT_EQ(tray.menuBar, (MenuBar{"", "cable.connector"}));
    EXPECT_THAT(tray.toolTip, HasSubstr("\nen7 is ready, but macOS is still using Wi-Fi.\n"));
}

TEST_F(TrayModelTest, paused)
{
    suspend("Player", 501);
    suspend("Bro\twser", 502);
    TrayModel tray = model();
    EXPECT_EQ(tray.menuBar, (MenuBar{"2", "pause.circle.fill"}));
    EXPECT_EQ(tray.tint, Tint::orange);
    EXPECT_EQ(tray.badge, "2");
    EXPECT_EQ(tray.accessibleText, "Quellon: Guarding · 2 paused");
    EXPECT_THAT(tray.toolTip, StartsWith("Paused: Player, Bro�wser\n"));
}

TEST_F(TrayModelTest, theToolTipNamesAFewOfThePaused)
{
    struct Case {
        const char* name;
        std::vector<std::string> apps;
        const char* line;
    };
    const Case cases[] = {
        {"one", {"A"}, "Paused: A\n"},
        {"as many as are named", {"A", "B", "C"}, "Paused: A, B, C\n"},
        {"one more", {"A", "B", "C", "D"}, "Paused: A, B, C and 1 more\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        engine.resumeAll(true);
        std::int32_t pid = 501;
        for (const auto& app : c.apps) {
            suspend(app, pid);
            ++pid;
        }
        EXPECT_THAT(model().toolTip, StartsWith(c.line));
    }
}

TEST_F(TrayModelTest, aWarningHasTheTitleForAWhile)
{
    EXPECT_EQ(TrayModel::nextChange(engine, world.host.now()), std::nullopt);
    warnOf("Player");
    TrayModel tray = model();
    EXPECT_EQ(tray.menuBar, (MenuBar{"Player 12.0 MB", "exclamationmark.shield.fill"}));
    EXPECT_TRUE(tray.needsAttention);
    EXPECT_EQ(tray.tint, Tint::orange);
    EXPECT_EQ(tray.badge, "");
    EXPECT_EQ(tray.accessibleText, "Quellon: Guarding · Player 12.0 MB");
    EXPECT_THAT(tray.toolTip, StartsWith("Warning: Player 12.0 MB\n"));
    const auto change = TrayModel::nextChange(engine, world.host.now());
    ASSERT_TRUE(change);
    EXPECT_EQ(*change, engine.lastAlert()->firedAt + 30s);
    EXPECT_TRUE(TrayModel::of(engine, *change - 1ms).needsAttention);

    tray = TrayModel::of(engine, *change);
    EXPECT_EQ(tray.menuBar, (MenuBar{"0%", "shield.lefthalf.filled.badge.checkmark"}));
    EXPECT_FALSE(tray.needsAttention);
    EXPECT_EQ(tray.tint, Tint::green);
    EXPECT_THAT(tray.toolTip, StartsWith("Warning: Player 12.0 MB\n")) << "it was not seen yet";
    EXPECT_EQ(TrayModel::nextChange(engine, *change), std::nullopt);
    engine.markAlertsSeen();
    EXPECT_THAT(TrayModel::of(engine, *change).toolTip, Not(HasSubstr("Warning")));
}

TEST_F(TrayModelTest, whatHidesAWarningMakesNoChangeComing)
{
    warnOf("Player");
    engine.markAlertsSeen();
    EXPECT_THAT(model().toolTip, HasSubstr("Warning")) << "it has the title";
    suspend("Browser", 502);
    EXPECT_EQ(model().menuBar.title, "1");
    EXPECT_FALSE(model().needsAttention);
    EXPECT_THAT(model().toolTip, Not(HasSubstr("Warning")));
    EXPECT_EQ(TrayModel::nextChange(engine, world.host.now()), std::nullopt) << "paused applications have the title";
    engine.resumeAll(true);
    EXPECT_TRUE(TrayModel::nextChange(engine, world.host.now()));
    leaveHotspot();
    EXPECT_EQ(TrayModel::nextChange(engine, world.host.now()), std::nullopt) << "waiting for a metered network";
    engine.stop();
    EXPECT_EQ(TrayModel::nextChange(engine, world.host.now()), std::nullopt) << "off";
}

TEST_F(TrayModelTest, namesAreFitForALine)
{
    warnOf("Pla\tyer");
    const TrayModel tray = model();
    EXPECT_EQ(tray.menuBar.title, "Pla�yer 12.0 MB");
    EXPECT_THAT(tray.accessibleText, HasSubstr("Pla�yer"));
    EXPECT_THAT(tray.toolTip, HasSubstr("Pla�yer"));
}

TEST_F(TrayModelTest, thePlanIsUsedUp)
{
    setPlan(0.001);
    GuardEngine::TickInputs tick = world.inputs({});
    tick.interfaceCounter = InterfaceCounter{1000, 0};
    engine.apply(tick);
    tick.interfaceCounter = InterfaceCounter{1000 + 20 * mega, 0};
    world.host.advance(5s);
    engine.apply(tick);
    EXPECT_EQ(model().menuBar.title, "100%");
    EXPECT_EQ(model().badge, "100%");
    EXPECT_THAT(model().toolTip, HasSubstr("over today's pace"));
}

class TrayCommandTest : public TrayModelTest {
protected:
    std::vector<std::string> asked; ///< What the desktop was asked for.
    TrayDesktop desktop{[this] { asked.emplace_back("open"); }, [this] { asked.emplace_back("settings"); },
                        [this] { asked.emplace_back("quit"); }};
};

TEST_F(TrayCommandTest, windows)
{
    for (const auto command : {TrayCommand::open, TrayCommand::settings, TrayCommand::quit}) {
        perform(command, engine, desktop);
    }
    EXPECT_THAT(asked, ElementsAre("open", "settings", "quit"));
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(TrayCommandTest, startOrStop)
{
    perform(TrayCommand::startOrStop, engine, desktop);
    EXPECT_FALSE(engine.isRunning());
    perform(TrayCommand::startOrStop, engine, desktop);
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(TrayCommandTest, resumeAll)
{
    const auto lines = engine.events().size();
    perform(TrayCommand::resumeAll, engine, desktop);
    EXPECT_EQ(engine.events().size(), lines) << "nothing was paused";
    suspend("Player", 501);
    perform(TrayCommand::resumeAll, engine, desktop);
    EXPECT_THAT(engine.suspended(), IsEmpty());
    EXPECT_EQ(engine.events().front().message, "Resumed all (1)");
}

TEST_F(TrayCommandTest, aDesktopThatCanDoNothing)
{
    for (const auto command : {TrayCommand::open, TrayCommand::settings, TrayCommand::quit}) {
        perform(command, engine, {});
    }
    EXPECT_TRUE(engine.isRunning());
    EXPECT_THAT(asked, IsEmpty());
}

} // namespace
} // namespace quellon
