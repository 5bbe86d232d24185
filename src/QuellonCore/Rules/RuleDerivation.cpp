#include "QuellonCore/Rules/RuleDerivation.h"

#include "QuellonCore/Budget/PlanSize.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace quellon::RuleDerivation {

namespace {

constexpr Seconds shortWindow{60.0};
constexpr Seconds longWindow{3600.0};

/// The parts of a day's budget that one application may take.
struct Shares {
    UsageProfile profile;
    double ofShortWindow;
    double ofLongWindow;
};

constexpr std::array<Shares, usageProfiles.rows.size()> shares{{
    {UsageProfile::light, 0.03, 0.25},
    {UsageProfile::developer, 0.045, 0.35},
    {UsageProfile::heavy, 0.08, 0.5},
}};

} // namespace

std::string PendingRuleChange::summary() const
{
    return fmt::format("{} {} → {}", windowLabel, MenuPresentation::format(currentBytes),
                       derivedBytes ? MenuPresentation::format(*derivedBytes) : "removed");
}

std::uint64_t dailyBudgetBytes(double planGB)
{
    constexpr double days = 30.0;
    const double bytes = planBytes(planGB);
    static_cast<void>(checkedWhole(bytes)); // a plan beyond a counter is refused, though a thirtieth might fit
    return checkedWhole(bytes / days);
}

std::vector<GuardRule> defaultRules(double planGB, UsageProfile profile, IdentifierSource& identifiers)
{
    const auto share = std::ranges::find(shares, profile, &Shares::profile);
    const auto daily = static_cast<double>(dailyBudgetBytes(planGB));
    const auto rule = [&](Seconds window, double part, ActionLevel level) {
        return GuardRule{identifiers.next(), window, checkedWhole(daily * part), level};
    };
    return {rule(shortWindow, share->ofShortWindow, ActionLevel::notify),
            rule(longWindow, share->ofLongWindow, ActionLevel::ask)};
}

double shareOfDailyBudget(std::uint64_t bytes, double planGB)
{
    const std::uint64_t daily = dailyBudgetBytes(planGB);
    return daily == 0 ? 0.0 : static_cast<double>(bytes) / static_cast<double>(daily);
}

std::vector<PendingRuleChange> pendingChanges(const std::vector<GuardRule>& from, const std::vector<GuardRule>& to)
{
    std::vector<PendingRuleChange> result;
    for (const GuardRule& rule : from) {
        std::optional<std::uint64_t> derived;
        const auto found = std::ranges::find(to, rule.windowSeconds, &GuardRule::windowSeconds);
        if (found != to.end()) derived = found->thresholdBytes;
        if (derived != rule.thresholdBytes) result.push_back({rule.windowLabel(), rule.thresholdBytes, derived});
    }
    return result;
}

} // namespace quellon::RuleDerivation
