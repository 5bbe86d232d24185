#include "QuellonHost/Linux/LinuxCommandRunner.h"
#include "QuellonHost/Linux/ProbeClient.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "ScriptedParts.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Outcome = CommandResult::Outcome;

/// A helper that behaves as each request says. `pid` answers with its process id.
constexpr std::string_view fakeHelper = R"(#!/bin/sh
[ "$1" = serve ] || exit 9
echo $$ >> "$0.started"
answer() { printf '%s\n%s' "${#1}" "$1"; }
while read -r role argument; do
    case $role in
    pid) answer $$ ;;
    echo) answer "<$argument>" ;;
    empty) printf '0\n' ;;
    pieces) printf '1'; sleep 0.02; printf '0\n01234'; sleep 0.02; printf 56789 ;;
    big) printf '1000000\n'; head -c 1000000 /dev/zero ;;
    wait) until [ -e "$0.go" ]; do sleep 0.01; done; answer waited ;;
    stop) kill -STOP $$ ;;
    stop-in-the-middle) printf '10\nabc'; kill -STOP $$ ;;
    stubborn) trap '' TERM; kill -STOP $$ ;;
    die) exit 0 ;;
    die-after-the-count) printf '10\n'; exit 0 ;;
    die-in-the-count) printf 1; exit 0 ;;
    die-in-the-middle) printf '10\nabc'; exit 0 ;;
    rubbish) echo rubbish ;;
    rubbish-without-end) printf 'rubbish that never ends its line' ;;
    no-count) printf '\n' ;;
    negative) printf -- '-1\n' ;;
    with-unit) printf '3 bytes\nabc' ;;
    too-large) printf '67108865\n' ;;
    beyond-all-numbers) printf '99999999999999999999999\n' ;;
    surplus) printf '2\nabcd' ;;
    uncalled-for) answer fine; (sleep 0.05; echo more) & ;;
    leave-after) answer leaving; exit 0 ;;
    esac
done
echo ended >> "$0.ended"
)";

class ProbeClientTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
    ScriptedLog log;
    std::filesystem::path program = folder.script("helper", fakeHelper);
    ProbeClient client{program, log};

    CommandResult ask(const std::string& role, Seconds timeout = 20s) { return client.ask({role}, timeout); }

    /// The process ids of all helpers so far.
    std::vector<pid_t> started() const
    {
        std::ifstream file{program.string() + ".started"};
        std::vector<pid_t> result;
        for (pid_t pid = 0; file >> pid;) result.push_back(pid);
        return result;
    }
    static bool isGone(pid_t pid) { return kill(pid, 0) != 0 && errno == ESRCH; }
    static void waitUntilReadableOrZombie(pid_t pid)
    {
        siginfo_t info{};
        (void)waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT);
    }
};

