#pragma once

#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Measurement/MeteredStatus.h"

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>

/// The only judge of whether the default route is metered.
namespace quellon::MeteredNetwork {

/// Prefixes of the gateways that a phone's personal hotspot hands out.
inline constexpr std::array<std::string_view, 1> defaultHotspotGateways{"172.20.10."};

/// Asks for the default route and, only where the gateway does not decide, for the flags of its interface. Blocks for
/// up to two budgets of `Shell::defaultTimeout`. A route that can't be read counts as metered, no route as not metered;
/// an interface that can't be read has no flags.
[[nodiscard]] MeteredStatus current(const Host& host, std::span<const std::string_view> hotspotGateways);

/// The verdict on the text of `route -n get default`: metered when the gateway begins with one of `hotspotGateways`, or
/// when the interface's text holds one of the words "constrained", "expensive" and "cellular". `ifconfigOutput` gives
/// that text; it is called at most once, and only where the gateway does not decide.
[[nodiscard]] MeteredStatus evaluate(std::string_view routeOutput, const std::function<std::string()>& ifconfigOutput,
                                     std::span<const std::string_view> hotspotGateways);

} // namespace quellon::MeteredNetwork
