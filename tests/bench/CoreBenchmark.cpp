// Runs what the other files of this folder measure, and prints how each stands to its peers of the same run: plain ways
// to the same result, and passes over the same data that do nothing with it.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <array>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace quellon {
namespace {

struct Pair {
    const char* name;
    const char* peer;
};
constexpr std::array pairs{
    Pair{"nettopParse", "nettopPlainParser"},
    Pair{"nettopParse", "nettopCountLines"},
    Pair{"nettopParse", "nettopCopy"},
    Pair{"ledgerTotalsDay/60", "ledgerWalkDay/60"},
    Pair{"ledgerTotalsDay/43200", "ledgerWalkDay/43200"},
    Pair{"ledgerTotalsDay/86400", "ledgerWalkDay/86400"},
    Pair{"ledgerSaveHour", "ledgerPlainSaveHour"},
    Pair{"ledgerSaveHour", "ledgerWriteHour"},
    Pair{"ledgerLoadHour", "ledgerPlainLoadHour"},
    Pair{"ruleEvaluate", "rulePlainEvaluator"},
    Pair{"ruleEvaluate", "ruleLookups"},
};

/// Prints the usual table, of several runs only the median, and remembers the times.
class Reporter final : public benchmark::ConsoleReporter {
public:
    Reporter() : ConsoleReporter{OO_Tabular} {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        std::vector<Run> shown;
        for (const Run& run : runs) {
            const bool isOnlyOne = run.run_type == Run::RT_Iteration && run.repetitions == 1;
            if (isOnlyOne || run.aggregate_name == "median" || run.error_occurred) shown.push_back(run);
        }
        for (const Run& run : shown) {
            const auto& [function, arguments] = std::tie(run.run_name.function_name, run.run_name.args);
            times_[arguments.empty() ? function : function + "/" + arguments] = run.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(shown);
    }

    /// Nothing for a pair of which a filter left out one.
    void print(const Pair& pair)
    {
        if (!times_.contains(pair.name) || !times_.contains(pair.peer)) return;
        const double ratio = times_[pair.name] / times_[pair.peer];
        GetOutputStream() << fmt::format("{} / {}: {:.4f} of its time\n", pair.name, pair.peer, ratio);
    }

private:
    std::map<std::string, double> times_; ///< In the unit of the benchmark, the same for both of a pair.
};

} // namespace
} // namespace quellon

int main(int argc, char** argv)
{
    // Options of the caller come later and win.
    std::string repetitions = "--benchmark_repetitions=5";
    std::string shortest = "--benchmark_min_time=0.1";
    std::vector<char*> arguments{argv[0], repetitions.data(), shortest.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    quellon::Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const auto& pair : quellon::pairs) reporter.print(pair);
    return 0;
}