TEST_F(ProbeClientTest, oneHelperAnswersEverything)
{
    EXPECT_EQ(client.pid(), std::nullopt);
    EXPECT_TRUE(started().empty()) << "not before it is needed";
    const std::string pid = ask("pid").output;
    EXPECT_EQ(client.ask({"echo", "wlan0"}, 20s), (CommandResult{Outcome::finished, "<wlan0>"}));
    EXPECT_EQ(ask("empty"), (CommandResult{Outcome::finished, ""}));
    EXPECT_EQ(ask("pieces"), (CommandResult{Outcome::finished, "0123456789"}));
    EXPECT_EQ(ask("big").output, std::string(1'000'000, '\0'));
    EXPECT_EQ(ask("pid").output, pid);
    ASSERT_TRUE(client.pid().has_value());
    EXPECT_EQ(std::to_string(*client.pid()), pid);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ProbeClientTest, whatCannotBeSent)
{
    struct Case {
        const char* name;
        std::vector<std::string> words;
    };
    const Case cases[] = {
        {"nothing", {}},
        {"an empty word", {"echo", ""}},
        {"a blank", {"echo", "a b"}},
        {"a line feed", {"echo", "a\nstop"}},
        {"a tab", {"echo", "a\tb"}},
        {"a null", {"echo", std::string(1, '\0')}},
        {"a delete character", {"echo", "\x7F"}},
        {"too long", {"echo", std::string(257, 'x')}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(client.ask(c.words, 20s), (CommandResult{Outcome::failedToStart, ""}));
    }
    EXPECT_TRUE(started().empty());
    EXPECT_EQ(client.ask({"echo", "ümlaut0"}, 20s).output.size(), std::string{"<ümlaut0>"}.size());
}

TEST_F(ProbeClientTest, helperThatIsNotThere)
{
    ProbeClient missing{folder / "missing", log};
    EXPECT_EQ(missing.ask({"pid"}, 20s), (CommandResult{Outcome::failedToStart, ""}));
    EXPECT_EQ(missing.ask({"pid"}, 20s), (CommandResult{Outcome::failedToStart, ""}));
}

TEST_F(ProbeClientTest, hangs)
{
    ASSERT_EQ(ask("empty").outcome, Outcome::finished); // from here on a helper runs
    for (const char* role : {"stop", "stop-in-the-middle", "stubborn"}) {
        SCOPED_TRACE(role);
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(ask(role, 200ms), (CommandResult{Outcome::timedOut, ""}));
        EXPECT_GE(std::chrono::steady_clock::now() - begin, 200ms);
        EXPECT_TRUE(isGone(started().back())) << "killed and reaped";
        EXPECT_EQ(client.pid(), std::nullopt);
        const std::string answer = ask("pid").output;
        EXPECT_EQ(answer, std::to_string(started().back())) << "a new one answers";
    }
    EXPECT_TRUE(log.lines().empty()) << "whoever asked tells of a time-out";
}

TEST_F(ProbeClientTest, isLost)
{
    constexpr const char* cut = "quellon-probe ended before its answer was complete";
    constexpr const char* nonsense = "quellon-probe gave an answer that makes no sense";
    struct Case {
        const char* role;
        const char* line;
    };
    constexpr Case cases[] = {
        {"die-after-the-count", cut},
        {"die-in-the-count", cut},
        {"die-in-the-middle", cut},
        {"rubbish", nonsense},
        {"rubbish-without-end", nonsense},
        {"no-count", nonsense},
        {"negative", nonsense},
        {"with-unit", nonsense},
        {"too-large", nonsense},
        {"beyond-all-numbers", nonsense},
        {"surplus", nonsense},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.role);
        log.clear();
        EXPECT_EQ(ask(c.role), (CommandResult{Outcome::lost, ""}));
        EXPECT_EQ(log.lines(), (std::vector<LogLine>{{"shell", LogLevel::error, c.line}}));
        EXPECT_TRUE(isGone(started().back()));
        const std::string answer = ask("pid").output;
        EXPECT_EQ(answer, std::to_string(started().back())) << "a new one answers";
    }
}

