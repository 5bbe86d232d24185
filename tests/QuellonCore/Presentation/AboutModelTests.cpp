#include "QuellonCore/Presentation/AboutModel.h"

#include "QuellonCore/Presentation/AboutInfo.h"
#include "QuellonCore/Support/WebAddress.h"
#include "SettingsWorld.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(AboutInfo, displayVersion)
{
    struct Case {
        const char* name;
        std::optional<std::string_view> shortVersion;
        std::optional<std::string_view> build;
        const char* text;
    };
    constexpr Case cases[] = {
        {"both", "1.2.0", "7", "1.2.0 (7)"}, {"no build", "1.2.0", {}, "1.2.0"}, {"empty build", "1.2.0", "", "1.2.0"},
        {"neither", {}, {}, "dev"},          {"only a build", {}, "7", "dev"},   {"empty version", "", "7", "dev"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AboutInfo::displayVersion(c.shortVersion, c.build), c.text);
    }
}

TEST(AboutInfo, diagnostics)
{
    EXPECT_EQ(AboutInfo::diagnostics(AppEdition::pro, "1.2.0 (7)", "macOS", "14.5.0", true, true),
              "Quellon Pro 1.2.0 (7)\nmacOS 14.5.0\nGuard: on\nNetwork: metered");
    EXPECT_EQ(AboutInfo::diagnostics(AppEdition::appStore, "dev", "Linux", "6.1.0", false, false),
              "Quellon dev\nLinux 6.1.0\nGuard: off\nNetwork: not metered");
}

TEST(AboutInfo, addresses)
{
    EXPECT_EQ(AboutInfo::feedbackURL("1.2.0 (7)"),
              "mailto:support@quellon.example?subject=Quellon%20feedback%20(1.2.0%20(7))");
    EXPECT_EQ(AboutInfo::feedbackURL("a&b=?#%\xC3\xA4"),
              "mailto:support@quellon.example?subject=Quellon%20feedback%20(a%26b%3D%3F%23%25%C3%A4)");
    EXPECT_TRUE(WebAddress::parse(AboutInfo::feedbackURL("1 \"2\"")));
    ASSERT_TRUE(WebAddress::parse(AboutInfo::website));
    EXPECT_EQ(WebAddress::parse(AboutInfo::website)->scheme, "https");
}

TEST(AboutModel, texts)
{
    SettingsWorld world;
    const AboutModel::Build build{"1.2.0", "7", "14.5.0"};
    auto shown = AboutModel::of(world.engine, build, world.state);
    EXPECT_EQ(shown.name, "Quellon Pro");
    EXPECT_EQ(shown.version, "1.2.0 (7)");
    EXPECT_EQ(shown.links[0], (AboutModel::Link{"Website", "https://quellon.example"}));
    EXPECT_EQ(shown.links[1].title, "Send feedback");
    EXPECT_EQ(shown.links[1].url, AboutInfo::feedbackURL("1.2.0 (7)"));
    EXPECT_EQ(shown.copy, (FormButton{"Copy diagnostics", "Copy diagnostics", SettingsActions::ShowCopied{true}}));
    EXPECT_EQ(shown.diagnostics, "Quellon Pro 1.2.0 (7)\nmacOS 14.5.0\nGuard: on\nNetwork: metered");
    EXPECT_EQ(shown.note, "Paste it into your email — it only contains the app version, macOS version and whether the "
                          "guard is on. No app names, no traffic data.");

    world.does(shown.copy.action);
    const auto copied = AboutModel::of(world.engine, build, world.state).copy;
    EXPECT_EQ(copied.title, "Copied ✓");
    EXPECT_EQ(copied.accessibilityLabel, "Copied ✓") << "who does not see it is told as well";
    world.does(SettingsActions::ShowCopied{false});
    EXPECT_EQ(AboutModel::of(world.engine, build, world.state).copy.title, "Copy diagnostics");
}

TEST(AboutModel, onLinuxInTheSmallEdition)
{
    SettingsWorld world{Platform::linux(), Capabilities{.edition = AppEdition::appStore}};
    world.engine.stop();
    GuardEngine::TickInputs home;
    home.status = {false, "en0", "en0"};
    world.engine.apply(home);
    const auto shown = AboutModel::of(world.engine, {{}, {}, "6.1.0"}, {});
    EXPECT_EQ(shown.name, "Quellon");
    EXPECT_EQ(shown.version, "dev");
    EXPECT_EQ(shown.diagnostics, "Quellon dev\nLinux 6.1.0\nGuard: off\nNetwork: not metered");
    EXPECT_EQ(shown.note, "Paste it into your email — it only contains the app version, Linux version and whether the "
                          "guard is on. No app names, no traffic data.");
}

TEST(AboutModel, startAtLogin)
{
    SettingsWorld world;
    const AboutModel::Build build{"1.2.0", "7", "14.5.0"};
    world.state.startRefusal = "no room";
    EXPECT_EQ(AboutModel::of(world.engine, build, world.state).startAtLogin, std::nullopt);
    EXPECT_EQ(AboutModel::of(world.engine, build, world.state).startRefusal, std::nullopt);
    world.state.startsAtLogin = false;
    const auto off = AboutModel::of(world.engine, build, world.state);
    EXPECT_EQ(off.startAtLogin, (FormSwitch{"Start at login", false, SettingsActions::SetStartAtLogin{true}}));
    EXPECT_EQ(off.startRefusal, "no room");
    world.state.startsAtLogin = true;
    const auto on = AboutModel::of(world.engine, build, world.state);
    EXPECT_EQ(on.startAtLogin, (FormSwitch{"Start at login", true, SettingsActions::SetStartAtLogin{false}}));
}

} // namespace
} // namespace quellon
