// The one way in which tools are run, with real children behind it.

#include "QuellonCore/Diagnostics/GuardLog.h"
#include "QuellonCore/Measurement/Shell.h"
#include "QuellonHost/Posix/PosixCommandRunner.h"
#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Its clock stands still, so that no command counts as slow.
class ShellOverChildren : public testing::Test {
protected:
    void SetUp() override { (void)Shell::drainTimeouts(); }

    std::optional<std::string> run(const Command& command, Seconds timeout = 60s)
    {
        const Host scripted = world_.host();
        return Shell::run({scripted.clock, scripted.runLoop, runner_, scripted.processes, scripted.files,
                           scripted.addresses, scripted.log, scripted.identifiers, scripted.http, scripted.platform},
                          command, timeout);
    }
    std::optional<std::string> shell(const char* script, Seconds timeout = 60s)
    {
        return run({"/bin/sh", {"-c", script}}, timeout);
    }
    std::vector<std::string> messages() { return world_.log().messages(GuardLog::shell); }

private:
    ScriptedHost world_;
    PosixCommandRunner runner_{world_.log()};
};

TEST_F(ShellOverChildren, text)
{
    struct Case {
        const char* name;
        const char* script;
        std::optional<std::string> text;
    };
    const Case cases[] = {
        {"a megabyte", "head -c 1048576 /dev/zero", std::string(1'048'576, '\0')},
        {"exit status 1 and no output", "exit 1", ""},
        {"exit status 1 after text", "printf text; exit 1", "text"},
        {"one byte that is not UTF-8", "printf 'a\\377b'", std::nullopt},
        {"output closed before the end", "printf text; exec 1>&-; sleep 0.1", "text"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(shell(c.script), c.text);
    }
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

TEST_F(ShellOverChildren, whatSleepsPastItsBudget)
{
    EXPECT_EQ(shell("printf partial; exec sleep 1000", 125ms), std::nullopt);
    EXPECT_THAT(messages(), ElementsAre("TIMEOUT /bin/sh killed after 0.125000s"));
    EXPECT_THAT(Shell::drainTimeouts(), ElementsAre("/bin/sh"));
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

TEST_F(ShellOverChildren, whatDoesNotExist)
{
    EXPECT_EQ(run({"/no/such/tool", {"-x"}}), std::nullopt);
    EXPECT_THAT(messages(), ElementsAre("spawn failed: /no/such/tool"));
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

} // namespace
} // namespace quellon
