// What the main thread pays for a whole round of the engine on a machine with many processes and connections: from the
// outputs of the tools to who is to be stopped, and every sixth round the save. Four sizes; beside each how its time
// stands to that of the smallest, grown in proportion.

#include "QuellonCore/Engine/GuardEngine.h"
#include "ScriptedHost.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <string>
#include <vector>

namespace quellon {
namespace {

constexpr int connectionsEach = 4;
constexpr int processesOfApp = 10;
constexpr int firstProcess = 1'000;
constexpr Seconds interval{5.0};

std::string psText(int processes)
{
    std::string text;
    for (int i = 0; i < processes; ++i) {
        fmt::format_to(std::back_inserter(text),
                       "{:5} {:5} {:5} /Applications/Program {}.app/Contents/Frameworks/Helper.app/Contents/MacOS/"
                       "Helper\n",
                       firstProcess + i, i % 5 == 0 ? 0 : 501, firstProcess + i, i / processesOfApp);
    }
    return text;
}

/// The sample of one round; every connection has moved since the one before.
std::string nettopText(int processes, int round)
{
    std::string text = "time,,interface,bytes_in,bytes_out,\n";
    for (int i = 0; i < processes; ++i) {
        auto end = std::back_inserter(text);
        fmt::format_to(end, "12:34:56.123456,Helper.{},,1000,2000,\n", firstProcess + i);
        for (int k = 0; k < connectionsEach; ++k) {
            fmt::format_to(end, "12:34:56.123456,tcp4 172.20.10.4:{}<->93.184.{}.{}:443,en0,{},{},\n",
                           10'000 + (i * connectionsEach + k) % 50'000, i % 250, k, 1'000'000 + 4'000 * round,
                           50'000 + 500 * round);
        }
    }
    return text;
}

GuardEngine::Options options()
{
    GuardEngine::Options options;
    options.autoStart = false;
    return options;
}

/// Rules that applications cross, and some applications that are always blocked.
void prepare(GuardEngine& engine)
{
    GuardSettings settings = engine.settings();
    settings.enforcementAction = EnforcementAction::warn;
    for (int i = 0; i < 20; ++i) settings.setPolicy(AppPolicy::always, fmt::format("Program {}", i));
    engine.setSettings(std::move(settings));
}

void engineApply(benchmark::State& state)
{
    static double smallest = 0; // seconds for each process at the first size
    const int processes = static_cast<int>(state.range(0));
    ScriptedHost host;
    GuardEngine engine{host.host(), options()};
    prepare(engine);
    GuardEngine::TickInputs inputs;
    inputs.status = {true, "en0", "a hotspot"};
    inputs.interfaceCounter = InterfaceCounter{1'000, 1'000};
    inputs.psOutput = psText(processes);
    inputs.sampled = true;

    std::vector<double> times;
    int round = 0;
    for ([[maybe_unused]] auto _ : state) {
        inputs.nettopCSV = nettopText(processes, ++round);
        host.setClock(host.now() + interval);
        const auto begin = std::chrono::steady_clock::now();
        engine.apply(inputs);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count());
        times.push_back(taken.count());
    }
    constexpr double milliseconds = 1'000.0;
    std::ranges::sort(times);
    const double median = times[times.size() / 2];
    if (smallest == 0) smallest = median / processes;
    state.counters["connections"] = processes * connectionsEach;
    state.counters["median_ms"] = median * milliseconds;
    state.counters["worst_ms"] = times.back() * milliseconds;
    state.counters["to_linear"] = median / processes / smallest;
    if (engine.usage().size() != static_cast<std::size_t>(processes / processesOfApp) || engine.events().empty())
        state.SkipWithError("the rounds did not count");
}
BENCHMARK(engineApply)
    ->Arg(1'250)
    ->Arg(2'500)
    ->Arg(5'000)
    ->Arg(10'000)
    ->Iterations(60)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quellon
