#include "QuellonCore/Measurement/Shell.h"

#include "QuellonCore/Diagnostics/GuardLog.h"
#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Gives one result to every command, after `takes` on a clock of its own; from any thread.
class FixedCommands final : public CommandRunner, public Clock {
public:
    explicit FixedCommands(CommandResult result, Seconds takes = 0s) : result_{std::move(result)}, takes_{takes} {}
    [[nodiscard]] CommandResult run(const Command&, Seconds timeout) override
    {
        budget = timeout.count();
        now_ = now_ + takes_.count();
        return result_;
    }
    [[nodiscard]] Date now() const override { return Date{Seconds{now_}}; }
    [[nodiscard]] Calendar calendar() const override { return {}; }

    std::atomic<double> budget{0};

private:
    CommandResult result_;
    Seconds takes_;
    std::atomic<double> now_{1000};
};

class ShellTests : public testing::Test {
protected:
    void SetUp() override { (void)Shell::drainTimeouts(); }

    /// The scripted world with another source of time and of commands.
    Host hostWith(FixedCommands& commands)
    {
        const Host whole = world_.host();
        return {commands,        whole.runLoop, commands,          whole.processes, whole.files,
                whole.addresses, whole.log,     whole.identifiers, whole.http,      whole.platform};
    }
    std::optional<std::string> runWith(FixedCommands& commands, Seconds timeout = Shell::defaultTimeout)
    {
        return Shell::run(hostWith(commands), {"/bin/tool", {"-a", "secret"}}, timeout);
    }
    std::vector<std::string> messages() { return world_.log().messages(GuardLog::shell); }

    ScriptedHost world_;
};

TEST_F(ShellTests, constants)
{
    EXPECT_EQ(Shell::defaultTimeout, 4s);
    EXPECT_EQ(Shell::nettopTimeout, 20s);
    EXPECT_EQ(Shell::nettopPath, "/usr/bin/nettop");
    EXPECT_THAT(Shell::nettopArguments,
                ElementsAre("-n", "-x", "-t", "external", "-J", "interface,bytes_in,bytes_out", "-L", "1"));
    EXPECT_EQ(GuardLog::slowCommandThreshold, 1s);
}

