// What a long history costs: totals over a part of a day's samples, and saving and loading an hour's. Beside them, in
// the same run, a walk over all samples, the JSON library, and writing the file alone.

#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonHost/SystemHost.h"
#include "bench/LedgerData.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace quellon {
namespace {

constexpr Seconds day{86'400.0};

const UsageLedger& dayLedger()
{
    static const UsageLedger ledger = [] {
        UsageLedger result{day, ledgerInterval, CountDirection::both};
        result.restore(ledgerBuckets(ledgerDay), ledgerEnd(ledgerDay));
        return result;
    }();
    return ledger;
}

void windows(benchmark::internal::Benchmark* benchmark)
{
    for (const int seconds : {60, 3'600, 43'200, 86'395, 86'400}) benchmark->Arg(seconds);
    benchmark->Unit(benchmark::kMillisecond);
}

void ledgerTotalsDay(benchmark::State& state)
{
    const Seconds window{static_cast<double>(state.range(0))};
    const auto& ledger = dayLedger();
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(ledger.totals(window, ledgerEnd(ledgerDay)));
}
BENCHMARK(ledgerTotalsDay)->Apply(windows);

/// The same by adding up the samples of the window.
std::vector<AppUsage> walk(const UsageLedger::Snapshot& snapshot, Date since)
{
    std::map<std::string, AppUsage> sums;
    for (const auto& bucket : snapshot.buckets) {
        if (bucket.at < since) continue;
        for (const auto& [app, bytes] : bucket.usage) {
            AppUsage& sum = sums[app];
            sum.bytes += bytes;
            const auto pids = bucket.pids.find(app);
            if (pids != bucket.pids.end()) sum.pids.insert(pids->second.begin(), pids->second.end());
        }
    }
    std::vector<AppUsage> result;
    for (auto& [app, sum] : sums) {
        sum.app = app;
        result.push_back(std::move(sum));
    }
    std::stable_sort(result.begin(), result.end(), [](const auto& a, const auto& b) { return a.bytes > b.bytes; });
    return result;
}

void ledgerWalkDay(benchmark::State& state)
{
    const Date since = ledgerEnd(ledgerDay) - Seconds{static_cast<double>(state.range(0))};
    const auto& snapshot = dayLedger().snapshot();
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(walk(snapshot, since));
}
BENCHMARK(ledgerWalkDay)->Apply(windows);

void ledgerTotalDay(benchmark::State& state)
{
    const auto& ledger = dayLedger();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(ledger.total("Some Program 7", day / 2, ledgerEnd(ledgerDay)));
    }
}
BENCHMARK(ledgerTotalDay);

/// One sample more on top of a full day, of which the oldest goes.
void ledgerIngestDay(benchmark::State& state)
{
    UsageLedger ledger{day, ledgerInterval, CountDirection::both};
    Date at = ledgerEnd(ledgerDay);
    ledger.restore(ledgerBuckets(ledgerDay), at);
    std::vector<ProcessEntry> processes;
    std::vector<ConnectionSample> samples;
    for (std::int32_t i = 0; i < ledgerDay.activeEach; ++i) {
        processes.push_back({i, 501, i, fmt::format("/usr/bin/Some Program {}", i)});
        samples.push_back({i, "tcp4 172.20.10.4:50000<->203.0.113.9:443", 0, 0});
    }
    for ([[maybe_unused]] auto _ : state) {
        at += ledgerInterval;
        for (auto& sample : samples) sample.bytesIn += 1'000;
        benchmark::DoNotOptimize(
            ledger.ingest(samples, at, [&](std::int32_t pid) { return &processes[static_cast<std::size_t>(pid)]; }));
    }
}
BENCHMARK(ledgerIngestDay)->Unit(benchmark::kMillisecond);

/// A file of its own in a throw-away folder of the real file system.
class StateFile {
public:
    static constexpr std::string_view name = "benchmark-ledger.json";

    ~StateFile()
    {
        persistence.remove(name);
        std::error_code error; // the folder stays when it is somebody's
        std::filesystem::remove(persistence.directory(), error);
    }

    SystemHost host{};
    Persistence persistence{host.host()};
};

/// A ledger that has nothing but its JSON.
struct PlainSnapshot {
    const UsageLedger::Snapshot& snapshot;
    [[nodiscard]] Json toJson() const { return snapshot.toJson(); }
};

void ledgerSaveHour(benchmark::State& state)
{
    const StateFile file;
    const UsageLedger::Snapshot hour{ledgerBuckets(ledgerHour)};
    for ([[maybe_unused]] auto _ : state) file.persistence.save(hour, StateFile::name);
}
BENCHMARK(ledgerSaveHour)->Unit(benchmark::kMillisecond);

void ledgerPlainSaveHour(benchmark::State& state)
{
    const StateFile file;
    const UsageLedger::Snapshot hour{ledgerBuckets(ledgerHour)};
    for ([[maybe_unused]] auto _ : state) file.persistence.save(PlainSnapshot{hour}, StateFile::name);
}
BENCHMARK(ledgerPlainSaveHour)->Unit(benchmark::kMillisecond);

/// The file without the encoding.
void ledgerWriteHour(benchmark::State& state)
{
    StateFile file;
    const UsageLedger::Snapshot hour{ledgerBuckets(ledgerHour)};
    file.persistence.save(hour, StateFile::name);
    const auto path = file.persistence.directory() / StateFile::name;
    auto temporary = path;
    temporary += ".tmp";
    FileStore& files = file.host.host().files;
    const std::string text = files.read(path).value_or("");
    for ([[maybe_unused]] auto _ : state) {
        if (!files.write(temporary, text) || !files.replace(temporary, path)) return state.SkipWithError("can't write");
    }
}
BENCHMARK(ledgerWriteHour)->Unit(benchmark::kMillisecond);

void ledgerLoadHour(benchmark::State& state)
{
    const StateFile file;
    file.persistence.save(UsageLedger::Snapshot{ledgerBuckets(ledgerHour)}, StateFile::name);
    for ([[maybe_unused]] auto _ : state) {
        const auto read = file.persistence.load<UsageLedger::Snapshot>(StateFile::name);
        if (!read) return state.SkipWithError("can't read");
    }
}
BENCHMARK(ledgerLoadHour)->Unit(benchmark::kMillisecond);

void ledgerPlainLoadHour(benchmark::State& state)
{
    const StateFile file;
    file.persistence.save(UsageLedger::Snapshot{ledgerBuckets(ledgerHour)}, StateFile::name);
    for ([[maybe_unused]] auto _ : state) {
        const auto read = file.persistence.load(StateFile::name, fromJson<UsageLedger::Snapshot>);
        if (!read) return state.SkipWithError("can't read");
    }
}
BENCHMARK(ledgerPlainLoadHour)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quellon
