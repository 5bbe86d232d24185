#include "QuellonHost/Posix/PosixCommandRunner.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "ScriptedParts.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Outcome = CommandResult::Outcome;

class PosixCommandRunnerTest : public ::testing::Test {
protected:
    ScriptedLog log;
    PosixCommandRunner runner{log};
    Seconds elapsed{0};

    CommandResult run(const Command& command, Seconds timeout)
    {
        const auto begin = std::chrono::steady_clock::now();
        auto result = runner.run(command, timeout);
        elapsed = std::chrono::steady_clock::now() - begin;
        return result;
    }
    CommandResult shell(const std::string& script, Seconds timeout)
    {
        return run({"/bin/sh", {"-c", script}}, timeout);
    }

    /// True when this process has no child at all, ended or not.
    static bool hasNoChildren()
    {
        siginfo_t info{};
        return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
    }
    static std::size_t openDescriptors()
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator{"/proc/self/fd"}, {}));
    }
    /// What a child gets: the two that it always has, and standard input when this process has one.
    static std::set<int> inheritableDescriptors()
    {
        std::set<int> result{STDOUT_FILENO, STDERR_FILENO};
        if (fcntl(STDIN_FILENO, F_GETFD) >= 0) result.insert(STDIN_FILENO);
        return result;
    }
    /// What a child that lists its own descriptors has beyond these and the folder that it lists; empty when nothing.
    static std::string surplus(const std::string& list, const std::set<int>& inherited)
    {
        std::istringstream lines{list};
        std::vector<int> more;
        std::size_t count = 0;
        for (int number = 0; lines >> number; ++count) {
            if (!inherited.contains(number)) more.push_back(number);
        }
        return more.size() == 1 && count == inherited.size() + 1 ? "" : "the child has:\n" + list;
    }
};

