#pragma once

#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Rules/GuardRule.h"

#include <optional>
#include <string_view>
#include <vector>

/// The warning about a dangerous combination of choices.
namespace quellon::RuleRiskNotice {

/// A warning, for people, when an enabled rule steps in by itself and stepping in means a forced quit; otherwise
/// absent.
[[nodiscard]] std::optional<std::string_view> forceQuitWarning(const std::vector<GuardRule>& rules,
                                                               EnforcementAction action);

} // namespace quellon::RuleRiskNotice
