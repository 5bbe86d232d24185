#include "LiveHeap.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "ScriptedHost.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace quellon {
namespace {

using namespace std::chrono_literals;

TEST(LiveHeap, countsWhatIsHeld)
{
    const std::size_t before = liveHeapBytes();
    auto block = std::make_unique<char[]>(1'000);
    EXPECT_EQ(liveHeapBytes(), before + 1'000);
    block.reset();
    EXPECT_EQ(liveHeapBytes(), before);
}

/// The machine's traffic and processes in one minute: four applications, each with another name, process and
/// connection than a minute before.
void play(ScriptedHost& host, int minute)
{
    constexpr int applications = 4;
    const std::uint64_t counter =
        1'000'000U + 1'000U * static_cast<std::uint64_t>(minute); // same digits all day, and no rule is crossed
    std::string processes;
    std::string traffic = "time,,interface,bytes_in,bytes_out,\n";
    for (int i = 0; i < applications; ++i) {
        const int pid = 10'000 + minute * applications + i;
        processes += fmt::format("{0} 501 {0} /opt/app{0}/application{0}\n", pid);
        traffic += fmt::format("t,application{0}.{0},,{1},0,\nt,tcp4 172.20.10.4:{2}<->203.0.113.9:443,en0,{1},0,\n",
                               pid, counter, 1'024 + i);
    }
    host.tool(ToolRole::ps).prints(processes);
    host.tool(ToolRole::nettop).prints(traffic);
}

TEST(DayOfTicks, memoryStaysFlatOverChangingApplications)
{
    ScriptedHost host;
    host.tool(ToolRole::route).prints("    gateway: 172.20.10.1\n  interface: en0\n");
    GuardEngine engine{host};
    std::size_t afterThreeHours = 0;
    std::size_t most = 0;
    for (int minute = 0; minute < 24 * 60; ++minute) {
        play(host, minute);
        host.advance(60s);
        host.log().clear();
        host.clearRuns();
        if (minute == 3 * 60) afterThreeHours = liveHeapBytes();
        if (minute > 3 * 60) most = std::max(most, liveHeapBytes());
    }
    EXPECT_EQ(engine.sampling().completedTicks, 24 * 60 * 60 / 5 + 1);
    ASSERT_FALSE(engine.usage().empty());
    EXPECT_LT(most, afterThreeHours + afterThreeHours / 20) << "an hour is kept, so hours later nothing has grown";
}

} // namespace
} // namespace quellon