TEST_F(ShellTests, givesTheText)
{
    struct Case {
        const char* name;
        std::string output;
    };
    const Case cases[] = {
        {"nothing printed is the empty text", ""},
        {"a megabyte", std::string(1U << 20U, 'x')},
        {"a zero byte", std::string("a\0b", 3)},
        {"UTF-8 of every length", "a\u00e9\u20ac\U0001F600"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FixedCommands commands{{CommandResult::Outcome::finished, c.output}};
        EXPECT_EQ(runWith(commands), c.output);
    }
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

TEST_F(ShellTests, notUtf8)
{
    for (const char* output : {"\xFF", "good\nbad \xC3\n", "\xED\xA0\x80"}) {
        SCOPED_TRACE(output);
        FixedCommands commands{{CommandResult::Outcome::finished, output}};
        EXPECT_EQ(runWith(commands), std::nullopt);
    }
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

TEST_F(ShellTests, failedStart)
{
    FixedCommands commands{{CommandResult::Outcome::failedToStart, ""}};
    EXPECT_EQ(runWith(commands), std::nullopt);
    EXPECT_THAT(world_.log().lines(), ElementsAre(LogLine{"shell", LogLevel::error, "spawn failed: /bin/tool"}));
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

TEST_F(ShellTests, timeout)
{
    FixedCommands commands{{CommandResult::Outcome::timedOut, ""}, 4.5s};
    EXPECT_EQ(runWith(commands), std::nullopt);
    EXPECT_EQ(runWith(commands, 0.25s), std::nullopt);
    EXPECT_THAT(world_.log().lines(),
                ElementsAre(LogLine{"shell", LogLevel::error, "TIMEOUT /bin/tool killed after 4.000000s"},
                            LogLine{"shell", LogLevel::error, "TIMEOUT /bin/tool killed after 0.250000s"}));
    EXPECT_THAT(Shell::drainTimeouts(), ElementsAre("/bin/tool", "/bin/tool"));
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty()) << "each is told once";
}

TEST_F(ShellTests, lostIsLoggedElsewhere)
{
    FixedCommands commands{{CommandResult::Outcome::lost, ""}, 2s};
    EXPECT_EQ(runWith(commands), std::nullopt);
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

TEST_F(ShellTests, slowCommands)
{
    struct Case {
        const char* name;
        Seconds takes;
        Seconds timeout;
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        {"just below the threshold", 0.9375s, 4s, {}},
        {"exactly the threshold", 1s, 4s, {"slow /bin/tool took 1.00s of 4s budget"}},
        {"two decimals", 12.345678s, 20s, {"slow /bin/tool took 12.35s of 20s budget"}},
        {"finished beyond its budget", 9s, 4s, {"slow /bin/tool took 9.00s of 4s budget"}},
        {"budget without decimals", 1.5s, 2.75s, {"slow /bin/tool took 1.50s of 3s budget"}},
        {"the clock went back", -60s, 4s, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world_.log().clear();
        FixedCommands commands{{CommandResult::Outcome::finished, "text"}, c.takes};
        EXPECT_EQ(runWith(commands, c.timeout), "text") << "it is a warning only";
        EXPECT_EQ(messages(), c.messages);
    }
    EXPECT_THAT(Shell::drainTimeouts(), IsEmpty());
}

TEST_F(ShellTests, slowAndNotUtf8)
{
    FixedCommands commands{{CommandResult::Outcome::finished, "\xFF"}, 3s};
    EXPECT_EQ(runWith(commands), std::nullopt);
    EXPECT_THAT(world_.log().lines(),
                ElementsAre(LogLine{"shell", LogLevel::error, "slow /bin/tool took 3.00s of 4s budget"}));
}

TEST_F(ShellTests, passesTheBudgetOn)
{
    FixedCommands commands{{CommandResult::Outcome::finished, ""}};
    (void)runWith(commands);
    EXPECT_EQ(commands.budget, 4.0);
    (void)runWith(commands, 0.5s);
    EXPECT_EQ(commands.budget, 0.5);
    (void)Shell::nettop(hostWith(commands));
    EXPECT_EQ(commands.budget, 20.0);
}

TEST_F(ShellTests, nettop)
{
    EXPECT_EQ(Shell::nettop(world_), std::nullopt);
    world_.tool(ToolRole::nettop).prints("time,,interface\n");
    EXPECT_EQ(Shell::nettop(world_), "time,,interface\n");
    ASSERT_EQ(world_.runs().size(), 2U);
    EXPECT_EQ(world_.runs()[1].command.path, Shell::nettopPath);
    EXPECT_THAT(world_.runs()[1].command.arguments, testing::ElementsAreArray(Shell::nettopArguments));
    world_.log().clear();
    world_.tool(ToolRole::nettop).timesOut();
    EXPECT_EQ(Shell::nettop(world_), std::nullopt);
    EXPECT_THAT(messages(), ElementsAre("TIMEOUT /usr/bin/nettop killed after 20.000000s"));
    EXPECT_THAT(Shell::drainTimeouts(), ElementsAre("/usr/bin/nettop"));
}

TEST_F(ShellTests, drainFromManyThreadsLosesAndRepeatsNothing)
{
    constexpr std::size_t threadCount = 4;
    constexpr std::size_t runsEach = 200;
    FixedCommands commands{{CommandResult::Outcome::timedOut, ""}};
    const Host host = hostWith(commands);
    std::atomic<std::size_t> told{0};
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&host, &told] {
            for (std::size_t run = 0; run < runsEach; ++run) {
                (void)Shell::run(host, {"/bin/tool", {}});
                if (run % 8 == 0) told += Shell::drainTimeouts().size();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(told + Shell::drainTimeouts().size(), threadCount * runsEach);
}

TEST_F(ShellTests, offMainComesBackOnTheMainThread)
{
    world_.tool(ToolRole::ps).takes(2s).prints("1 0 1 launchd\n");
    const Host host = world_.host();
    std::optional<std::string> result;
    Shell::offMain<std::optional<std::string>>(
        host, [host] { return Shell::run(host, host.platform.tool(ToolRole::ps)); },
        [&result](std::optional<std::string> text) { result = std::move(text); });
    EXPECT_EQ(result, std::nullopt) << "the caller is not held up";
    world_.advance(1s);
    EXPECT_EQ(result, std::nullopt);
    world_.advance(2s);
    EXPECT_EQ(result, "1 0 1 launchd\n");
}

} // namespace
} // namespace quellon
