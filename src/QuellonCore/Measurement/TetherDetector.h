#pragma once

#include "QuellonCore/Host/Host.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Notices a phone that is tethered while the default route goes elsewhere, so that nobody watches its link.
namespace quellon::TetherDetector {

using InterfaceAddress = quellon::InterfaceAddress;

/// Every IPv4 address of every interface, up or down, in the system's order; empty when the system refuses.
[[nodiscard]] std::vector<InterfaceAddress> systemAddresses(const Host& host);

/// The first device in `addresses`, other than the default route's, whose address begins with one of `hotspotPrefixes`.
/// Absent when there is none, and always when `defaultRouteInterface` is empty.
[[nodiscard]] std::optional<std::string> idleTether(std::string_view defaultRouteInterface,
                                                    std::span<const InterfaceAddress> addresses,
                                                    std::span<const std::string_view> hotspotPrefixes);

/// `idleTether` among `systemAddresses`.
[[nodiscard]] std::optional<std::string> current(const Host& host, std::string_view defaultRouteInterface,
                                                 std::span<const std::string_view> hotspotPrefixes);

} // namespace quellon::TetherDetector
