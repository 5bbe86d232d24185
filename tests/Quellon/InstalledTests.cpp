#include "FreezingWorld.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "ShellEnding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>

/// The program as it is once it is installed: under its second name, started with the session, upgraded while it runs.
namespace quellon {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A user's home, in which the program is called by a link in small letters.
class Installed : public ::testing::Test {
protected:
    Installed() { fs::create_symlink(QUELLON_PROGRAM, home / "quellon"); }

    /// What a command of this user's prints, with its status behind "=".
    [[nodiscard]] std::string run(const std::string& command) const
    {
        const std::string folder = home.path().string();
        return ShellEnding::of("exec 2>&1; cd /; env -i TZ=UTC PATH=/usr/bin:/bin HOME='" + folder + "' TMPDIR='" +
                               folder + "' sh -c '" + command + "'; echo \"=$?\"")
            .output;
    }

    const testing::TemporaryFolder home;
    const fs::path entry = home / ".config/autostart/org.quellon.Quellon.desktop";
};

TEST_F(Installed, theLinkInSmallLettersIsTheSameProgram)
{
    EXPECT_THAT(run("~/quellon --version"), StartsWith("Quellon "));
    EXPECT_THAT(run("~/quellon --plain --duration 0.5"), HasSubstr("Quellon Pro started"));
    EXPECT_TRUE(fs::exists(home / ".local/share/Quellon")) << "the user's own state";
    for (const auto& each : fs::directory_iterator{home.path()}) {
        EXPECT_THAT(each.path().filename().string(), ::testing::Not(HasSubstr("Transient")));
    }
}

TEST_F(Installed, autostart)
{
    EXPECT_EQ(run("~/quellon --autostart status"), "off\n=0\n");
    EXPECT_EQ(run("~/quellon --autostart on"), "=0\n");
    EXPECT_EQ(run("~/quellon --autostart status"), "on\n=0\n");
    EXPECT_EQ(run("grep ^Exec= ~/.config/autostart/org.quellon.Quellon.desktop"),
              "Exec=\"" + fs::canonical(QUELLON_PROGRAM).string() + "\"\n=0\n");
    EXPECT_EQ(run("~/quellon --autostart off"), "=0\n");
    EXPECT_FALSE(fs::exists(entry));
    EXPECT_EQ(run("~/quellon --autostart status"), "off\n=0\n");
    EXPECT_FALSE(fs::exists(home / ".local")) << "no guard was started";
}

TEST_F(Installed, anAutostartThatCanNotBeWritten)
{
    fs::create_directory(home / ".config");
    fs::create_symlink("/dev/null", home / ".config/autostart");
    EXPECT_EQ(run("~/quellon --autostart on"), "Quellon: " + entry.string() + " can't be written.\n=1\n");
    EXPECT_EQ(run("~/quellon --autostart status >/dev/full"), "=1\n");
}

TEST(Upgrade, theGuardGoesOnWithOtherFilesInThePlaceOfItsOwn)
{
    const FreezingWorld world;
    ChildTerminal terminal{world.setup({"--plain"})};
    ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
    world.upgrade();
    ASSERT_THAT(fs::read_symlink("/proc/" + std::to_string(terminal.pid()) + "/exe").string(), HasSubstr("(deleted)"));
    for (int table = 0; table < 3; ++table) ASSERT_TRUE(terminal.waitFor("Guarding"));
    ASSERT_TRUE(FreezingWorld::killHelpers(terminal.pid()));
    for (int table = 0; table < 3; ++table) ASSERT_TRUE(terminal.waitFor("Guarding")) << "with the new helper";
    EXPECT_FALSE(world.victim(0).hasContinued());
    terminal.signal(SIGTERM);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(world.allGoOn());
    EXPECT_EQ(world.stateFile("suspended.json"), "[]");
}

TEST(Upgrade, whatAKilledGuardHadFrozenTheNewOneThaws)
{
    const FreezingWorld world{2};
    {
        ChildTerminal terminal{world.setup({"--plain"})};
        ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
        world.upgrade();
        terminal.signal(SIGKILL);
        ASSERT_EQ(terminal.wait(), 128 + SIGKILL);
    }
    ChildTerminal terminal{world.setup({"--plain"})};
    ASSERT_TRUE(terminal.waitFor("Recovered from an unclean shutdown")) << terminal.screen();
    EXPECT_TRUE(world.allGoOn());
}

} // namespace
} // namespace quellon
