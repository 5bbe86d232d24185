#include "QuellonCore/Rules/RuleRiskNotice.h"

#include <algorithm>

namespace quellon::RuleRiskNotice {

std::optional<std::string_view> forceQuitWarning(const std::vector<GuardRule>& rules, EnforcementAction action)
{
    const bool stepsIn = std::ranges::any_of(
        rules, [](const GuardRule& rule) { return rule.enabled && rule.level == ActionLevel::enforce; });
    if (!stepsIn || action != EnforcementAction::kill) return std::nullopt;
    return "A rule is set to step in automatically, so an app that crosses it is force-quit with no chance to save. "
           "Pause freezes it instead, and it picks up where it left off.";
}

} // namespace quellon::RuleRiskNotice
