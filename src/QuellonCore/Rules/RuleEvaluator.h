#pragma once

#include "QuellonCore/Measurement/AppUsage.h"
#include "QuellonCore/Rules/GuardRule.h"
#include "QuellonCore/Rules/RuleBreach.h"
#include "QuellonCore/Support/Time.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

/// Usage against rules.
namespace quellon::RuleEvaluator {

/// The usage of every application over a window that ends now.
using Lookup = std::function<std::vector<AppUsage>(Seconds)>;

/// Who is in breach: one breach an application, of the highest level that it reached, and within the level of the rule
/// that stands first. Usage at the threshold is a breach. Sorted by level, then bytes, the highest first, then label.
/// `lookup` is called once for each enabled rule, in their order.
[[nodiscard]] std::vector<RuleBreach> evaluate(const std::vector<GuardRule>& rules, const Lookup& lookup);

/// The applications that eat the long allowance without ever tripping a short rule: over the longest window of the
/// enabled rules they used `longRatio` or more of its threshold, over the shortest less than `shortRatio` of its
/// threshold. A threshold of 0 counts as 1. Nobody when there are no two windows to compare.
[[nodiscard]] std::set<std::string> chronicApps(const std::vector<GuardRule>& rules, const Lookup& lookup,
                                                double longRatio, double shortRatio);

} // namespace quellon::RuleEvaluator
