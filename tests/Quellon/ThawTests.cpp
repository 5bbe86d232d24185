#include "FreezingWorld.h"
#include "Quellon/AppDelegate.h"
#include "QuellonHost/SystemHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <unistd.h>

namespace quellon {
namespace {

using testing::HasSubstr;

/// The signals that a process ignores.
std::set<int> ignoredSignals(pid_t process)
{
    std::ifstream status{"/proc/" + std::to_string(process) + "/status"};
    std::string word;
    while (status >> word && word != "SigIgn:") {}
    unsigned long long mask = 0;
    status >> std::hex >> mask;
    std::set<int> result;
    for (int number = 1; number <= 64; ++number) {
        if ((mask >> (number - 1) & 1U) != 0) result.insert(number);
    }
    return result;
}

TEST(Thaw, atEveryEndThatCanBeSeenComing)
{
    struct Case {
        const char* name;
        const char* view;
        void (*end)(ChildTerminal& terminal);
    };
    const Case cases[] = {
        {"lines, SIGTERM", "--plain", [](ChildTerminal& terminal) { terminal.signal(SIGTERM); }},
        {"lines, SIGINT", "--plain", [](ChildTerminal& terminal) { terminal.signal(SIGINT); }},
        {"lines, SIGHUP", "--plain", [](ChildTerminal& terminal) { terminal.signal(SIGHUP); }},
        {"lines, SIGQUIT", "--plain", [](ChildTerminal& terminal) { terminal.signal(SIGQUIT); }},
        {"lines, Ctrl-C", "--plain", [](ChildTerminal& terminal) { terminal.type("\x03"); }},
        {"lines, Ctrl-\\", "--plain", [](ChildTerminal& terminal) { terminal.type("\x1C"); }},
        {"lines, the window closes", "--plain", [](ChildTerminal& terminal) { terminal.close(); }},
        {"terminal view, q", "--terminal", [](ChildTerminal& terminal) { terminal.type("q"); }},
        {"terminal view, SIGTERM", "--terminal", [](ChildTerminal& terminal) { terminal.signal(SIGTERM); }},
        {"terminal view, SIGINT", "--terminal", [](ChildTerminal& terminal) { terminal.signal(SIGINT); }},
        {"terminal view, SIGHUP", "--terminal", [](ChildTerminal& terminal) { terminal.signal(SIGHUP); }},
        {"terminal view, SIGQUIT", "--terminal", [](ChildTerminal& terminal) { terminal.signal(SIGQUIT); }},
        {"terminal view, Ctrl-C", "--terminal", [](ChildTerminal& terminal) { terminal.type("\x03"); }},
        {"terminal view, Ctrl-\\", "--terminal", [](ChildTerminal& terminal) { terminal.type("\x1C"); }},
        {"terminal view, the window closes", "--terminal", [](ChildTerminal& terminal) { terminal.close(); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const FreezingWorld world;
        ChildTerminal terminal{world.setup({c.view})};
        ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
        c.end(terminal);
        EXPECT_EQ(terminal.wait(), 0);
        EXPECT_TRUE(world.allGoOn());
        EXPECT_EQ(world.stateFile("suspended.json"), "[]");
    }
}

TEST(Thaw, aGuardIsNotStoppedByCtrlZ)
{
    for (const char* view : {"--plain", "--terminal"}) {
        SCOPED_TRACE(view);
        const FreezingWorld world;
        auto setup = world.setup({view});
        // A job of a shell: without one around, the system does not stop anybody by a key.
        std::string job = "set -m; '" + setup.program + "'";
        for (const auto& argument : setup.arguments) job += " '" + argument + "'";
        setup.program = "/bin/sh";
        setup.arguments = {"-c", job + "; echo \"ended with $?\""};
        ChildTerminal terminal{setup};
        ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
        terminal.type("\x1A");
        terminal.type("\x03");
        EXPECT_TRUE(terminal.waitFor("ended with 0")) << terminal.screen();
        EXPECT_EQ(terminal.wait(), 0);
        EXPECT_TRUE(world.allGoOn());
    }
}

TEST(Thaw, whenNobodyReadsTheLinesAnyMore)
{
    const FreezingWorld world;
    int lines[2];
    ASSERT_EQ(pipe2(lines, O_CLOEXEC), 0);
    auto setup = world.setup({"--plain"});
    setup.output = lines[1];
    ChildTerminal terminal{setup};
    close(lines[1]);
    ASSERT_TRUE(world.awaitFreeze(terminal));
    close(lines[0]);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(world.allGoOn());
    EXPECT_EQ(world.stateFile("suspended.json"), "[]");
}

TEST(Thaw, underNohupTheGuardOutlivesItsTerminal)
{
    const FreezingWorld world;
    auto setup = world.setup({"--plain"});
    setup.ignored = {SIGHUP};
    ChildTerminal terminal{setup};
    ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
    terminal.signal(SIGHUP);
    for (int table = 0; table < 3; ++table) ASSERT_TRUE(terminal.waitFor("Guarding")) << "it goes on";
    EXPECT_FALSE(world.victim(0).hasContinued());
    terminal.signal(SIGTERM);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(world.allGoOn());
}

/// What the guard's id for a child means hangs on this: with SIGCHLD ignored the system forgets a child at its end.
TEST(Thaw, theGuardKeepsItsChildrenAlsoWhenItsLauncherIgnoresThem)
{
    const FreezingWorld world;
    auto setup = world.setup({"--plain"});
    setup.ignored = {SIGCHLD, SIGHUP};
    ChildTerminal terminal{setup};
    ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
    const std::set<int> ignored = ignoredSignals(terminal.pid());
    EXPECT_TRUE(ignored.contains(SIGHUP)) << "the way to look works";
    EXPECT_FALSE(ignored.contains(SIGCHLD));
    terminal.signal(SIGTERM);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(world.allGoOn());
}

/// What the other tests would see of a guard that does not thaw.
TEST(Thaw, notAtSIGKILL)
{
    const FreezingWorld world;
    ChildTerminal terminal{world.setup({"--plain"})};
    ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
    for (int table = 0; table < 3; ++table) ASSERT_TRUE(terminal.waitFor("Guarding"));
    terminal.signal(SIGKILL);
    EXPECT_EQ(terminal.wait(), 128 + SIGKILL);
    EXPECT_FALSE(world.allGoOn());
    EXPECT_NE(world.stateFile("suspended.json"), "[]");
}

TEST(Thaw, atAFatalErrorInTheMiddleOfAResume)
{
    const FreezingWorld world{2, R"(, "snoozeMinutes": 1e300)"};
    ChildTerminal terminal{world.setup({"--terminal"})};
    ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
    ASSERT_TRUE(terminal.waitFor("snoozes")) << terminal.screen();
    terminal.type("z");
    EXPECT_EQ(terminal.wait(), 70);
    EXPECT_TRUE(world.allGoOn());
    EXPECT_TRUE(terminal.isRestored());
    EXPECT_THAT(terminal.screen(), HasSubstr("fatal: number does not fit a whole number of 64 bits"));
}

TEST(Thaw, atTheNextStartAlsoWithoutTheHelper)
{
    const FreezingWorld world{2};
    {
        ChildTerminal terminal{world.setup({"--plain"})};
        ASSERT_TRUE(world.awaitFreeze(terminal)) << terminal.screen();
        for (int table = 0; table < 3; ++table) ASSERT_TRUE(terminal.waitFor("Guarding"));
        terminal.signal(SIGKILL);
        ASSERT_EQ(terminal.wait(), 128 + SIGKILL);
        ASSERT_FALSE(world.victim(0).hasContinued() || world.victim(1).hasContinued());
    }
    world.removeHelper();
    ChildTerminal terminal{world.setup({"--plain"})};
    ASSERT_TRUE(terminal.waitFor("Recovered from an unclean shutdown")) << terminal.screen();
    EXPECT_TRUE(world.allGoOn());
}

class ThawDeathTest : public testing::Test {
protected:
    ~ThawDeathTest() override { AppDelegate::cleanup = nullptr; }
};

TEST_F(ThawDeathTest, whenTheToolkitCallsExit)
{
    const auto leave = [](int status, bool cleared) {
        SystemHost host;
        AppDelegate::cleanup = [] { std::fputs("thawed\n", stderr); };
        AppDelegate::applicationDidFinishLaunching(host.host());
        if (cleared) AppDelegate::cleanup = nullptr;
        std::exit(status);
    };
    EXPECT_EXIT(leave(1, false), testing::ExitedWithCode(1), "^thawed\n$") << "once";
    EXPECT_EXIT(leave(0, true), testing::ExitedWithCode(0), "^$");
}

} // namespace
} // namespace quellon
