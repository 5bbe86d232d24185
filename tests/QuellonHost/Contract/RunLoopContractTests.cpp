#include "QuellonHost/Posix/PosixRunLoop.h"
#include "ScriptedHost.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <thread>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

/// The real loop, driven as another loop would drive it.
struct RealLoop {
    std::optional<PosixRunLoop> real{std::in_place};

    [[nodiscard]] RunLoop& loop() { return *real; }
    void end() { real.reset(); }
    bool runUntil(const std::function<bool()>& condition)
    {
        const auto patience = std::chrono::steady_clock::now() + 20s;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > patience) return false;
            pollfd waited{real->descriptor(), POLLIN, 0};
            const auto next = real->nextDeadline().value_or(1s);
            (void)poll(&waited, 1, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(next).count()));
            real->turn();
        }
        return true;
    }
    void raise(RunLoop::Signal signal) { ::raise(signal == RunLoop::Signal::terminate ? SIGTERM : SIGINT); }
    void keepBusy(Seconds duration)
    {
        const auto until = std::chrono::steady_clock::now() + duration;
        while (std::chrono::steady_clock::now() < until) {}
    }
    [[nodiscard]] Seconds now() const { return std::chrono::steady_clock::now().time_since_epoch(); }
};

struct ScriptedLoop {
    std::optional<ScriptedHost> host{std::in_place};

    [[nodiscard]] RunLoop& loop() { return host->host().runLoop; }
    void end() { host.reset(); }
    bool runUntil(const std::function<bool()>& condition)
    {
        host->advance(0s);
        for (int i = 0; i < 10'000 && !condition(); ++i) host->advance(1ms);
        return condition();
    }
    void raise(RunLoop::Signal signal) { host->raise(signal); }
    void keepBusy(Seconds duration)
    {
        host->tool(ToolRole::ps).prints("").takes(duration);
        (void)host->host().commands.run(Platform::macOS().tool(ToolRole::ps), duration);
    }
    [[nodiscard]] Seconds now() const { return host->elapsed(); }
};

template <typename World>
class RunLoopContract : public ::testing::Test {
protected:
    World world;
    std::vector<std::string> seen;

