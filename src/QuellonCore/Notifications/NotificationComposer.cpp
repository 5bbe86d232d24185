#include "QuellonCore/Notifications/NotificationComposer.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>

namespace quellon::NotificationComposer {

namespace {

using MenuPresentation::format;
using enum NotificationAction;

std::string budgetLine(const std::optional<BudgetStatus>& budget)
{
    if (!budget) return {};
    return fmt::format("{}% of your plan used · {} left", nearestWhole(budget->usedFraction() * 100.0),
                       format(budget->remainingBytes()));
}

NotificationPlan repeatedAskPlan(std::string_view app, std::uint64_t bytes, const std::optional<BudgetStatus>& budget,
                                 std::size_t asksInLastHour)
{
    return {
        .style = NotificationStyle::persistent,
        .title = fmt::format("{} keeps reaching for the hotspot", plainText(app)),
        .subtitle =
            fmt::format("Asked {} times in the last hour · {} in the last minute", asksInLastHour, format(bytes)),
        .body = fmt::format("It is set to always block, so it is asked about every time it moves. Let this transfer "
                            "finish, or stop asking until tomorrow.\n{}",
                            budgetLine(budget)),
        .actions = {allowOnce, muteToday, terminate, view},
        .apps = {std::string{app}},
    };
}

} // namespace

NotificationPlan plan(const RuleBreach& breach, const std::optional<BudgetStatus>& budget)
{
    NotificationPlan result;
    result.apps = {breach.app};
    if (breach.level() == ActionLevel::highlight) return result;
    result.title = fmt::format("{} is using a lot of data", plainText(breach.app));
    result.subtitle = fmt::format("{} in {} · limit {}", format(breach.bytes), breach.rule.windowLabel(),
                                  format(breach.rule.thresholdBytes));
    result.body = budgetLine(budget);
    if (breach.level() == ActionLevel::notify) return result;
    result.style = NotificationStyle::persistent;
    result.actions = {snooze, suspend, allowlist, view};
    return result;
}

NotificationPlan mergedPlan(const std::vector<RuleBreach>& breaches, const std::optional<BudgetStatus>& budget)
{
    constexpr std::size_t named = 4;
    std::uint64_t sum = 0;
    std::vector<std::string> parts;
    std::vector<std::string> apps;
    for (const RuleBreach& breach : breaches) {
        sum = checkedAdd(sum, breach.bytes);
        if (parts.size() < named) parts.push_back(fmt::format("{} {}", plainText(breach.app), format(breach.bytes)));
        apps.push_back(breach.app);
    }
    const std::string window = breaches.empty() ? "" : breaches.front().rule.windowLabel();
    return {
        .style = NotificationStyle::persistent,
        .title = fmt::format("{} apps are using a lot of data", breaches.size()),
        .subtitle = fmt::format("{} in {}", format(sum), window),
        .body = fmt::format("{}{}{}", fmt::join(parts, " · "), budget ? "\n" : "", budgetLine(budget)),
        .actions = {view, snoozeAll},
        .apps = std::move(apps),
    };
}

NotificationPlan enforcedPlan(std::string_view app, std::uint64_t bytes, std::string_view window,
                              EnforcementAction action)
{
    const bool isPaused = action == EnforcementAction::suspend;
    return {
        .style = NotificationStyle::persistent,
        .title = fmt::format("{} was {}", plainText(app), isPaused ? "paused" : "stopped"),
        .subtitle = fmt::format("{} in {}", format(bytes), window),
        .body = isPaused ? "It is frozen, not closed — resume and it picks up where it left off." : "",
        .actions = isPaused ? std::vector{resume, resumeAndSnooze} : std::vector{view},
        .apps = {std::string{app}},
    };
}

NotificationPlan loopBreakerPlan(std::string_view app, std::size_t count, std::uint64_t wastedBytes,
                                 const std::optional<BudgetStatus>& budget)
{
    return {
        .style = NotificationStyle::persistent,
        .title = fmt::format("{} keeps coming back", plainText(app)),
        .subtitle = fmt::format("{} times in 6 h · ≥{} spent retrying", count, format(wastedBytes)),
        .body = fmt::format("Stopping it just makes it start over, so it is frozen instead. Let it finish once, or "
                            "never limit it.\n{}",
                            budgetLine(budget)),
        .actions = {resumeAndSnooze, allowlist, view},
        .apps = {std::string{app}},
    };
}

NotificationPlan blockedAppPlan(std::string_view app, std::uint64_t bytes, const std::optional<BudgetStatus>& budget,
                                bool seededByPreset, std::size_t asksInLastHour)
{
    if (asksInLastHour >= repeatedAskThreshold) return repeatedAskPlan(app, bytes, budget, asksInLastHour);
    return {
        .style = NotificationStyle::persistent,
        .title = fmt::format("{} is reaching for the hotspot", plainText(app)),
        .subtitle =
            fmt::format("{} so far · {}", format(bytes),
                        seededByPreset ? "from the dev tools preset you added" : "you set this app to always block"),
        .body = budgetLine(budget),
        .actions = {terminate, allowOnce, muteToday, view},
        .apps = {std::string{app}},
    };
}

} // namespace quellon::NotificationComposer
