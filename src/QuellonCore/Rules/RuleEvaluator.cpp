#include "QuellonCore/Rules/RuleEvaluator.h"

#include <algorithm>
#include <deque>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace quellon::RuleEvaluator {

namespace {

/// Whether `a` is listed before `b`.
bool precedes(const RuleBreach* a, const RuleBreach* b)
{
    return std::tie(b->rule.level, b->bytes, a->app) < std::tie(a->rule.level, a->bytes, b->app);
}

double shareOf(std::uint64_t threshold, std::uint64_t bytes)
{
    return static_cast<double>(bytes) / static_cast<double>(std::max<std::uint64_t>(threshold, 1));
}

} // namespace

std::vector<RuleBreach> evaluate(const std::vector<GuardRule>& rules, const Lookup& lookup)
{
    std::deque<RuleBreach> breaches; // which stay where they are while more come
    std::unordered_map<std::string_view, RuleBreach*> byApp;
    for (const GuardRule& rule : rules) {
        if (!rule.enabled) continue;
        // One answer at a time: its memory serves the next one again, and what is not in breach is never copied.
        for (AppUsage& usage : lookup(rule.windowSeconds)) {
            if (usage.bytes < rule.thresholdBytes) continue;
            if (const auto held = byApp.find(usage.app); held == byApp.end()) {
                breaches.push_back({std::move(usage.app), rule, usage.bytes, std::move(usage.pids)});
                byApp.emplace(breaches.back().app, &breaches.back());
            } else if (RuleBreach& breach = *held->second; rule.level > breach.level()) {
                breach.rule = rule;
                breach.bytes = usage.bytes;
                breach.pids = std::move(usage.pids);
            }
        }
    }
    std::vector<RuleBreach*> order;
    order.reserve(breaches.size());
    for (RuleBreach& breach : breaches) order.push_back(&breach);
    std::ranges::sort(order, precedes);
    std::vector<RuleBreach> result;
    result.reserve(order.size());
    for (RuleBreach* breach : order) result.push_back(std::move(*breach));
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
