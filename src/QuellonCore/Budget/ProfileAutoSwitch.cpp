#include "QuellonCore/Budget/ProfileAutoSwitch.h"

#include <algorithm>

namespace quellon {

std::optional<UUID> ProfileAutoSwitch::decide(std::string_view newInterface, bool isMetered, const Memory& memory,
                                              const UUID& activeID, const std::vector<PlanProfile>& profiles)
{
    if (!isMetered) return std::nullopt;
    const auto remembered = memory.find(newInterface);
    if (remembered == memory.end() || remembered->second == activeID) return std::nullopt;
    const bool exists = std::any_of(profiles.begin(), profiles.end(),
                                    [&](const PlanProfile& plan) { return plan.id == remembered->second; });
    return exists ? std::optional{remembered->second} : std::nullopt;
}

} // namespace quellon
