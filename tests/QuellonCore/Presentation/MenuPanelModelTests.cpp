#include "QuellonCore/Presentation/MenuPanelModel.h"

#include "PanelWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace quellon {
namespace {

using Kind = PanelAction::Kind;
using Section = MenuPanelModel::Section;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class MenuPanelModelTest : public testing::Test {
protected:
    PanelWorld world;
    GuardEngine& engine = world.engine;

    MenuPanelModel model(const PanelState& state = {}) { return MenuPanelModel::of(engine, world.host.now(), state); }
    /// A phone is tethered on en7 while this interface is the default route's.
    void tetherIdly(const std::string& interface = "en0")
    {
        GuardEngine::TickInputs tick;
        tick.status = {false, interface, interface};
        tick.idleTether = "en7";
        engine.apply(tick);
    }
    void findUpdate()
    {
        world.host.http().reply = {HttpResponse{200, R"({"latestVersion":"1.3","downloadURL":"https://q.example/d"})"},
                                   0s};
        engine.answerUpdateCheckConsent(true);
        world.host.advance(1s);
        ASSERT_TRUE(engine.availableUpdate());
    }
    void suspend(const std::string& app, std::int32_t pid)
    {
        world.host.process(pid, {.start = "A"});
        world.host.tool(ToolRole::ps)
            .prints(fmt::format("{0} 501 {0} /Applications/{1}.app/Contents/MacOS/{1}\n", pid, app));
        engine.enforceNow({app}, EnforcementAction::suspend);
    }
};

TEST_F(MenuPanelModelTest, header)
{
    struct Case {
        const char* name;
        bool isRunning;
        bool isMetered;
        bool meteredOnly;
        const char* title;
        Tint tint;
    };
    constexpr Case cases[] = {
        {"guarding", true, true, true, "Guarding", Tint::green},
        {"any network", true, false, false, "Guarding", Tint::green},
        {"metered, and any network", true, true, false, "Guarding", Tint::green},
        {"not metered", true, false, true, "Idle · not a metered network", Tint::orange},
        {"off", false, false, true, "Off", Tint::secondary},
        {"off on a hotspot", false, true, true, "Off", Tint::secondary},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world.change([&](GuardSettings& settings) { settings.meteredOnly = c.meteredOnly; });
        GuardEngine::TickInputs tick;
        tick.status = {c.isMetered, "en0", "a\nb"};
        engine.apply(tick);
        c.isRunning ? engine.start() : engine.stop();
        const auto header = model().header;
        EXPECT_EQ(header.title, c.title);
        EXPECT_EQ(header.tint, c.tint);
        EXPECT_EQ(header.detail, "a�b");
        EXPECT_EQ(header.isOn, c.isRunning);
        EXPECT_EQ(header.toggle, (PanelButton{"", "Guard", {c.isRunning ? Kind::stop : Kind::start, ""}}));
    }
}

TEST_F(MenuPanelModelTest, sectionsStandInTheirOrder)
{
    EXPECT_THAT(model().sections(),
                ElementsAre(Section::header, Section::budget, Section::usage, Section::liveness, Section::footer));
    findUpdate();
    suspend("Player", 501);
    tetherIdly();
    EXPECT_THAT(model().sections(),
                ElementsAre(Section::header, Section::tetherHint, Section::updateAvailable, Section::budget,
                            Section::usage, Section::paused, Section::liveness, Section::footer));
    world.change([](GuardSettings& settings) { settings.updateCheckConsent = UpdateCheckConsent::unasked; });
    EXPECT_THAT(model().sections(), Contains(Section::updateConsent));
    EXPECT_THAT(model().sections(), Not(Contains(Section::updateAvailable)));
    std::set<Section> all;
    MenuPanelModel everything = model();
    everything.updateAvailable = everything.updateConsent;
    EXPECT_THAT(everything.sections(), SizeIs(MenuPanelModel::sectionTable.rows.size()));
    for (std::size_t i = 0; i < MenuPanelModel::sectionTable.rows.size(); ++i) {
        EXPECT_EQ(everything.sections()[i], MenuPanelModel::sectionTable.rows[i].value);
        EXPECT_TRUE(all.insert(everything.sections()[i]).second);
    }
}

TEST_F(MenuPanelModelTest, tetherHint)
{
    EXPECT_EQ(model().tetherHint, std::nullopt);
    tetherIdly();
    auto hint = model().tetherHint;
    ASSERT_TRUE(hint);
    EXPECT_EQ(hint->symbol, "cable.connector");
    EXPECT_EQ(hint->title, "Your iPhone is connected, but traffic isn't using it");
    EXPECT_EQ(hint->text, "en7 is ready, but macOS is still using Wi-Fi.");
    EXPECT_EQ(hint->steps, std::nullopt);
    EXPECT_THAT(hint->buttons,
                ElementsAre(PanelButton{"How to fix", "How to fix", {Kind::showTetherSteps, ""}},
                            PanelButton{"Don't show again", "Don't show again", {Kind::dismissTetherHint, ""}}));
    hint = model({{}, true}).tetherHint;
    ASSERT_TRUE(hint);
    EXPECT_EQ(hint->steps, "1. Open Network settings\n2. Click ⋯ at the bottom → Set Service Order\n"
                           "3. Drag iPhone USB above Wi-Fi");
    EXPECT_THAT(
        hint->buttons,
        ElementsAre(PanelButton{"Open Network settings", "Open Network settings", {Kind::openNetworkSettings, ""}},
                    PanelButton{"Don't show again", "Don't show again", {Kind::dismissTetherHint, ""}}));
    tetherIdly("");
    EXPECT_EQ(model().tetherHint->text, "en7 is ready, but macOS is sending traffic elsewhere.");
    world.change([](GuardSettings& settings) { settings.tetherHintDismissed = true; });
    EXPECT_EQ(model().tetherHint, std::nullopt);
}

TEST_F(MenuPanelModelTest, updateConsentHidesAnAvailableUpdate)
{
    findUpdate();
    auto panel = model();
    EXPECT_EQ(panel.updateConsent, std::nullopt);
    ASSERT_TRUE(panel.updateAvailable);
    EXPECT_EQ(panel.updateAvailable->symbol, "arrow.down.circle");
    EXPECT_EQ(panel.updateAvailable->symbolTint, Tint::blue);
    EXPECT_EQ(panel.updateAvailable->title, "Version 1.3 is available");
    EXPECT_EQ(panel.updateAvailable->text, "You're running an older build.");
    EXPECT_THAT(
        panel.updateAvailable->buttons,
        ElementsAre(
            PanelButton{"Open download page", "Open download page", {Kind::openDownloadPage, "https://q.example/d"}},
            PanelButton{"Later", "Dismiss update notice", {Kind::dismissUpdate, ""}}));
    world.change([](GuardSettings& settings) { settings.updateCheckConsent = UpdateCheckConsent::unasked; });
    panel = model();
    EXPECT_EQ(panel.updateAvailable, std::nullopt);
    ASSERT_TRUE(panel.updateConsent);
    EXPECT_EQ(panel.updateConsent->symbol, "arrow.triangle.2.circlepath");
    EXPECT_EQ(panel.updateConsent->title, "Check for updates?");
    EXPECT_EQ(panel.updateConsent->text,
              "Once a day this app can ask updates.quellon.example whether a newer version exists. It sends only the "
              "version number and your macOS version — no account, no usage data, no app names.");
    EXPECT_THAT(panel.updateConsent->buttons,
                ElementsAre(PanelButton{"Yes, check daily", "Allow daily update checks", {Kind::allowUpdateChecks, ""}},
                            PanelButton{"No thanks", "Decline update checks", {Kind::declineUpdateChecks, ""}}));
}

TEST(MenuPanelModelOnLinux, whatNamesTheSystemIsTrueThere)
{
    PanelWorld world{Platform::linux()};
    world.change([](GuardSettings& settings) { settings.updateCheckConsent = UpdateCheckConsent::unasked; });
    GuardEngine::TickInputs tick;
    tick.status = {false, "wlan0", "wlan0"};
    tick.idleTether = "usb0";
    world.engine.apply(tick);
    const auto panel = MenuPanelModel::of(world.engine, world.host.now(), {{}, true});
    ASSERT_TRUE(panel.tetherHint && panel.updateConsent);
    EXPECT_EQ(panel.tetherHint->title, "Your phone is connected, but traffic isn't using it");
    EXPECT_EQ(panel.tetherHint->text, "usb0 is ready, but Linux is still using wlan0.");
    EXPECT_EQ(panel.tetherHint->steps, "1. Open Network settings\n2. Disconnect the network that is in use\n"
                                       "3. Leave the phone's connection on");
    EXPECT_EQ(panel.updateConsent->text,
              "Once a day this app can ask updates.quellon.example whether a newer version exists. It sends only the "
              "version number and your Linux version — no account, no usage data, no app names.");
}

TEST_F(MenuPanelModelTest, profileSwitcher)
{
    EXPECT_EQ(model().profiles, std::nullopt) << "a single profile";
    const UUID first = engine.settings().activeProfileID;
    const UUID second = engine.addProfile("Tra\nvel");
    auto profiles = model().profiles;
    ASSERT_TRUE(profiles);
    EXPECT_EQ(profiles->accessibilityLabel, "Switch plan profile");
    EXPECT_EQ(profiles->symbol, "simcard");
    EXPECT_EQ(profiles->name, "Tra�vel");
    EXPECT_EQ(profiles->menuSymbol, "chevron.up.chevron.down");
    const std::string name = engine.settings().profiles.front().name;
    EXPECT_THAT(
        profiles->items,
        ElementsAre(MenuPanelModel::ProfileSwitcher::Item{{name, name, {Kind::selectProfile, first.text()}}, ""},
                    MenuPanelModel::ProfileSwitcher::Item{{"Tra�vel", "Tra�vel", {Kind::selectProfile, second.text()}},
                                                          "checkmark"}));
    engine.selectProfile(first);
    profiles = model().profiles;
    EXPECT_EQ(profiles->name, name);
    EXPECT_EQ(profiles->items[0].symbol, "checkmark");
    EXPECT_EQ(profiles->items[1].symbol, "");
}

TEST_F(MenuPanelModelTest, budget)
{
    const auto panel = model();
    ASSERT_TRUE(panel.budget);
    EXPECT_EQ(panel.budget->amounts, "0.0 MB / 30.00 GB");
    EXPECT_TRUE(panel.budget->today);
    EXPECT_EQ(*panel.budget, BudgetPresentation::row(*engine.budgetStatus(), engine.dailyStatus(),
                                                     world.host.host().clock.calendar()));
}

TEST_F(MenuPanelModelTest, withoutABudgetThereIsNoSwitcherEither)
{
    engine.addProfile("Other");
    EXPECT_TRUE(MenuPanelModel::profileSwitcher(engine.settings(), engine.budgetStatus()));
    EXPECT_EQ(MenuPanelModel::profileSwitcher(engine.settings(), std::nullopt), std::nullopt);
    auto panel = model();
    EXPECT_THAT(panel.sections(), Contains(Section::budget));
    panel.budget.reset();
    EXPECT_THAT(panel.sections(), Not(Contains(Section::budget)));
}

TEST_F(MenuPanelModelTest, paused)
{
    EXPECT_THAT(model().paused, IsEmpty());
    suspend("Player", 501);
    world.host.advance(1s);
    suspend("Browser", 502);
    const auto panel = model();
    ASSERT_THAT(engine.suspended(), SizeIs(2));
    const auto resume = [&](std::size_t i) {
        return PanelButton{"Resume", "Resume", {Kind::resume, engine.suspended()[i].id()}};
    };
    EXPECT_THAT(panel.paused,
                ElementsAre(MenuPanelModel::Paused{"Player", resume(0)}, MenuPanelModel::Paused{"Browser", resume(1)}));
    EXPECT_EQ(panel.resumeAll, (PanelButton{"Resume all", "Resume all", {Kind::resumeAll, ""}}));
    EXPECT_EQ(MenuPanelModel::pausedTitle, "Paused");
    EXPECT_EQ(MenuPanelModel::pausedSymbol, "pause.circle.fill");
    EXPECT_EQ(MenuPanelModel::pausedTint, Tint::orange);
    EXPECT_EQ(MenuPanelModel::warningSymbol, "exclamationmark.triangle.fill");
    EXPECT_EQ(MenuPanelModel::warningTint, Tint::orange);
}

TEST_F(MenuPanelModelTest, livenessHangsOnThePrimaryRule)
{
    world.move({{"Player", 4 * mega}});
    EXPECT_EQ(model().liveness, LivenessRowModel::of(engine.liveness(), "1min", 10 * mega, world.host.now()));
    ASSERT_THAT(model().liveness.texts, SizeIs(3));
    EXPECT_EQ(model().liveness.texts[1].text, "Player 4.0 MB");
    EXPECT_EQ(model().liveness.texts[2].text, "of 10.0 MB");
    world.setRules({});
    EXPECT_EQ(model().liveness.texts[2].text, "of 0.0 MB") << "without a rule the window is a minute";
    world.setRules({PanelWorld::rule(300s, mega)});
    EXPECT_EQ(model().liveness.symbol, "checkmark.seal");
}

TEST_F(MenuPanelModelTest, footer)
{
    EXPECT_THAT(model().footer, ElementsAre(PanelButton{"Settings…", "Open settings", {Kind::openSettings, ""}},
                                            PanelButton{"Quit Quellon", "Quit Quellon", {Kind::quit, ""}}));
}

TEST_F(MenuPanelModelTest, equalStateGivesAnEqualModel)
{
    world.move({{"Player", 4 * mega}});
    EXPECT_EQ(model(), model());
    EXPECT_NE(model(), model({"Player", false}));
    EXPECT_EQ(model(), model({"nobody", true})) << "what is not shown is not open";
}

TEST(PanelSymbols, eachOnce)
{
    const std::set<std::string_view> names{PanelSymbols::all.begin(), PanelSymbols::all.end()};
    EXPECT_EQ(names.size(), PanelSymbols::all.size());
    EXPECT_THAT(names, Not(Contains("")));
}

} // namespace
} // namespace quellon
