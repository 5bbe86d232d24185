#include "QuellonHost/Posix/PosixRunLoop.h"

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon {
namespace {

/// Runs `work` in a child process, since dispositions are the whole process's; how that ended, as waitpid tells it.
int endOf(const std::function<int()>& work)
{
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = -1;
    return waitpid(child, &status, 0) == child ? status : -1;
}

TEST(SignalRelay, whatEachSignalArrivesAs)
{
    struct Case {
        const char* name;
        int number;
        int terminated;
        int interrupted;
    };
    constexpr Case cases[] = {
        {"SIGTERM", SIGTERM, 1, 0},
        {"SIGHUP", SIGHUP, 1, 0},
        {"SIGQUIT", SIGQUIT, 1, 0},
        {"SIGINT", SIGINT, 0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const int status = endOf([&c] {
            (void)std::signal(c.number, SIG_DFL);
            PosixRunLoop loop;
            int terminated = 0;
            int interrupted = 0;
            const auto terminate = loop.onSignal(RunLoop::Signal::terminate, [&] { ++terminated; });
            const auto interrupt = loop.onSignal(RunLoop::Signal::interrupt, [&] { ++interrupted; });
            (void)raise(c.number);
            loop.turn();
            return terminated == c.terminated && interrupted == c.interrupted ? 0 : 1;
        });
        EXPECT_EQ(status, 0);
    }
}

TEST(SignalRelay, allThatMeanTheSameTogetherAreOneCall)
{
    const int status = endOf([] {
        PosixRunLoop loop;
        int count = 0;
        const auto handle = loop.onSignal(RunLoop::Signal::terminate, [&] { ++count; });
        for (const int number : {SIGTERM, SIGHUP, SIGQUIT}) (void)raise(number);
        loop.turn();
        return count;
    });
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST(SignalRelay, whatWasIgnoredBefore)
{
    struct Case {
        const char* name;
        int number;
        bool arrives;
    };
    constexpr Case cases[] = {
        {"SIGHUP stays ignored, as nohup wants it", SIGHUP, false},
        {"SIGTERM is taken all the same", SIGTERM, true},
        {"SIGQUIT too, which shells ignore for what runs in the background", SIGQUIT, true},
        {"and SIGINT", SIGINT, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const int status = endOf([&c] {
            (void)std::signal(c.number, SIG_IGN);
            bool arrived = false;
            PosixRunLoop loop;
            const auto terminate = loop.onSignal(RunLoop::Signal::terminate, [&] { arrived = true; });
            const auto interrupt = loop.onSignal(RunLoop::Signal::interrupt, [&] { arrived = true; });
            (void)raise(c.number);
            loop.turn();
            return arrived ? 1 : 0;
        });
        ASSERT_TRUE(WIFEXITED(status)) << status;
        EXPECT_EQ(WEXITSTATUS(status), c.arrives ? 1 : 0);
    }
}

TEST(SignalRelay, afterItEverySignalHasItsOwnEffectAgain)
{
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
        SCOPED_TRACE(number);
        const int status = endOf([number] {
            (void)std::signal(number, SIG_DFL);
            {
                PosixRunLoop loop;
                const auto terminate = loop.onSignal(RunLoop::Signal::terminate, [] {});
                const auto interrupt = loop.onSignal(RunLoop::Signal::interrupt, [] {});
                (void)raise(number); // is noted
            }
            (void)raise(number); // ends it
            return 1;
        });
        ASSERT_TRUE(WIFSIGNALED(status)) << status;
        EXPECT_EQ(WTERMSIG(status), number);
    }
}

} // namespace
} // namespace quellon
