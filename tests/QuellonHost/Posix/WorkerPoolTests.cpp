#include "QuellonHost/Posix/WorkerPool.h"
#include "QuellonHost/Support/WithoutThreads.h"

#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace quellon {
namespace {

using testing::inUnprivilegedChild;
using testing::NoThreads;

bool isBlocked(int signal)
{
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return sigismember(&blocked, signal) == 1;
}

TEST(WorkerPool, withoutAnyThreadTheCallerDoesTheWork)
{
    EXPECT_TRUE(inUnprivilegedChild([] {
        std::thread::id worker;
        WorkerPool pool{{}};
        const NoThreads none;
        pool.add([&] { worker = std::this_thread::get_id(); });
        return NoThreads::holds() && worker == std::this_thread::get_id() && !isBlocked(SIGTERM);
    }));
}

TEST(WorkerPool, workOfTheCallerMayAddMore)
{
    EXPECT_TRUE(inUnprivilegedChild([] {
        int pieces = 0;
        WorkerPool pool{{}};
        const NoThreads none;
        pool.add([&] {
            ++pieces;
            pool.add([&] { ++pieces; });
        });
        return pieces == 2;
    }));
}

TEST(WorkerPool, threadsAreTriedAgain)
{
    EXPECT_TRUE(inUnprivilegedChild([] {
        std::promise<std::thread::id> worker;
        WorkerPool pool{{}};
        {
            const NoThreads none;
            pool.add([] {});
        }
        pool.add([&] { worker.set_value(std::this_thread::get_id()); });
        return worker.get_future().get() != std::this_thread::get_id();
    }));
}

TEST(WorkerPool, workWaitsForTheThreadsThatThereAre)
{
    EXPECT_TRUE(inUnprivilegedChild([] {
        std::promise<void> begun;
        std::promise<void> mayEnd;
        std::promise<std::thread::id> second;
        std::thread::id first;
        WorkerPool pool{{}};
        pool.add([&] {
            first = std::this_thread::get_id();
            begun.set_value();
            mayEnd.get_future().wait();
        });
        begun.get_future().wait();
        const NoThreads none;
        pool.add([&] { second.set_value(std::this_thread::get_id()); });
        mayEnd.set_value();
        return second.get_future().get() == first;
    }));
}

} // namespace
} // namespace quellon
