#include "QuellonCore/Rules/RuleEvaluator.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace quellon::RuleEvaluator {

namespace {

/// A breach that copies nothing: most candidates lose to a higher one.
struct Candidate {
    const GuardRule* rule;
    AppUsage* usage;
};

/// Whether `a` is listed before `b`.
bool precedes(const Candidate& a, const Candidate& b)
{
    return std::tie(b.rule->level, b.usage->bytes, a.usage->app) <
           std::tie(a.rule->level, a.usage->bytes, b.usage->app);
}

double shareOf(std::uint64_t threshold, std::uint64_t bytes)
{
    return static_cast<double>(bytes) / static_cast<double>(std::max<std::uint64_t>(threshold, 1));
}

} // namespace

std::vector<RuleBreach> evaluate(const std::vector<GuardRule>& rules, const Lookup& lookup)
{
    std::vector<std::vector<AppUsage>> answers; // what the candidates point into
    std::vector<Candidate> candidates;
    std::unordered_map<std::string_view, std::size_t> places;
    for (const GuardRule& rule : rules) {
        if (!rule.enabled) continue;
        for (AppUsage& usage : answers.emplace_back(lookup(rule.windowSeconds))) {
            if (usage.bytes < rule.thresholdBytes) continue;
            const auto [place, isNew] = places.try_emplace(usage.app, candidates.size());
            if (isNew)
                candidates.push_back({&rule, &usage});
            else if (Candidate& held = candidates[place->second]; rule.level > held.rule->level)
                held = {&rule, &usage};
        }
    }
    std::ranges::sort(candidates, precedes);
    std::vector<RuleBreach> result;
    result.reserve(candidates.size());
    for (const auto& [rule, usage] : candidates) {
        result.push_back({std::move(usage->app), *rule, usage->bytes, std::move(usage->pids)});
    }
    return result;
}

std::set<std::string> chronicApps(const std::vector<GuardRule>& rules, const Lookup& lookup, double longRatio,
                                  double shortRatio)
{
    const GuardRule* shortRule = nullptr;
    const GuardRule* longRule = nullptr;
    for (const GuardRule& rule : rules) {
        if (!rule.enabled) continue;
        if (shortRule == nullptr || rule.windowSeconds < shortRule->windowSeconds) shortRule = &rule;
        if (longRule == nullptr || rule.windowSeconds > longRule->windowSeconds) longRule = &rule;
    }
    if (shortRule == nullptr || !(shortRule->windowSeconds < longRule->windowSeconds)) return {};

    const std::vector<AppUsage> recent = lookup(shortRule->windowSeconds);
    std::unordered_map<std::string_view, std::uint64_t> recentBytes;
    for (const AppUsage& usage : recent) recentBytes.emplace(usage.app, usage.bytes);
    std::set<std::string> result;
    for (const AppUsage& usage : lookup(longRule->windowSeconds)) {
        const auto found = recentBytes.find(usage.app);
        const std::uint64_t now = found == recentBytes.end() ? 0 : found->second;
        const bool drains = shareOf(longRule->thresholdBytes, usage.bytes) >= longRatio;
        const bool isCalm = shareOf(shortRule->thresholdBytes, now) < shortRatio;
        if (drains && isCalm) result.insert(usage.app);
    }
    return result;
}

} // namespace quellon::RuleEvaluator
