#include "ScriptedHost.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using Outcome = CommandResult::Outcome;

class ScriptedHostTest : public ::testing::Test {
protected:
    ScriptedHost scripted;
    Host host = scripted;
    std::vector<std::string> seen;

    void note(const std::string& what)
    {
        seen.push_back(std::to_string(static_cast<int>(scripted.elapsed().count())) + " " + what);
    }
    CommandResult run(ToolRole role, Seconds timeout = 20s)
    {
        return host.commands.run(host.platform.tool(role), timeout);
    }
    /// Background work that runs the tools one after another and notes what they print.
    void collect(std::vector<ToolRole> roles, const std::string& name = "end")
    {
        auto texts = std::make_shared<std::string>();
        host.runLoop.background(
            [this, roles = std::move(roles), texts] {
                for (const auto role : roles) *texts += " " + run(role).output;
            },
            [this, texts, name] { note(name + *texts); });
    }
};

TEST_F(ScriptedHostTest, theWorldAtTheBeginning)
{
    using namespace std::chrono;
    constexpr Date first{sys_days{2026y / 3 / 15}.time_since_epoch() + 10h - referenceDateSince1970};
    EXPECT_EQ(scripted.now(), first);
    EXPECT_EQ(host.clock.now(), first);
    EXPECT_EQ(host.processes.processID(), 900);
    EXPECT_EQ(host.processes.processName(), "Quellon");
    EXPECT_EQ(host.platform, Platform::macOS());
    EXPECT_EQ(host.identifiers.next().text(), "00000000-0000-4000-8000-000000000001");
    EXPECT_EQ(host.identifiers.next().text(), "00000000-0000-4000-8000-000000000002");
    EXPECT_TRUE(host.addresses.ipv4Addresses().empty());
    EXPECT_TRUE(scripted.files().list().empty());
    EXPECT_EQ(run(ToolRole::nettop).outcome, Outcome::failedToStart);
}

TEST_F(ScriptedHostTest, nothingRunsByItself)
{
    host.runLoop.post([&] { note("posted"); });
    collect({});
    EXPECT_TRUE(seen.empty());
    scripted.advance(0s);
    EXPECT_THAT(seen, ElementsAre("0 posted", "0 end"));
    EXPECT_EQ(scripted.elapsed(), 0s);
}

