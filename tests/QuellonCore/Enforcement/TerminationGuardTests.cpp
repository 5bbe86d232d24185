#include "QuellonCore/Enforcement/TerminationGuard.h"
#include "ScriptedHost.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class TerminationGuardTest : public ::testing::Test {
protected:
    ScriptedHost host;
    RunLoop& runLoop = host.host().runLoop;
    ProcessControl& processes = host.host().processes;
    std::vector<std::string> seen;

    void TearDown() override { TerminationGuard::forgetInstalled(); }
    std::shared_ptr<TerminationGuard> guard()
    {
        return TerminationGuard::make(runLoop, processes, [this] {
            EXPECT_EQ(host.exitStatus(), std::nullopt) << "the clean-up comes first";
            seen.push_back("clean-up");
        });
    }
};

TEST_F(TerminationGuardTest, eitherSignalCleansUpAndExitsWithZero)
{
    for (const auto signal : {RunLoop::Signal::terminate, RunLoop::Signal::interrupt}) {
        ScriptedHost world;
        int cleanups = 0;
        const Host parts = world.host();
        TerminationGuard::make(parts.runLoop, parts.processes, [&] { ++cleanups; })->install();
        world.raise(signal);
        EXPECT_EQ(cleanups, 0) << "in the main loop, not in the middle of something else";
        EXPECT_EQ(world.exitStatus(), std::nullopt);
        world.advance(0s);
        EXPECT_EQ(cleanups, 1);
        EXPECT_EQ(world.exitStatus(), 0);
    }
}

TEST_F(TerminationGuardTest, aSecondSignalDuringTheCleanUpHasNoEffect)
{
    TerminationGuard::make(runLoop, processes, [this] {
        seen.push_back("begin");
        host.raise(RunLoop::Signal::terminate);
        host.raise(RunLoop::Signal::interrupt);
        seen.push_back("end");
    })->install();
    host.raise(RunLoop::Signal::terminate);
    host.advance(10s);
    EXPECT_THAT(seen, ElementsAre("begin", "end"));
    EXPECT_EQ(host.exitStatus(), 0);
}

TEST_F(TerminationGuardTest, withoutAHookItExitsAndTouchesNoFile)
{
    TerminationGuard::make(runLoop, processes, [] {})->install();
    host.raise(RunLoop::Signal::terminate);
    host.advance(0s);
    EXPECT_EQ(host.exitStatus(), 0);
    EXPECT_TRUE(host.files().list().empty());
    EXPECT_EQ(host.files().writes(), 0U);
}

TEST_F(TerminationGuardTest, doesNothingBeforeItIsInstalled)
{
    const auto notInstalled = guard();
    host.raise(RunLoop::Signal::terminate);
    host.advance(0s);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(host.exitStatus(), 143) << "the signal's own effect";
}

TEST_F(TerminationGuardTest, livesOnWhateverItsCreatorDoes)
{
    std::weak_ptr<TerminationGuard> watched;
    {
        const auto created = guard();
        created->install();
        watched = created;
    }
    EXPECT_FALSE(watched.expired());
    ASSERT_EQ(TerminationGuard::installed().size(), 1U);
    EXPECT_EQ(TerminationGuard::installed()[0], watched.lock());
    host.raise(RunLoop::Signal::interrupt);
    host.advance(0s);
    EXPECT_THAT(seen, ElementsAre("clean-up"));
}

TEST_F(TerminationGuardTest, mayOutliveTheRunLoop)
{
    {
        ScriptedHost shortLived;
        const Host parts = shortLived.host();
        TerminationGuard::make(parts.runLoop, parts.processes, [] {})->install();
    }
    ASSERT_EQ(TerminationGuard::installed().size(), 1U);
    TerminationGuard::forgetInstalled();
}

/// Keeps what `onSignal` is given beyond the life of its handle, as a system does that has an event under way.
class SignalKeeper final : public RunLoop {
public:
    std::vector<std::pair<Signal, Work>> asked;

    void post(Work) override {}
    void postAfter(Seconds, Work) override {}
    [[nodiscard]] Handle after(Seconds, Work) override { return nullptr; }
    [[nodiscard]] Handle every(Seconds, Work) override { return nullptr; }
    void background(Work, Work) override {}
    [[nodiscard]] Handle onSignal(Signal signal, Work work) override
    {
        asked.emplace_back(signal, std::move(work));
        return nullptr;
    }
};

TEST_F(TerminationGuardTest, takesTerminateThenInterruptAndExitsEvenWhenItIsGone)
{
    SignalKeeper keeper;
    TerminationGuard::make(keeper, processes, [this] { seen.push_back("clean-up"); })->install();
    ASSERT_EQ(keeper.asked.size(), 2U);
    EXPECT_EQ(keeper.asked[0].first, RunLoop::Signal::terminate);
    EXPECT_EQ(keeper.asked[1].first, RunLoop::Signal::interrupt);
    TerminationGuard::forgetInstalled(); // held only weakly, so this is the end of it
    keeper.asked[1].second();
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(host.exitStatus(), 0);
}

} // namespace
} // namespace quellon
