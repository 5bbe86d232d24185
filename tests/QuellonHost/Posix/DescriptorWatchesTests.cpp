#include "QuellonHost/Posix/PosixRunLoop.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <utility>

namespace quellon {
namespace {

/// A run loop that a mistake can't keep running for ever.
class DescriptorWatchesTest : public testing::Test {
protected:
    PosixRunLoop loop;
    Pipe pipe = std::move(*makePipe());
    RunLoop::Handle watchdog = loop.after(Seconds{20}, [this] {
        ADD_FAILURE() << "nothing ended the loop";
        loop.quit();
    });

    void fill() const { ASSERT_EQ(write(pipe.writeEnd.get(), "x", 1), 1); }
    void empty() const
    {
        char byte = 0;
        ASSERT_EQ(read(pipe.readEnd.get(), &byte, 1), 1);
    }
};

TEST_F(DescriptorWatchesTest, eachReadinessIsTold)
{
    int calls = 0;
    const auto watch = loop.watch(pipe.readEnd.get(), [&] {
        empty();
        if (++calls == 3) {
            loop.quit();
        } else {
            loop.post([this] { fill(); });
        }
    });
    fill();
    loop.run();
    EXPECT_EQ(calls, 3);
}

TEST_F(DescriptorWatchesTest, whatIsNotReadIsToldAgain)
{
    int calls = 0;
    const auto watch = loop.watch(pipe.readEnd.get(), [&] {
        if (++calls == 3) loop.quit();
    });
    fill();
    loop.run();
    EXPECT_EQ(calls, 3);
}

TEST_F(DescriptorWatchesTest, theOtherEndIsGone)
{
    const auto watch = loop.watch(pipe.readEnd.get(), [&] { loop.quit(); });
    loop.post([this] { pipe.writeEnd.close(); });
    loop.run();
}

TEST_F(DescriptorWatchesTest, aWatchMayEndItselfAndOthers)
{
    int calls = 0;
    RunLoop::Handle first;
    RunLoop::Handle second;
    const auto work = [&] {
        ++calls;
        first.reset();
        second.reset();
        loop.post([this] { loop.quit(); });
    };
    first = loop.watch(pipe.readEnd.get(), work);
    second = loop.watch(pipe.readEnd.get(), work);
    fill();
    loop.run();
    EXPECT_EQ(calls, 1);
}

TEST_F(DescriptorWatchesTest, timersGoOnBesideAReadyDescriptor)
{
    int calls = 0;
    const auto watch = loop.watch(pipe.readEnd.get(), [&] { ++calls; });
    const auto end = loop.after(Seconds{0.02}, [this] { loop.quit(); });
    fill();
    loop.run();
    EXPECT_GT(calls, 0);
}

TEST(DescriptorWatches, handlesMayOutliveThem)
{
    RunLoop::Handle handle;
    {
        DescriptorWatches watches;
        handle = watches.add(STDIN_FILENO, [] { FAIL(); });
    }
    handle.reset();
}

} // namespace
} // namespace quellon
