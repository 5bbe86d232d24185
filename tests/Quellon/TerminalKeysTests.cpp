#include "ChildTerminal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(TerminalKeys, reachTheGuard)
{
    ChildTerminal terminal{{{"--terminal"}}};
    ASSERT_TRUE(terminal.waitFor("q quits")) << terminal.screen();
    terminal.type("1ardz\x1B[A\x1B[B\x1B[1;5Q"); // nothing to answer, to resume or to select, and no q of its own
    terminal.type("s");
    ASSERT_TRUE(terminal.waitFor("Off")) << terminal.screen();
    terminal.type("\f");
    EXPECT_TRUE(terminal.waitFor("Guard stopped")) << terminal.screen();
    EXPECT_TRUE(terminal.waitFor(" starts")) << terminal.screen();
    terminal.type("q");
    EXPECT_EQ(terminal.wait(), 0);
    EXPECT_TRUE(terminal.isRestored());
}

} // namespace
} // namespace quellon
