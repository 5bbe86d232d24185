#include "ScriptedHost.h"
#include "ScriptedObserver.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Notes what it is told, each as a word and what it is about.
class Notes final : public ScriptedObserver {
public:
    std::vector<std::string> lines;

    void ran(const Command& command) override { lines.push_back("ran " + command.path); }
    void spawned(const Command& command) override { lines.push_back("spawned " + command.path); }
    void signalled(const SentSignal& signal) override
    {
        lines.push_back("signalled " + std::to_string(signal.pid) + (signal.reached ? "" : " in vain"));
    }
    void saved(const std::filesystem::path& file) override { lines.push_back("saved " + file.string()); }
    void removed(const std::filesystem::path& file) override { lines.push_back("removed " + file.string()); }
    void logged(std::string_view category, LogLevel /*level*/, std::string_view message) override
    {
        lines.push_back("logged " + std::string{category} + " " + std::string{message});
    }
};

class ScriptedObserverTest : public ::testing::Test {
protected:
    ScriptedHost scripted;
    Host host = scripted;
    Notes notes;

    ScriptedObserverTest() { scripted.observe(&notes); }
    ~ScriptedObserverTest() override { scripted.observe(nullptr); }

    void run(ToolRole role) { static_cast<void>(host.commands.run(host.platform.tool(role), 4s)); }
};

TEST_F(ScriptedObserverTest, isToldOfEachEffectInItsOrder)
{
    scripted.tool(ToolRole::ps).prints("");
    scripted.process(501, {"A"});
    run(ToolRole::ps);
    host.processes.reference(501)->send(ProcessSignal::stop);
    ASSERT_TRUE(host.processes.spawnDetached({"/bin/sh", {}}));
    host.log.write("shell", LogLevel::error, "line");
    ASSERT_TRUE(host.files.write("/tmp/a.tmp", "x"));
    ASSERT_TRUE(host.files.replace("/tmp/a.tmp", "/tmp/a"));
    ASSERT_TRUE(host.files.remove("/tmp/a"));
    EXPECT_THAT(notes.lines, ElementsAre("ran /bin/ps", "signalled 501", "spawned /bin/sh", "logged shell line",
                                         "saved /tmp/a", "removed /tmp/a"));
}

TEST_F(ScriptedObserverTest, isNotToldOfWhatFailed)
{
    run(ToolRole::ps);
    scripted.canSpawn(false);
    EXPECT_FALSE(host.processes.spawnDetached({"/bin/sh", {}}));
    EXPECT_FALSE(host.files.remove("/tmp/a"));
    EXPECT_FALSE(host.files.replace("/tmp/a.tmp", "/tmp/a"));
    EXPECT_THAT(notes.lines, IsEmpty());
    host.processes.reference(501)->send(ProcessSignal::kill);
    EXPECT_THAT(notes.lines, ElementsAre("signalled 501 in vain"));
}

TEST_F(ScriptedObserverTest, nobodyIsToldOnceItHasGone)
{
    scripted.observe(nullptr);
    host.log.write("shell", LogLevel::info, "line");
    EXPECT_THAT(notes.lines, IsEmpty());
}

TEST_F(ScriptedObserverTest, restartEndsAProcessAndAllThatItHadBegun)
{
    std::vector<std::string> seen;
    const auto note = [&seen](std::string what) { return [&seen, what] { seen.push_back(what); }; };
    scripted.tool(ToolRole::route).takes(2s).prints("");
    const auto timer = host.runLoop.every(1s, note("timer"));
    const auto handler = host.runLoop.onSignal(RunLoop::Signal::terminate, note("signal"));
    host.runLoop.postAfter(5s, note("later"));
    host.runLoop.background(
        [this] {
            run(ToolRole::route);
            run(ToolRole::route); // would begin after the end
        },
        note("done"));
    scripted.advance(1s);
    EXPECT_THAT(seen, ElementsAre("timer"));
    EXPECT_THAT(notes.lines, ElementsAre("ran /sbin/route"));

    host.runLoop.post(note("posted"));
    host.processes.exit(3);
    scripted.restart();
    EXPECT_EQ(scripted.exitStatus(), std::nullopt);
    scripted.advance(10s);
    EXPECT_THAT(seen, ElementsAre("timer"));
    EXPECT_THAT(notes.lines, ElementsAre("ran /sbin/route"));
    EXPECT_EQ(scripted.elapsed(), 11s);

    host.runLoop.post(note("of the next one"));
    scripted.advance(0s);
    EXPECT_THAT(seen, ElementsAre("timer", "of the next one"));
    scripted.deliver(RunLoop::Signal::terminate); // nobody has asked for it since
    EXPECT_EQ(scripted.exitStatus(), 128 + 15);
}

TEST_F(ScriptedObserverTest, aDeliveredSignalDoesNotWait)
{
    std::vector<std::string> seen;
    const auto handler = host.runLoop.onSignal(RunLoop::Signal::interrupt, [&] { seen.emplace_back("signal"); });
    host.runLoop.post([&] { seen.emplace_back("posted before"); });
    scripted.deliver(RunLoop::Signal::interrupt);
    EXPECT_THAT(seen, ElementsAre("signal"));
    EXPECT_EQ(scripted.exitStatus(), std::nullopt);
}

} // namespace
} // namespace quellon
