#include "ChildTerminal.h"
#include "ShellEnding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <regex>
#include <string>

namespace quellon {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

/// What leaves the screen that was taken over, and shows the cursor again.
constexpr const char* leavesScreen = "\x1B[?1049l";
constexpr const char* showsCursor = "\x1B[?25h";

ShellEnding shell(const std::string& command)
{
    return ShellEnding::of("exec 2>&1; cd /; unset DISPLAY WAYLAND_DISPLAY; export TZ=UTC HOME=/nonexistent "
                           "QUELLON_STATE_DIR=/nonexistent PROGRAM='" QUELLON_PROGRAM "'; " +
                           command);
}

TEST(Program, helpAndVersion)
{
    const ShellEnding help = shell("\"$PROGRAM\" --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, StartsWith("Usage: Quellon [OPTION]...\n"));
    const ShellEnding version = shell("\"$PROGRAM\" --version");
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, MatchesRegex("Quellon [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Program, mistakes)
{
    const ShellEnding unknown = shell("\"$PROGRAM\" --fast >/dev/null");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.output, "Quellon: unknown option \"--fast\"\nTry \"Quellon --help\".\n");
    EXPECT_EQ(shell("\"$PROGRAM\" --duration never").status, 2);
    EXPECT_EQ(shell("\"$PROGRAM\" hotspot").status, 2);
}

TEST(Program, outputThatCanNotBeWritten)
{
    EXPECT_EQ(shell("\"$PROGRAM\" --help >/dev/full").status, 1);
    const ShellEnding plain = shell("\"$PROGRAM\" --plain --duration 20 >/dev/full");
    EXPECT_EQ(plain.status, 1);
    EXPECT_EQ(plain.output, "Quellon: standard output can't be written.\n");
}

TEST(Program, plainLines)
{
    const ShellEnding run = shell("\"$PROGRAM\" --duration 1");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, ContainsRegex("^[0-9:]{8} info      Quellon Pro started · 2 rules\n"));
    EXPECT_THAT(run.output, Not(HasSubstr("\x1B")));
}

TEST(Program, theReaderGoesAway)
{
    const ShellEnding run = shell("{ \"$PROGRAM\" --plain --duration 1; echo \"status $?\" >&2; } | head -1");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, HasSubstr("Quellon Pro started"));
    EXPECT_THAT(run.output, HasSubstr("status 0\n"));
}

TEST(Program, plainLinesEndWithSIGTERM)
{
    ChildTerminal terminal{{{"--plain"}}};
    ASSERT_TRUE(terminal.waitFor("Quellon Pro started")) << terminal.screen();
    terminal.signal(SIGTERM);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(terminal.isRestored());
}

TEST(Terminal, q)
{
    ChildTerminal terminal{{{"--terminal"}}};
    ASSERT_TRUE(terminal.waitFor("q quits")) << terminal.screen();
    terminal.type("q");
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(terminal.isRestored());
    EXPECT_THAT(terminal.screen(), HasSubstr(leavesScreen));
    EXPECT_THAT(terminal.screen(), HasSubstr(showsCursor));
    EXPECT_THAT(terminal.screen(), HasSubstr("Quellon Pro started · 2 rules"));
}

TEST(Terminal, controlC)
{
    ChildTerminal terminal{{{"--terminal"}}};
    ASSERT_TRUE(terminal.waitFor("q quits")) << terminal.screen();
    terminal.type("\x03");
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(terminal.isRestored());
    EXPECT_THAT(terminal.screen(), HasSubstr(leavesScreen));
}

TEST(Terminal, SIGTERM_)
{
    ChildTerminal terminal{{{"--terminal"}}};
    ASSERT_TRUE(terminal.waitFor("q quits")) << terminal.screen();
    terminal.signal(SIGTERM);
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(terminal.isRestored());
    EXPECT_THAT(terminal.screen(), HasSubstr(leavesScreen));
}

TEST(Terminal, duration)
{
    ChildTerminal terminal{{{"--terminal", "--duration", "0.5"}}};
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(terminal.isRestored());
}

TEST(Terminal, resize)
{
    ChildTerminal terminal{{{"--terminal"}}};
    ASSERT_TRUE(terminal.waitFor("q quits")) << terminal.screen();
    for (const unsigned short width : std::initializer_list<unsigned short>{40, 120, 3, 60}) {
        terminal.resize(width, 14);
        if (width > 10) { EXPECT_TRUE(terminal.waitFor("q quits")) << "drawn anew at " << width; }
    }
    terminal.type("q");
    EXPECT_EQ(terminal.wait(), 0);
}

TEST(Terminal, otherKeysDoNothing)
{
    ChildTerminal terminal{{{"--terminal"}}};
    ASSERT_TRUE(terminal.waitFor("q quits")) << terminal.screen();
    terminal.type("x\x1B[A\r\f");
    ASSERT_TRUE(terminal.waitFor("q quits")) << "Ctrl-L draws anew";
    terminal.type("Q");
    EXPECT_EQ(terminal.wait(), 0);
}

TEST(Terminal, colours)
{
    const std::string colour = "\x1B\\[[0-9;]*3[0-7]m";
    ChildTerminal colourful{{{"--terminal", "--duration", "0.5"}}};
    EXPECT_EQ(colourful.wait(), 0);
    EXPECT_TRUE(std::regex_search(colourful.screen(), std::regex{colour}));
    ChildTerminal plain{{{"--terminal", "--duration", "0.5"}, {{"NO_COLOR", "1"}}}};
    EXPECT_EQ(plain.wait(), 0);
    EXPECT_FALSE(std::regex_search(plain.screen(), std::regex{colour}));
}

TEST(Terminal, aTerminalThatCanNotBeDrawnOn)
{
    for (const std::optional<std::string>& name : {std::optional<std::string>{"dumb"}, std::optional<std::string>{},
                                                   std::optional<std::string>{"no-such-thing"}}) {
        SCOPED_TRACE(name.value_or("unset"));
        ChildTerminal terminal{{{"--terminal", "--duration", "0.5"}, {{"TERM", name}}}};
        EXPECT_EQ(terminal.wait(), 0);
        EXPECT_THAT(terminal.screen(),
                    StartsWith("Quellon: this terminal can't be drawn on (see TERM); printing lines instead.\r\n"));
        EXPECT_THAT(terminal.screen(), HasSubstr("Quellon Pro started"));
        EXPECT_THAT(terminal.screen(), Not(HasSubstr("\x1B")));
        EXPECT_TRUE(terminal.isRestored());
    }
}

TEST(Terminal, theCharacterSetIsUtf8Anyway)
{
    ChildTerminal terminal{{{"--terminal", "--duration", "0.5"}, {{"LANG", "C"}, {"LC_ALL", "POSIX"}}}};
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_THAT(terminal.screen(), HasSubstr("Quellon Pro started · 2 rules"));
}

TEST(Terminal, aDisplayThatCanNotBeReached)
{
    ChildTerminal terminal{{{"--duration", "0.5"}, {{"DISPLAY", ":63999"}}}};
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_THAT(terminal.screen(), HasSubstr("Quellon Pro started"));
    EXPECT_THAT(terminal.screen(), HasSubstr(leavesScreen)) << "the terminal view in its place";
    EXPECT_TRUE(terminal.isRestored());
}

} // namespace
} // namespace quellon