TEST_F(ScriptedHostTest, budgets)
{
    struct Case {
        const char* name;
        double takes;
        Outcome outcome;
        double passed;
    };
    constexpr Case cases[] = {
        {"no time", 0.0, Outcome::finished, 0.0},
        {"below the budget", 3.9, Outcome::finished, 3.9},
        {"equal is in time", 4.0, Outcome::finished, 4.0},
        {"above is a time-out at the budget", 4.1, Outcome::timedOut, 4.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        scripted.tool(ToolRole::ps).prints("x").takes(Seconds{c.takes});
        const Seconds before = scripted.elapsed();
        const auto result = run(ToolRole::ps, 4s);
        EXPECT_EQ(result.outcome, c.outcome);
        EXPECT_EQ(result.output, c.outcome == Outcome::finished ? "x" : "");
        EXPECT_DOUBLE_EQ((scripted.elapsed() - before).count(), c.passed);
    }
    scripted.tool(ToolRole::ps).timesOut().takes(1s);
    EXPECT_EQ(run(ToolRole::ps, 4s).outcome, Outcome::timedOut);
    EXPECT_DOUBLE_EQ(scripted.elapsed().count(), 0.0 + 3.9 + 4.0 + 4.0 + 4.0);
    scripted.tool(ToolRole::ps).fails();
    EXPECT_EQ(run(ToolRole::ps, 4s).outcome, Outcome::failedToStart);
    EXPECT_DOUBLE_EQ(scripted.elapsed().count(), 15.9) << "a failed start takes no time";
    scripted.tool(ToolRole::ps).lost().takes(1s);
    EXPECT_EQ(run(ToolRole::ps, 4s), (CommandResult{Outcome::lost, ""}));
    EXPECT_EQ(scripted.log().messages("shell").size(), 1U);
}

TEST_F(ScriptedHostTest, theTimerComesBeforeTheEndThatIsDueWithIt)
{
    scripted.tool(ToolRole::nettop).prints("x").takes(5s);
    const auto timer = host.runLoop.every(5s, [&] {
        note("tick");
        if (seen.size() == 1) collect({ToolRole::nettop});
    });
    scripted.advance(10s);
    EXPECT_THAT(seen, ElementsAre("5 tick", "10 tick", "10 end x"));
}

TEST_F(ScriptedHostTest, anEndStandsWhereItsBeginningStood)
{
    scripted.tool(ToolRole::nettop).prints("x").takes(3s);
    collect({ToolRole::nettop});
    scripted.advance(1s);
    const auto later = host.runLoop.after(2s, [&] { note("later"); }); // due with the end, scheduled after it
    scripted.advance(2s);
    EXPECT_THAT(seen, ElementsAre("3 end x", "3 later"));
}

TEST_F(ScriptedHostTest, eachToolSeesTheWorldOfItsOwnStart)
{
    scripted.tool(ToolRole::nettop).prints("old").takes(4s);
    scripted.tool(ToolRole::ps).prints("old");
    collect({ToolRole::nettop, ToolRole::ps});
    scripted.advance(1s);
    scripted.tool(ToolRole::nettop).prints("new"); // too late for the run under way
    scripted.tool(ToolRole::ps).prints("new");     // in time
    scripted.advance(10s);
    EXPECT_THAT(seen, ElementsAre("4 end old new"));
    ASSERT_EQ(scripted.runs().size(), 2U);
    EXPECT_EQ(scripted.runs()[0], (ScriptedRun{Platform::macOS().tool(ToolRole::nettop), 0s}));
    EXPECT_EQ(scripted.runs()[1], (ScriptedRun{Platform::macOS().tool(ToolRole::ps), 4s}));
    EXPECT_EQ(scripted.runs(ToolRole::ps), 1U);
}

TEST_F(ScriptedHostTest, backgroundWorkSideBySide)
{
    scripted.tool(ToolRole::nettop).prints("n").takes(4s);
    scripted.tool(ToolRole::ps).prints("p").takes(1s);
    collect({ToolRole::nettop}, "slow");
    collect({ToolRole::ps, ToolRole::ps}, "quick");
    scripted.advance(3s);
    collect({ToolRole::ps}, "tied"); // due at 4, begun after the slow one
    scripted.advance(10s);
    EXPECT_THAT(seen, ElementsAre("2 quick p p", "4 slow n", "4 tied p"));
}

TEST_F(ScriptedHostTest, aBlockedMainThreadRunsTimersOnceAndLate)
{
    scripted.tool(ToolRole::networksetup).prints("x").takes(12s);
    const auto timer = host.runLoop.every(5s, [&] { note("tick"); });
    EXPECT_EQ(run(ToolRole::networksetup).output, "x");
    EXPECT_EQ(scripted.elapsed(), 12s);
    EXPECT_TRUE(seen.empty());
    scripted.advance(3s);
    EXPECT_THAT(seen, ElementsAre("12 tick", "15 tick"));
}

TEST_F(ScriptedHostTest, aBlockWithinAnAdvance)
{
    scripted.tool(ToolRole::ps).prints("x").takes(4s);
    const auto once = host.runLoop.after(1s, [&] { (void)run(ToolRole::ps); });
    const auto timer = host.runLoop.every(2s, [&] { note("tick"); });
    scripted.advance(2s); // the block ends at 5, and what came due in it runs then
    EXPECT_EQ(scripted.elapsed(), 5s);
    EXPECT_THAT(seen, ElementsAre("5 tick"));
    scripted.advance(1s);
    EXPECT_THAT(seen, ElementsAre("5 tick", "6 tick"));
}

TEST_F(ScriptedHostTest, backgroundWorkGoesOnWhileTheMainThreadIsBlocked)
{
    scripted.tool(ToolRole::nettop).prints("n").takes(3s);
    scripted.tool(ToolRole::route).prints("r").takes(2s);
    scripted.tool(ToolRole::ps).prints("p").takes(10s);
    collect({ToolRole::nettop, ToolRole::route});
    scripted.advance(1s);
    EXPECT_EQ(run(ToolRole::ps).output, "p");
    EXPECT_EQ(scripted.runs(ToolRole::route), 1U);
    EXPECT_EQ(scripted.runs().back().at, 3s);
    EXPECT_TRUE(seen.empty()) << "its end waits for the main thread";
    scripted.advance(0s);
    EXPECT_THAT(seen, ElementsAre("11 end n r"));
}

TEST_F(ScriptedHostTest, theClockJumpsAndTimersDoNot)
{
    const auto timer = host.runLoop.after(10s, [&] { note("due"); });
    scripted.setClock(Date{Seconds{1000}});
    EXPECT_EQ(host.clock.now(), Date{Seconds{1000}});
    scripted.advance(9s);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(host.clock.now(), Date{Seconds{1009}});
    scripted.advance(1s);
    EXPECT_THAT(seen, ElementsAre("10 due"));
}

TEST_F(ScriptedHostTest, rolesThatShareAPathAreToldApart)
{
    scripted.tool(ToolRole::ps).prints("table");
    scripted.tool(ToolRole::startTime).answers([](const auto& arguments) { return "start of " + arguments.at(0); });
    scripted.tool(ToolRole::parent).answers([](const auto&) { return std::nullopt; });
    EXPECT_EQ(host.commands.run(host.platform.tool(ToolRole::ps), 1s).output, "table");
    EXPECT_EQ(host.commands.run(host.platform.tool(ToolRole::startTime, {"501"}), 1s).output, "start of 501");
    EXPECT_EQ(host.commands.run(host.platform.tool(ToolRole::parent, {"501"}), 1s).outcome, Outcome::failedToStart);
    EXPECT_EQ(host.commands.run({"/bin/ps", {"-x"}}, 1s).outcome, Outcome::failedToStart);
}

TEST_F(ScriptedHostTest, linux)
{
    ScriptedHost world;
    world.platform(Platform::linux());
    world.tool(ToolRole::ifconfig).answers([](const auto& arguments) { return arguments.at(0); });
    const Host parts = world;
    EXPECT_EQ(parts.platform.name, "Linux");
    EXPECT_EQ(parts.commands.run({"quellon-probe", {"ifconfig", "wlan0"}}, 1s).output, "wlan0");
    EXPECT_EQ(parts.files.applicationSupportDirectory(), "/home/user/.local/share");
}

TEST_F(ScriptedHostTest, exitEndsTheLoop)
{
    host.runLoop.post([&] { host.processes.exit(3); });
    host.runLoop.post([&] { note("never"); });
    scripted.advance(100s);
    host.processes.exit(4);
    EXPECT_EQ(scripted.exitStatus(), 3);
    EXPECT_TRUE(seen.empty());
}

TEST_F(ScriptedHostTest, signalThatNobodyAskedForEndsTheProcess)
{
    scripted.raise(RunLoop::Signal::interrupt);
    EXPECT_EQ(scripted.exitStatus(), 130);
}

TEST_F(ScriptedHostTest, destructionWithWorkInFlight)
{
    std::vector<Outcome> outcomes;
    {
        ScriptedHost world;
        const Host parts = world;
        world.tool(ToolRole::ps).prints("x").takes(5s);
        for (int i = 0; i < 3; ++i) {
            parts.runLoop.background(
                [&outcomes, parts] {
                    for (int runs = 0; runs < 3; ++runs) {
                        const auto result = parts.commands.run(parts.platform.tool(ToolRole::ps), 20s);
                        outcomes.push_back(result.outcome);
                    }
                },
                [this] { note("never"); });
        }
        world.advance(7s); // each is in its second run
        parts.runLoop.background([this] { note("not begun"); }, [] {});
    }
    EXPECT_EQ(outcomes.size(), 9U);
    EXPECT_EQ(std::count(outcomes.begin(), outcomes.end(), Outcome::finished), 3);
    EXPECT_TRUE(seen.empty());
}

TEST_F(ScriptedHostTest, aDayOfCollections)
{
    scripted.tool(ToolRole::nettop).prints("x").takes(1s);
    constexpr int day = 86'400;
    int ends = 0;
    const auto timer =
        host.runLoop.every(5s, [&] { host.runLoop.background([&] { (void)run(ToolRole::nettop); }, [&] { ++ends; }); });
    scripted.advance(Seconds{day});
    EXPECT_EQ(ends, day / 5 - 1) << "the last has just begun";
    EXPECT_EQ(scripted.elapsed(), Seconds{day});
}

TEST_F(ScriptedHostTest, faultsOfFiles)
{
    auto& files = scripted.files();
    files.set("/data/file", "old");
    EXPECT_EQ(files.get("/data/file"), "old");
    files.failWrites();
    EXPECT_FALSE(files.write("/data/file", "new"));
    files.failWrites(false);
    files.failReads();
    EXPECT_EQ(files.read("/data/file"), std::nullopt);
    files.failReads(false);
    files.readOnly();
    EXPECT_FALSE(files.write("/data/file", "new"));
    EXPECT_FALSE(files.replace("/data/file", "/data/moved"));
    EXPECT_FALSE(files.remove("/data/file"));
    EXPECT_FALSE(files.createDirectories("/data/below"));
    EXPECT_TRUE(files.createDirectories("/data")) << "it is there";
    files.readOnly(false);
    EXPECT_EQ(files.get("/data/file"), "old") << "none of them had an effect";
    files.limit(6);
    EXPECT_FALSE(files.write("/data/tmp", "1234567"));
    EXPECT_EQ(files.get("/data/tmp"), "123") << "as much as fitted beside the other file";
    EXPECT_TRUE(files.write("/data/tmp", "abc"));
    files.limit(std::nullopt);
    EXPECT_TRUE(files.write("/data/tmp", "1234567"));
    EXPECT_THAT(files.list(), ElementsAre("/data/file", "/data/tmp"));
    files.noApplicationSupport();
    EXPECT_EQ(files.applicationSupportDirectory(), std::nullopt);
}

} // namespace
} // namespace quellon
