#pragma once

#include "QuellonCore/Budget/PlanProfile.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// Which plan belongs to the network that the machine has come to.
namespace ProfileAutoSwitch {

/// The plan last used on each metered interface, by the interface's name.
using Memory = std::map<std::string, UUID, std::less<>>;

/// The plan to switch to on arrival at `newInterface`. Absent, which keeps the active plan, off metered networks, on
/// an interface without memory, and where the remembered plan is active already or gone.
[[nodiscard]] std::optional<UUID> decide(std::string_view newInterface, bool isMetered, const Memory& memory,
                                         const UUID& activeID, const std::vector<PlanProfile>& profiles);

} // namespace ProfileAutoSwitch

} // namespace quellon