TEST_F(ProbeClientTest, diesOfTheRequestItself)
{
    EXPECT_EQ(ask("die"), (CommandResult{Outcome::lost, ""})) << "the first one, newly started";
    EXPECT_EQ(started().size(), 1U);
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(ask("pid").outcome, Outcome::finished);
    EXPECT_EQ(ask("die"), (CommandResult{Outcome::lost, ""})) << "might have died before, so one new one was tried";
    EXPECT_EQ(started().size(), 3U);
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(ProbeClientTest, deathWhileIdleCostsNothing)
{
    const std::string first = ask("pid").output;
    const pid_t pid = *client.pid();
    ASSERT_EQ(kill(pid, SIGKILL), 0);
    waitUntilReadableOrZombie(pid);
    const std::string second = ask("pid").output;
    EXPECT_FALSE(second.empty());
    EXPECT_NE(second, first);
    EXPECT_TRUE(isGone(pid));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ProbeClientTest, deathAfterTheAnswerCostsNothing)
{
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(ask("leave-after").output, "leaving");
        EXPECT_EQ(ask("empty").outcome, Outcome::finished);
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ProbeClientTest, deathWhileIdleRacesWithTheQuestion)
{
    for (int round = 0; round < 30; ++round) {
        ASSERT_EQ(ask("empty").outcome, Outcome::finished);
        ASSERT_EQ(kill(*client.pid(), SIGKILL), 0); // and it may be seen before, in, or after the writing
        ASSERT_EQ(ask("empty").outcome, Outcome::finished) << round;
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ProbeClientTest, speaksUncalledFor)
{
    EXPECT_EQ(ask("uncalled-for").output, "fine");
    const pid_t talker = *client.pid();
    const auto patience = std::chrono::steady_clock::now() + 20s;
    while (client.pid() == talker && std::chrono::steady_clock::now() < patience) { // until it has spoken
        const auto result = ask("empty");
        EXPECT_EQ(result.output, "");
    }
    EXPECT_NE(client.pid(), talker);
}

TEST_F(ProbeClientTest, waitingForAnotherRequestCounts)
{
    (void)ask("pid");
    std::thread first{[&] { EXPECT_EQ(ask("wait", 60s).output, "waited"); }};
    while (client.pid()) std::this_thread::yield(); // the request is under way
    EXPECT_EQ(ask("pid", 50ms), (CommandResult{Outcome::timedOut, ""}));
    std::ofstream{program.string() + ".go"} << "go";
    EXPECT_EQ(ask("pid", 20s).outcome, Outcome::finished);
    first.join();
    EXPECT_EQ(started().size(), 1U) << "the helper was busy, not hanging";
}

TEST_F(ProbeClientTest, manyThreadsGetTheirOwnAnswers)
{
    constexpr int threadCount = 8;
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([this, thread] {
            for (int i = 0; i < 50; ++i) {
                const std::string word = std::to_string(thread) + "." + std::to_string(i);
                ASSERT_EQ(client.ask({"echo", word}, 60s).output, "<" + word + ">");
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(started().size(), 1U);
}

TEST_F(ProbeClientTest, cancelEndsTheRequestUnderWay)
{
    (void)ask("pid");
    CommandResult result;
    CommandResult waiting;
    std::thread first{[&] { result = ask("stop", 1000s); }};
    while (client.pid()) std::this_thread::yield();
    std::thread second{[&] { waiting = ask("pid", 1000s); }};
    client.cancel();
    first.join();
    second.join();
    EXPECT_EQ(result, (CommandResult{Outcome::lost, ""}));
    EXPECT_EQ(waiting, (CommandResult{Outcome::lost, ""}));
    EXPECT_EQ(ask("pid").outcome, Outcome::lost);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ProbeClientTest, leadsItsOwnGroup)
{
    (void)ask("pid");
    EXPECT_EQ(getpgid(*client.pid()), *client.pid());
    EXPECT_NE(getpgid(0), *client.pid());
}

TEST_F(ProbeClientTest, endsWithTheClientByItself)
{
    pid_t pid = 0;
    {
        ProbeClient shortLived{program, log};
        (void)shortLived.ask({"pid"}, 20s);
        pid = *shortLived.pid();
    }
    EXPECT_TRUE(isGone(pid));
    EXPECT_TRUE(std::filesystem::exists(program.string() + ".ended")) << "by the end of its input, not by force";
}

TEST_F(ProbeClientTest, endsByForceWhenItMust)
{
    pid_t pid = 0;
    {
        ProbeClient shortLived{program, log};
        (void)shortLived.ask({"pid"}, 20s);
        pid = *shortLived.pid();
        ASSERT_EQ(kill(pid, SIGSTOP), 0);
    }
    EXPECT_TRUE(isGone(pid));
}

TEST_F(ProbeClientTest, endsWhenTheGuardIsKilled)
{
    const std::string note = folder / "pid";
    const pid_t guard = fork();
    if (guard == 0) {
        ScriptedLog none;
        ProbeClient own{program, none};
        std::ofstream{note} << own.ask({"pid"}, 20s).output;
        (void)raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(guard, &status, 0), guard);
    ASSERT_TRUE(WIFSIGNALED(status));
    const auto ended = program.string() + ".ended";
    const auto patience = std::chrono::steady_clock::now() + 20s;
    while (!std::filesystem::exists(ended) && std::chrono::steady_clock::now() < patience) std::this_thread::yield();
    EXPECT_TRUE(std::filesystem::exists(ended));
}

TEST_F(ProbeClientTest, theRunnerSendsOnlyTheProbesCommandsThere)
{
    LinuxCommandRunner runner{program, log};
    EXPECT_EQ(runner.run({"quellon-probe", {"echo", "wlan0"}}, 20s).output, "<wlan0>");
    EXPECT_EQ(runner.run({"/bin/echo", {"child"}}, 20s).output, "child\n");
    EXPECT_EQ(runner.run({program.string(), {}}, 20s), (CommandResult{Outcome::finished, ""}))
        << "by its path: a child";
    EXPECT_EQ(started().size(), 1U);
    runner.cancel();
    EXPECT_EQ(runner.run({"quellon-probe", {"pid"}}, 20s).outcome, Outcome::lost);
    EXPECT_EQ(runner.run({"/bin/echo", {"child"}}, 20s).outcome, Outcome::lost);
}

} // namespace
} // namespace quellon
