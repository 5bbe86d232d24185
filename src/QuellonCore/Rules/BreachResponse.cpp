#include "QuellonCore/Rules/BreachResponse.h"

namespace quellon {

BreachResponse BreachResponse::decide(ActionLevel level, EnforcementAction action, bool hasEnforceableTargets,
                                      std::optional<std::string_view> protectedReason)
{
    if (level == ActionLevel::enforce && action != EnforcementAction::warn && hasEnforceableTargets) {
        return {Kind::enforce, {}};
    }
    if (protectedReason && !hasEnforceableTargets) return {Kind::recordSilently, std::string{*protectedReason}};
    return {Kind::notifyUser, {}};
}

} // namespace quellon
