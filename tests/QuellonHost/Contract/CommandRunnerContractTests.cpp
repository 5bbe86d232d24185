#include "QuellonHost/Posix/PosixCommandRunner.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Outcome = CommandResult::Outcome;

/// Real children of a shell.
struct RealRunner {
    ScriptedLog log;
    PosixCommandRunner real{log};

    [[nodiscard]] CommandRunner& runner() { return real; }
    Command prints(const std::string& text) { return {"/bin/sh", {"-c", "printf %s \"$1\"", "sh", text}}; }
    Command fails() { return {"/no/such/program", {}}; }
    Command hangs() { return {"/bin/sh", {"-c", "echo partial; exec sleep 1000"}}; }
};

struct ScriptedRunner {
    ScriptedHost host;

    [[nodiscard]] CommandRunner& runner() { return host.host().commands; }
    Command prints(const std::string& text)
    {
        host.tool(ToolRole::ps).prints(text);
        return Platform::macOS().tool(ToolRole::ps);
    }
    Command fails()
    {
        host.tool(ToolRole::route).fails();
        return Platform::macOS().tool(ToolRole::route);
    }
    Command hangs()
    {
        host.tool(ToolRole::netstat).timesOut();
        return Platform::macOS().tool(ToolRole::netstat, {"en0"});
    }
};

template <typename World>
class CommandRunnerContract : public ::testing::Test {
protected:
    World world;
};
using Worlds = ::testing::Types<RealRunner, ScriptedRunner>;
TYPED_TEST_SUITE(CommandRunnerContract, Worlds);

TYPED_TEST(CommandRunnerContract, givesTheTextByteForByte)
{
    struct Case {
        const char* name;
        std::string text;
    };
    const Case cases[] = {
        {"nothing", ""},
        {"a word", "word"},
        {"lines, the last unended", "one\ntwo\n\nthree"},
        {"not UTF-8", "a\xFF\xFE"},
        {"long", std::string(100'000, 'x')},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(this->world.runner().run(this->world.prints(c.text), 10s),
                  (CommandResult{Outcome::finished, c.text}));
    }
}

TYPED_TEST(CommandRunnerContract, whatCannotBeStarted)
{
    EXPECT_EQ(this->world.runner().run(this->world.fails(), 10s), (CommandResult{Outcome::failedToStart, ""}));
}

TYPED_TEST(CommandRunnerContract, whatHangsTimesOutAndItsTextIsThrownAway)
{
    EXPECT_EQ(this->world.runner().run(this->world.hangs(), 100ms), (CommandResult{Outcome::timedOut, ""}));
}

TYPED_TEST(CommandRunnerContract, goesOnAfterFailures)
{
    (void)this->world.runner().run(this->world.hangs(), 50ms);
    (void)this->world.runner().run(this->world.fails(), 1s);
    EXPECT_EQ(this->world.runner().run(this->world.prints("again"), 10s).output, "again");
}

} // namespace
} // namespace quellon
