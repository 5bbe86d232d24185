#include "QuellonCore/Measurement/TetherDetector.h"

#include <algorithm>

namespace quellon::TetherDetector {

std::vector<InterfaceAddress> systemAddresses(const Host& host)
{
    return host.addresses.ipv4Addresses();
}

std::optional<std::string> idleTether(std::string_view defaultRouteInterface,
                                      std::span<const InterfaceAddress> addresses,
                                      std::span<const std::string_view> hotspotPrefixes)
{
    if (defaultRouteInterface.empty()) return std::nullopt;
    const auto isIdleTether = [&](const InterfaceAddress& address) {
        return address.name != defaultRouteInterface &&
               std::ranges::any_of(hotspotPrefixes, [&](auto prefix) { return address.ipv4.starts_with(prefix); });
    };
    const auto found = std::ranges::find_if(addresses, isIdleTether);
    if (found == addresses.end()) return std::nullopt;
    return found->name;
}

std::optional<std::string> current(const Host& host, std::string_view defaultRouteInterface,
                                   std::span<const std::string_view> hotspotPrefixes)
{
    return idleTether(defaultRouteInterface, systemAddresses(host), hotspotPrefixes);
}

} // namespace quellon::TetherDetector
