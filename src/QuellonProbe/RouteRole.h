#pragma once

#include "QuellonProbe/KernelNetwork.h"

#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// The role `route`: where traffic to the internet goes.
namespace RouteRole {

/// What the kernel would choose for 1.1.1.1 or, when that can't be reached, for 2606:4700::1111, in the form of
/// text(). The empty text when neither has a way out. Absent, after a complaint, when the kernel refuses to tell.
[[nodiscard]] std::optional<std::string> answer(KernelNetwork& network);

/// The answer for a route over the interface: lines "route to", "destination", "mask" (each "default"), "gateway",
/// "interface". The gateway is left out when there is none; a link-local IPv6 one has its interface as zone.
[[nodiscard]] std::string text(const Route& route, std::string_view interface);

} // namespace RouteRole

} // namespace quellon
