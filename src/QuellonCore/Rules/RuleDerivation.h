#pragma once

#include "QuellonCore/Host/IdentifierSource.h"
#include "QuellonCore/Rules/GuardRule.h"
#include "QuellonCore/Rules/UsageProfile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Rules as shares of a data plan, so that nobody has to think in bytes. A gigabyte is 1024³ bytes and a month has 30
/// days here, whatever the billing cycle. Each function ends the program for a plan whose size in bytes is not finite,
/// is -1 or less, or does not fit a byte count.
namespace quellon::RuleDerivation {

/// What a new derivation would do to one of the present rules.
struct PendingRuleChange {
    std::string windowLabel;
    std::uint64_t currentBytes = 0;
    std::optional<std::uint64_t> derivedBytes; ///< Absent when the rule would go.

    [[nodiscard]] bool isRemoval() const { return !derivedBytes; }

    /// "1min 30.7 MB → 46.1 MB", or "5min 30.7 MB → removed".
    [[nodiscard]] std::string summary() const;

    bool operator==(const PendingRuleChange&) const = default;
};

/// A thirtieth of the plan in whole bytes, the rest cut off.
[[nodiscard]] std::uint64_t dailyBudgetBytes(double planGB);

/// The two rules of a plan and profile, with fresh identifiers: one over a minute that notifies, then one over an hour
/// that asks. No derived rule steps in.
[[nodiscard]] std::vector<GuardRule> defaultRules(double planGB, UsageProfile profile, IdentifierSource& identifiers);

/// `bytes` in days' budgets; 0.0 when the plan gives a day nothing.
[[nodiscard]] double shareOfDailyBudget(std::uint64_t bytes, double planGB);

/// What would change for the rules `from`, in their order, if `to` took their place. A rule goes with the first of `to`
/// that has its window; only thresholds are compared, and rules that only `to` has are not listed.
[[nodiscard]] std::vector<PendingRuleChange> pendingChanges(const std::vector<GuardRule>& from,
                                                            const std::vector<GuardRule>& to);

} // namespace quellon::RuleDerivation
