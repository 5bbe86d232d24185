// What the main thread pays for a sample: reading the traffic sample of a busy machine (2,000 connections of 400
// processes) and its process table. Beside it, in the same run, a plain parser of the same text and two passes over the
// bytes that do nothing with them.

#include "QuellonCore/Measurement/NettopParser.h"
#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Measurement/UsageLedger.h"
#include "fuzz/NaiveNettop.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace quellon {
namespace {

constexpr int processCount = 400;
constexpr int connectionsEach = 5;

/// The sample at one moment; every connection has moved since the moment before.
std::string nettopText(int moment = 0)
{
    std::string text = "time,,interface,bytes_in,bytes_out,\n";
    for (int process = 0; process < processCount; ++process) {
        text += fmt::format("12:34:56.123456,Some Helper {}.{},,{},{},\n", process % 10, 1000 + process, 1000, 2000);
        for (int i = 0; i < connectionsEach; ++i) {
            const int port = 49152 + process * connectionsEach + i;
            // As on a real machine: most over IPv4, some over IPv6, some in the local network, some listening.
            const std::string label =
                i == 1   ? fmt::format("tcp6 2001:db8:1:2:3:4:5:6.{}<->2606:4700:4700::{:x}.443", port, process)
                : i == 2 ? fmt::format("tcp4 192.168.1.20:{}<->192.168.1.{}:445", port, process % 250)
                : i == 3 ? fmt::format("udp4 *:{}<->*:*", port)
                         : fmt::format("tcp4 192.168.1.20:{}<->93.184.{}.{}:443", port, process % 250, i);
            text += fmt::format("12:34:56.123456,{},en0,{},{},\n", label, 123'456L * port + 4000L * moment,
                                987L * port + 500L * moment);
        }
    }
    return text;
}

std::string psText()
{
    std::string text;
    for (int process = 0; process < processCount; ++process) {
        text += fmt::format(
            "{:5} {:5} {:5} /Applications/Some Program {}.app/Contents/Frameworks/Helper.app/Contents/MacOS/"
            "Helper\n",
            1000 + process, 501, 1000, process % 40);
    }
    return text;
}

/// Runs `pass` over `text` again and again, and reports bytes a second.
template <typename Pass>
void measure(benchmark::State& state, const std::string& text, const Pass& pass)
{
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(pass(text));
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * static_cast<std::int64_t>(state.iterations()));
}

void nettopParse(benchmark::State& state)
{
    measure(state, nettopText(), [](const std::string& text) { return NettopParser::parse(text, "en0"); });
}
BENCHMARK(nettopParse);

void nettopPlainParser(benchmark::State& state)
{
    measure(state, nettopText(), [](const std::string& text) { return NaiveNettop::parse(text, "en0"); });
}
BENCHMARK(nettopPlainParser);

void nettopCountLines(benchmark::State& state)
{
    measure(state, nettopText(), [](const std::string& text) { return std::count(text.begin(), text.end(), '\n'); });
}
BENCHMARK(nettopCountLines);

void nettopCopy(benchmark::State& state)
{
    std::string copy(nettopText().size(), '\0');
    measure(state, nettopText(), [&copy](const std::string& text) {
        std::memcpy(copy.data(), text.data(), text.size());
        benchmark::ClobberMemory();
        return copy.data();
    });
}
BENCHMARK(nettopCopy);

void psParse(benchmark::State& state)
{
    measure(state, psText(), [](const std::string& text) { return ProcessTable::parse(text); });
}
BENCHMARK(psParse);

void appLabel(benchmark::State& state)
{
    const std::string command = "/Applications/Some Program.app/Contents/Frameworks/Helper.app/Contents/MacOS/Helper";
    measure(state, command, [](const std::string& text) { return ProcessTable::appLabel(text); });
}
BENCHMARK(appLabel);

/// All that the main thread does with a sample, with an hour of samples in the ledger.
void wholeSample(benchmark::State& state)
{
    constexpr Seconds retention{3'600.0};
    constexpr Seconds interval{5.0};
    constexpr Seconds shownWindow{60.0};
    UsageLedger ledger{retention, interval, CountDirection::both};
    const std::string ps = psText();
    int moment = 0;
    std::string nettop;
    const auto take = [&] {
        const Date now{moment * interval};
        const auto table = ProcessTable::parse(ps);
        ledger.ingest(NettopParser::parse(nettop, "en0"), now, [&table](std::int32_t pid) { return table.find(pid); });
        return ledger.totals(shownWindow, now);
    };
    const auto advance = [&] { nettop = nettopText(++moment); };
    const int hour = static_cast<int>(retention / interval);
    while (moment < hour) {
        advance();
        benchmark::DoNotOptimize(take());
    }
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        advance();
        state.ResumeTiming();
        benchmark::DoNotOptimize(take());
    }
}
BENCHMARK(wholeSample)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quellon