    RunLoop::Work note(std::string name)
    {
        return [this, name = std::move(name)] { seen.push_back(name); };
    }
    /// Everything that is due now has run afterwards.
    bool settle()
    {
        bool settled = false;
        world.loop().post([&] { settled = true; });
        return world.runUntil([&] { return settled; });
    }
};

using Worlds = ::testing::Types<RealLoop, ScriptedLoop>;
TYPED_TEST_SUITE(RunLoopContract, Worlds);

TYPED_TEST(RunLoopContract, postRunsLaterInOrder)
{
    auto& loop = this->world.loop();
    loop.post([&] {
        this->seen.push_back("first");
        loop.post(this->note("nested"));
        this->seen.push_back("still first");
    });
    loop.post(this->note("second"));
    EXPECT_TRUE(this->seen.empty());
    ASSERT_TRUE(this->world.runUntil([&] { return this->seen.size() == 4; }));
    EXPECT_THAT(this->seen, ElementsAre("first", "still first", "second", "nested"));
}

TYPED_TEST(RunLoopContract, postFromAnotherThread)
{
    std::thread::id runner;
    std::thread{[&] { this->world.loop().post([&] { runner = std::this_thread::get_id(); }); }}.join();
    ASSERT_TRUE(this->world.runUntil([&] { return runner != std::thread::id{}; }));
    EXPECT_EQ(runner, std::this_thread::get_id());
}

TYPED_TEST(RunLoopContract, afterRunsOnceAndNotEarly)
{
    const Seconds begin = this->world.now();
    Seconds ran{-1};
    int count = 0;
    const auto handle = this->world.loop().after(20ms, [&] {
        ran = this->world.now();
        ++count;
    });
    const auto later = this->world.loop().after(60ms, this->note("later"));
    ASSERT_TRUE(this->world.runUntil([&] { return !this->seen.empty(); }));
    EXPECT_GE((ran - begin).count(), 0.02);
    EXPECT_EQ(count, 1);
}

TYPED_TEST(RunLoopContract, shorterDelayFirstWhateverTheOrderOfAsking)
{
    const auto slow = this->world.loop().after(30ms, this->note("slow"));
    const auto quick = this->world.loop().after(10ms, this->note("quick"));
    const auto none = this->world.loop().after(0s, this->note("none"));
    const auto negative = this->world.loop().after(-5s, this->note("negative"));
    ASSERT_TRUE(this->world.runUntil([&] { return this->seen.size() == 4; }));
    EXPECT_THAT(this->seen, ElementsAre("none", "negative", "quick", "slow"));
}

TYPED_TEST(RunLoopContract, everyRepeatsUntilItsHandleGoes)
{
    int count = 0;
    auto handle = this->world.loop().every(2ms, [&] { ++count; });
    ASSERT_TRUE(this->world.runUntil([&] { return count == 3; }));
    handle.reset();
    const auto later = this->world.loop().after(20ms, this->note("later"));
    ASSERT_TRUE(this->world.runUntil([&] { return !this->seen.empty(); }));
    EXPECT_EQ(count, 3);
}

TYPED_TEST(RunLoopContract, missedFiresBecomeOne)
{
    const Seconds begin = this->world.now();
    std::vector<double> fires;
    const auto handle = this->world.loop().every(100ms, [&] { fires.push_back((this->world.now() - begin).count()); });
    this->world.keepBusy(250ms); // the fires at 0.1 and 0.2 are missed
    ASSERT_TRUE(this->world.runUntil([&] { return fires.size() == 2; }));
    EXPECT_GE(fires[0], 0.25);
    EXPECT_GE(fires[1], 0.3);
}

TYPED_TEST(RunLoopContract, cancelledBeforeItRan)
{
    auto handle = this->world.loop().after(1ms, this->note("cancelled"));
    handle.reset();
    const auto later = this->world.loop().after(10ms, this->note("later"));
    ASSERT_TRUE(this->world.runUntil([&] { return !this->seen.empty(); }));
    EXPECT_THAT(this->seen, ElementsAre("later"));
}

TYPED_TEST(RunLoopContract, cancelledByWhatIsDueAtTheSameMoment)
{
    RunLoop::Handle victim;
    const auto killer = this->world.loop().after(5ms, [&] { victim.reset(); });
    victim = this->world.loop().after(5ms, this->note("victim"));
    this->world.keepBusy(6ms);
    const auto later = this->world.loop().after(5ms, this->note("later"));
    ASSERT_TRUE(this->world.runUntil([&] { return !this->seen.empty(); }));
    EXPECT_THAT(this->seen, ElementsAre("later"));
}

TYPED_TEST(RunLoopContract, timersMayCancelThemselves)
{
    int repeated = 0;
    std::string captured;
    RunLoop::Handle once;
    RunLoop::Handle again;
    once = this->world.loop().after(1ms, [&, text = std::string(100, 'x')] {
        once.reset();
        captured = text; // still there
    });
    again = this->world.loop().every(1ms, [&, text = std::string(100, 'y')] {
        again.reset();
        ++repeated;
        captured += text;
    });
    const auto later = this->world.loop().after(20ms, this->note("later"));
    ASSERT_TRUE(this->world.runUntil([&] { return !this->seen.empty(); }));
    EXPECT_EQ(repeated, 1);
    EXPECT_EQ(captured, std::string(100, 'x') + std::string(100, 'y'));
}

TYPED_TEST(RunLoopContract, timersMayMakeTimers)
{
    RunLoop::Handle inner;
    const auto outer =
        this->world.loop().after(1ms, [&] { inner = this->world.loop().after(1ms, this->note("inner")); });
    EXPECT_TRUE(this->world.runUntil([&] { return this->seen.size() == 1; }));
}

TYPED_TEST(RunLoopContract, handlesMayOutliveTheLoop)
{
    auto timer = this->world.loop().every(1s, this->note("never"));
    auto signal = this->world.loop().onSignal(RunLoop::Signal::interrupt, this->note("never"));
    this->world.loop().post(this->note("dropped"));
    this->world.end();
    timer.reset();
    signal.reset();
    EXPECT_TRUE(this->seen.empty());
}

TYPED_TEST(RunLoopContract, whatIsDroppedMayHoldHandles)
{
    auto held = std::make_shared<RunLoop::Handle>(this->world.loop().after(1s, [] {}));
    const std::weak_ptr<RunLoop::Handle> watched = held;
    this->world.loop().post([held = std::move(held)] {});
    this->world.end();
    EXPECT_TRUE(watched.expired());
}

TYPED_TEST(RunLoopContract, backgroundWorkIsElsewhereAndDoneIsHere)
{
    std::thread::id worker;
    std::thread::id finisher;
    this->world.loop().background([&] { worker = std::this_thread::get_id(); },
                                  [&] { finisher = std::this_thread::get_id(); });
    EXPECT_EQ(finisher, std::thread::id{});
    ASSERT_TRUE(this->world.runUntil([&] { return finisher != std::thread::id{}; }));
    EXPECT_EQ(finisher, std::this_thread::get_id());
    EXPECT_NE(worker, finisher);
}

TYPED_TEST(RunLoopContract, manyPiecesOfBackgroundWork)
{
    constexpr int pieces = 500;
    std::vector<int> results(pieces, 0);
    int done = 0;
    for (int i = 0; i < pieces; ++i) {
        this->world.loop().background([&results, i] { results[static_cast<std::size_t>(i)] = i * i; },
                                      [&done] { ++done; });
    }
    ASSERT_TRUE(this->world.runUntil([&] { return done == pieces; }));
    for (int i = 0; i < pieces; ++i) EXPECT_EQ(results[static_cast<std::size_t>(i)], i * i);
}

TYPED_TEST(RunLoopContract, backgroundWorkMayPost)
{
    this->world.loop().background([&] { this->world.loop().post(this->note("posted")); }, this->note("done"));
    ASSERT_TRUE(this->world.runUntil([&] { return this->seen.size() == 2; }));
    EXPECT_THAT(this->seen, ::testing::UnorderedElementsAre("posted", "done"));
}

TYPED_TEST(RunLoopContract, doneIsDroppedWhenTheLoopEndsFirst)
{
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    this->world.loop().background([] {}, [this, captured = std::move(captured)] { this->seen.push_back("done"); });
    this->world.end();
    EXPECT_TRUE(this->seen.empty());
    EXPECT_TRUE(watched.expired());
}

TYPED_TEST(RunLoopContract, signalsArriveOnTheMainThread)
{
    std::thread::id runner;
    const auto terminate = this->world.loop().onSignal(RunLoop::Signal::terminate, [&] {
        this->seen.push_back("terminate");
        runner = std::this_thread::get_id();
    });
    const auto interrupt = this->world.loop().onSignal(RunLoop::Signal::interrupt, this->note("interrupt"));
    this->world.raise(RunLoop::Signal::terminate);
    EXPECT_TRUE(this->seen.empty()) << "not in the middle of what the main thread does";
    ASSERT_TRUE(this->world.runUntil([&] { return !this->seen.empty(); }));
    EXPECT_THAT(this->seen, ElementsAre("terminate"));
    EXPECT_EQ(runner, std::this_thread::get_id());
    this->world.raise(RunLoop::Signal::interrupt);
    ASSERT_TRUE(this->world.runUntil([&] { return this->seen.size() == 2; }));
    EXPECT_EQ(this->seen.back(), "interrupt");
}

TYPED_TEST(RunLoopContract, everyOneWhoAskedForASignalIsTold)
{
    const auto first = this->world.loop().onSignal(RunLoop::Signal::terminate, this->note("first"));
    const auto second = this->world.loop().onSignal(RunLoop::Signal::terminate, this->note("second"));
    this->world.raise(RunLoop::Signal::terminate);
    ASSERT_TRUE(this->world.runUntil([&] { return this->seen.size() == 2; }));
    EXPECT_THAT(this->seen, ElementsAre("first", "second"));
}

TYPED_TEST(RunLoopContract, signalWithoutItsHandleHasNoEffect)
{
    auto handle = this->world.loop().onSignal(RunLoop::Signal::terminate, this->note("terminate"));
    this->world.raise(RunLoop::Signal::terminate);
    handle.reset(); // also for the one that has arrived and not been told yet
    ASSERT_TRUE(this->settle());
    this->world.raise(RunLoop::Signal::terminate);
    ASSERT_TRUE(this->settle());
    EXPECT_TRUE(this->seen.empty());
}

} // namespace
} // namespace quellon
