#include "QuellonHost/Posix/PosixRunLoop.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <gtest/gtest.h>
#include <mutex>
#include <poll.h>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;

bool isReadable(int descriptor)
{
    pollfd waited{descriptor, POLLIN, 0};
    return poll(&waited, 1, 0) == 1;
}

TEST(PosixRunLoop, runsUntilQuit)
{
    PosixRunLoop loop;
    int count = 0;
    const auto timer = loop.every(1ms, [&] {
        if (++count == 3) loop.quit();
    });
    loop.run();
    EXPECT_EQ(count, 3);
    loop.run(); // returns at once
    EXPECT_EQ(count, 3);
}

TEST(PosixRunLoop, quitFromAnotherThreadAndNothingRunsAfterIt)
{
    PosixRunLoop loop;
    std::thread other{[&] { loop.quit(); }};
    loop.run();
    other.join();
    bool ran = false;
    loop.post([&] { ran = true; });
    loop.turn();
    EXPECT_FALSE(ran);
}

TEST(PosixRunLoop, quitStopsTheTurn)
{
    PosixRunLoop loop;
    bool ran = false;
    loop.post([&] { loop.quit(); });
    loop.post([&] { ran = true; });
    loop.run();
    EXPECT_FALSE(ran);
}

TEST(PosixRunLoop, tellsAnotherLoopWhenToLook)
{
    PosixRunLoop loop;
    EXPECT_FALSE(isReadable(loop.descriptor()));
    EXPECT_EQ(loop.nextDeadline(), std::nullopt);

    const auto timer = loop.after(1000s, [] {});
    EXPECT_TRUE(isReadable(loop.descriptor())) << "the deadline has moved";
    loop.turn();
    EXPECT_FALSE(isReadable(loop.descriptor()));
    ASSERT_TRUE(loop.nextDeadline().has_value());
    EXPECT_LE(*loop.nextDeadline(), 1000s);
    EXPECT_GT(*loop.nextDeadline(), 900s);

    bool ran = false;
    loop.post([&] { ran = true; });
    EXPECT_TRUE(isReadable(loop.descriptor()));
    EXPECT_EQ(loop.nextDeadline(), Seconds{0});
    loop.turn();
    EXPECT_TRUE(ran);
    EXPECT_FALSE(isReadable(loop.descriptor()));
}

TEST(PosixRunLoop, aTurnDoesNotRunWhatItsOwnWorkPosts)
{
    PosixRunLoop loop;
    int count = 0;
    std::function<void()> again = [&] {
        ++count;
        loop.post(again);
    };
    loop.post(again);
    loop.turn();
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(isReadable(loop.descriptor()));
    loop.turn();
    EXPECT_EQ(count, 2);
}

TEST(PosixRunLoop, postsFromManyThreadsAllArrive)
{
    constexpr int threadCount = 4;
    constexpr int posts = 2000;
    PosixRunLoop loop;
    std::vector<int> next(threadCount, 0);
    int arrived = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < posts; ++i) {
                loop.post([&, thread, i] {
                    EXPECT_EQ(next[static_cast<std::size_t>(thread)]++, i) << "in the order of the thread";
                    if (++arrived == threadCount * posts) loop.quit();
                });
            }
        });
    }
    loop.run();
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(arrived, threadCount * posts);
}

TEST(PosixRunLoop, backgroundWorkRunsSideBySideAndBeyondTheThreads)
{
    PosixRunLoop loop;
    std::mutex lock;
    std::condition_variable changed;
    std::size_t waiting = 0;
    std::size_t done = 0;
    constexpr std::size_t pieces = WorkerPool::mostThreads + 5;
    std::set<std::thread::id> threads;
    for (std::size_t i = 0; i < pieces; ++i) {
        loop.background(
            [&] {
                std::unique_lock guard{lock};
                threads.insert(std::this_thread::get_id());
                ++waiting;
                changed.notify_all();
                changed.wait(guard, [&] { return waiting >= WorkerPool::mostThreads; });
            },
            [&] {
                if (++done == pieces) loop.quit();
            });
    }
    loop.run();
    EXPECT_EQ(done, pieces);
    EXPECT_EQ(threads.size(), WorkerPool::mostThreads);
}

TEST(PosixRunLoop, idleThreadsAreUsedAgain)
{
    PosixRunLoop loop;
    std::set<std::thread::id> threads;
    std::function<void()> next;
    int rounds = 0;
    next = [&] {
        if (++rounds == 50) return loop.quit();
        loop.background([&] { threads.insert(std::this_thread::get_id()); }, next);
    };
    next();
    loop.run();
    EXPECT_LE(threads.size(), WorkerPool::mostThreads) << "a thread may still be on its way back at the next piece";
}

TEST(PosixRunLoop, endWaitsForWorkThatHasBegun)
{
    std::atomic<bool> ended{false};
    bool done = false;
    {
        PosixRunLoop loop;
        std::atomic<bool> begun{false};
        loop.background(
            [&] {
                begun = true;
                std::this_thread::yield();
                ended = true;
            },
            [&] { done = true; });
        while (!begun) std::this_thread::yield();
    }
    EXPECT_TRUE(ended);
    EXPECT_FALSE(done);
}

TEST(PosixRunLoop, signalsInterruptASleepingLoop)
{
    PosixRunLoop loop;
    const auto never = loop.after(1000s, [] {});
    const auto handle = loop.onSignal(RunLoop::Signal::terminate, [&] { loop.quit(); });
    std::thread sender{[] { (void)kill(getpid(), SIGTERM); }};
    loop.run();
    sender.join();
}

TEST(PosixRunLoop, aStormOfSignalsIsNoFlood)
{
    PosixRunLoop loop;
    int count = 0;
    const auto handle = loop.onSignal(RunLoop::Signal::terminate, [&] { ++count; });
    for (int i = 0; i < 200'000; ++i) (void)raise(SIGTERM); // more than the pipe holds
    loop.turn();
    loop.turn();
    EXPECT_GE(count, 1);
    EXPECT_LE(count, 2);
    EXPECT_FALSE(isReadable(loop.descriptor()));
    bool posted = false;
    loop.post([&] { posted = true; });
    EXPECT_TRUE(isReadable(loop.descriptor()));
    loop.turn();
    EXPECT_TRUE(posted);
}

TEST(PosixRunLoop, signalsEndAProcessAgainAfterwards)
{
    const pid_t child = fork();
    if (child == 0) {
        {
            PosixRunLoop loop;
            const auto handle = loop.onSignal(RunLoop::Signal::terminate, [] {});
            (void)raise(SIGTERM); // is noted
        }
        (void)raise(SIGTERM); // ends it
        _exit(1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

} // namespace
} // namespace quellon
