// What it costs to hold 20 rules against 1,000 applications. Beside it, in the same run, the plain way to the same
// result, and the look-ups that both need.

#include "QuellonCore/Rules/RuleEvaluator.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace quellon {
namespace {

constexpr int ruleCount = 20;
constexpr int appCount = 1'000;

/// Windows of one to twenty minutes; every level has its rules.
std::vector<GuardRule> rules()
{
    std::vector<GuardRule> result;
    for (int i = 0; i < ruleCount; ++i) {
        GuardRule& rule = result.emplace_back();
        rule.windowSeconds = Seconds{60.0 * (i + 1)};
        rule.thresholdBytes = 900'000U + 1'000U * static_cast<std::uint64_t>(i);
        rule.level = actionLevels.rows[static_cast<std::size_t>(i) % actionLevels.rows.size()].value;
    }
    return result;
}

/// The same usage over every window; a tenth of the applications is in breach.
std::vector<AppUsage> usage()
{
    std::vector<AppUsage> result;
    for (int i = appCount; i > 0; --i) {
        result.push_back(
            {fmt::format("Some Program {}", i), 1'000U * static_cast<std::uint64_t>(i), {i, i + appCount}});
    }
    return result;
}

/// For every application every rule, and the strongest of those it breaks.
std::vector<RuleBreach> evaluatePlainly(const std::vector<GuardRule>& rules, const RuleEvaluator::Lookup& lookup)
{
    std::map<std::string, RuleBreach> byApp;
    for (const GuardRule& rule : rules) {
        if (!rule.enabled) continue;
        for (const AppUsage& usage : lookup(rule.windowSeconds)) {
            if (usage.bytes < rule.thresholdBytes) continue;
            const auto held = byApp.find(usage.app);
            if (held != byApp.end() && held->second.level() >= rule.level) continue;
            byApp.insert_or_assign(usage.app, RuleBreach{usage.app, rule, usage.bytes, usage.pids});
        }
    }
    std::vector<RuleBreach> result;
    for (const auto& [app, breach] : byApp) result.push_back(breach);
    std::stable_sort(result.begin(), result.end(), [](const RuleBreach& a, const RuleBreach& b) {
        return a.level() != b.level() ? a.level() > b.level() : a.bytes > b.bytes;
    });
    return result;
}

template <typename Evaluate>
void measure(benchmark::State& state, const Evaluate& evaluate)
{
    const auto all = rules();
    const auto moved = usage();
    const RuleEvaluator::Lookup lookup = [&moved](Seconds) { return moved; };
    if (RuleEvaluator::evaluate(all, lookup) != evaluatePlainly(all, lookup)) return state.SkipWithError("they differ");
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(evaluate(all, lookup));
}

void ruleEvaluate(benchmark::State& state)
{
    measure(state, RuleEvaluator::evaluate);
}
BENCHMARK(ruleEvaluate)->Unit(benchmark::kMillisecond);

void rulePlainEvaluator(benchmark::State& state)
{
    measure(state, evaluatePlainly);
}
BENCHMARK(rulePlainEvaluator)->Unit(benchmark::kMillisecond);

void ruleLookups(benchmark::State& state)
{
    measure(state, [](const std::vector<GuardRule>& rules, const RuleEvaluator::Lookup& lookup) {
        std::size_t count = 0;
        for (const GuardRule& rule : rules) count += lookup(rule.windowSeconds).size();
        return count;
    });
}
BENCHMARK(ruleLookups)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quellon