TEST_F(PosixCommandRunnerTest, howAChildMayEnd)
{
    struct Case {
        const char* name;
        const char* script;
        CommandResult result;
    };
    const Case cases[] = {
        {"prints and ends", "printf text", {Outcome::finished, "text"}},
        {"ends with 1 and prints nothing", "exit 1", {Outcome::finished, ""}},
        {"ends with 3 after text", "printf text; exit 3", {Outcome::finished, "text"}},
        {"dies by a signal after text", "printf text; kill -KILL $$", {Outcome::finished, "text"}},
        {"standard error is discarded", "printf bad >&2; printf good", {Outcome::finished, "good"}},
        {"one byte that is not UTF-8",
         "printf 'a\\377b'",
         {Outcome::finished, "a\xFF"
                             "b"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(shell(c.script, 20s), c.result);
    }
    EXPECT_TRUE(hasNoChildren());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(PosixCommandRunnerTest, aMegabyteDoesNotStall)
{
    const auto result = shell("head -c 1048576 /dev/zero", 20s);
    EXPECT_EQ(result.outcome, Outcome::finished);
    EXPECT_EQ(result.output, std::string(1'048'576, '\0'));
}

TEST_F(PosixCommandRunnerTest, whatCannotBeStarted)
{
    const testing::TemporaryFolder folder;
    std::ofstream{folder / "plain"} << "no program";
    const std::string paths[] = {"/no/such/program", "", "sh", folder.path().string(), (folder / "plain").string()};
    for (const auto& path : paths) {
        SCOPED_TRACE(path);
        EXPECT_EQ(run({path, {}}, 10s), (CommandResult{Outcome::failedToStart, ""}));
    }
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, sleepsPastItsBudget)
{
    bool endedWithTheChild = false; // a busy machine may need more than one try
    for (int tries = 0; tries < 5 && !endedWithTheChild; ++tries) {
        EXPECT_EQ(shell("printf partial; exec sleep 1000", 150ms), (CommandResult{Outcome::timedOut, ""}));
        EXPECT_GE(elapsed, 150ms);
        endedWithTheChild = elapsed < 1s;
    }
    EXPECT_TRUE(endedWithTheChild) << "the end of file comes with the child's death, not a second later";
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, ignoresTheRequestToTerminate)
{
    EXPECT_EQ(shell("trap '' TERM; kill -STOP $$", 150ms).outcome, Outcome::timedOut);
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, aGrandchildHoldsThePipe)
{
    EXPECT_EQ(shell("sleep 4 & exec sleep 1000", 100ms).outcome, Outcome::timedOut);
    EXPECT_GE(elapsed, 1100ms) << "the end of file is awaited";
    EXPECT_LT(elapsed, 3500ms) << "but for one second only";
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, theEndIsThatOfTheOutput)
{
    EXPECT_EQ(shell("(sleep 0.3; printf late) & printf early", 20s), (CommandResult{Outcome::finished, "earlylate"}));
    EXPECT_GE(elapsed, 300ms);
}

TEST_F(PosixCommandRunnerTest, closesItsOutputAndKeepsRunning)
{
    CommandResult result;
    for (int tries = 0; tries < 5 && result.outcome != Outcome::finished; ++tries) { // a busy machine starts it late
        result = shell("printf text; exec 1>&-; sleep 0.5", 250ms);
    }
    EXPECT_EQ(result, (CommandResult{Outcome::finished, "text"}));
    EXPECT_GE(elapsed, 500ms) << "beyond the budget: the exit is awaited without bound";
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, floodsPastItsBudget)
{
    EXPECT_EQ(run({"/usr/bin/yes", {}}, 300ms), (CommandResult{Outcome::timedOut, ""}));
    EXPECT_LT(elapsed, 3s);
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, printsMoreThanIsBelieved)
{
    const auto most = PosixCommandRunner::mostOutput;
    EXPECT_EQ(shell("head -c " + std::to_string(most) + " /dev/zero", 60s).output.size(), most);
    EXPECT_EQ(shell("head -c " + std::to_string(most + 1) + " /dev/zero", 60s), (CommandResult{Outcome::lost, ""}));
    EXPECT_EQ(log.lines(), (std::vector<LogLine>{{"shell", LogLevel::error, "/bin/sh printed more than 64 MiB"}}));
}

TEST_F(PosixCommandRunnerTest, noTimeAtAll)
{
    EXPECT_EQ(shell("printf text", 0s).outcome, Outcome::timedOut);
    EXPECT_EQ(shell("printf text", -1s).outcome, Outcome::timedOut);
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, inheritsInputEnvironmentAndFolder)
{
    ASSERT_EQ(setenv("QUELLON_TEST_VARIABLE", "a value", 1), 0);
    EXPECT_EQ(shell("printf %s \"$QUELLON_TEST_VARIABLE\"", 20s).output, "a value");
    unsetenv("QUELLON_TEST_VARIABLE");
    EXPECT_EQ(shell("pwd -P", 20s).output, std::filesystem::current_path().string() + "\n");
    std::error_code closed;
    const auto input = std::filesystem::read_symlink("/proc/self/fd/0", closed);
    EXPECT_EQ(run({"/bin/readlink", {"/proc/self/fd/0"}}, 20s).output, closed ? "" : input.string() + "\n");
}

TEST_F(PosixCommandRunnerTest, argumentsArriveAsTheyAre)
{
    const Command command{"/bin/sh", {"-c", "printf '[%s]' \"$@\"", "sh", "a b", "", "*", "$HOME", "\n", "ü"}};
    EXPECT_EQ(run(command, 20s).output, "[a b][][*][$HOME][\n][ü]");
}

TEST_F(PosixCommandRunnerTest, signalsHaveTheirDefaultEffectOnAChild)
{
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    sigset_t all;
    sigset_t mask;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &mask);
    const auto result = run({"/bin/grep", {"-E", "^Sig(Blk|Ign)", "/proc/self/status"}}, 20s);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    std::signal(SIGPIPE, before);

    std::istringstream lines{result.output};
    std::string name;
    std::string bits;
    int seen = 0;
    for (; lines >> name >> bits; ++seen) {
        const auto value = std::stoull(bits, nullptr, 16);
        for (const int number : {SIGTERM, SIGINT, SIGPIPE}) EXPECT_EQ(value >> (number - 1) & 1U, 0U) << name << number;
    }
    EXPECT_EQ(seen, 2);
}

TEST_F(PosixCommandRunnerTest, eightAtOnceShareNothing)
{
    const std::size_t before = openDescriptors();
    const auto inherited = inheritableDescriptors();
    std::vector<std::string> strangers(8);
    {
        std::vector<std::thread> threads;
        threads.reserve(strangers.size());
        for (auto& stranger : strangers) {
            threads.emplace_back([&] {
                for (int round = 0; round < 25 && stranger.empty(); ++round) {
                    const auto result = runner.run({"/bin/ls", {"/proc/self/fd"}}, 20s);
                    stranger = surplus(result.output, inherited);
                }
            });
        }
        for (auto& thread : threads) thread.join();
    }
    for (const auto& stranger : strangers) EXPECT_EQ(stranger, "");
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(hasNoChildren());
}

TEST_F(PosixCommandRunnerTest, aSlowRunDoesNotHoldUpAnother)
{
    const testing::TemporaryFolder folder;
    std::atomic<bool> slowEnded{false};
    std::thread slow{[&] {
        (void)runner.run({"/bin/sh", {"-c", "echo > \"$0\"; exec sleep 1000", (folder / "began").string()}}, 60s);
        slowEnded = true;
    }};
    while (!std::filesystem::exists(folder / "began")) std::this_thread::yield();
    EXPECT_EQ(shell("printf quick", 20s).output, "quick");
    EXPECT_FALSE(slowEnded);
    runner.cancel();
    slow.join();
}

TEST_F(PosixCommandRunnerTest, neverLeavesADescriptor)
{
    const std::size_t before = openDescriptors();
    (void)shell("printf text", 20s);
    (void)run({"/no/such/program", {}}, 20s);
    (void)shell("exec sleep 1000", 50ms);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(PosixCommandRunnerTest, cancelEndsWhatRuns)
{
    struct Case {
        const char* name;
        const char* script;
    };
    constexpr Case cases[] = {
        {"while it is silent", "echo > \"$0\"; exec sleep 1000"},
        {"while it floods", "echo > \"$0\"; exec yes"},
        {"after it closed its output", "exec 1>&-; echo > \"$0\"; exec sleep 1000"},
        {"while it holds up its own end", "trap '' TERM INT; echo > \"$0\"; kill -STOP $$"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const testing::TemporaryFolder folder;
        PosixCommandRunner each{log};
        CommandResult result;
        std::thread caller{[&] {
            result = each.run({"/bin/sh", {"-c", c.script, (folder / "began").string()}}, 1000s);
        }};
        while (!std::filesystem::exists(folder / "began")) std::this_thread::yield();
        each.cancel();
        caller.join();
        EXPECT_EQ(result, (CommandResult{Outcome::lost, ""}));
        EXPECT_EQ(each.run({"/bin/sh", {"-c", "exit 0"}}, 10s).outcome, Outcome::lost) << "from now on";
        EXPECT_TRUE(hasNoChildren());
    }
    EXPECT_TRUE(log.lines().empty());
}

} // namespace
} // namespace quellon
