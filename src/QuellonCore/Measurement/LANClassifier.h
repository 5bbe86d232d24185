#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

/// Tells traffic of the local network, which no plan pays for, from traffic of the internet. Everything here takes the
/// numeric text that the traffic sample prints, and gives views into it.
namespace quellon::LANClassifier {

/// The ports of local service discovery and address configuration.
inline constexpr std::array<std::int64_t, 13> discoveryPorts{5353, 1900, 5355, 137,  138,  139, 67,
                                                             68,   546,  547,  5350, 5351, 3702};

/// For a connection's label, such as "udp4 192.168.1.2:5353<->224.0.0.251:5353": true when the remote side is private,
/// or when it is a wildcard ("*") and the local port is one of `discoveryPorts`. False for a label without "<->".
[[nodiscard]] bool isLANConnection(std::string_view connection);

/// For one endpoint, such as "192.168.1.1:443": true when its host is private. False for an empty text, a wildcard,
/// and an endpoint without a host.
[[nodiscard]] bool isLANEndpoint(std::string_view endpoint);

/// For a host: private, link-local, loopback and multicast addresses of both families, and names under ".local". The
/// carrier-grade range 100.64.0.0/10 is not private here: what goes there is paid for.
[[nodiscard]] bool isPrivate(std::string_view host);

/// The host of an endpoint, without port and zone: of "[host]:port", of "a.b.c.d:port" and "name:port", and, where
/// there is more than one colon, of "v6-address.port". Absent when it is empty or a bracket is not closed.
[[nodiscard]] std::optional<std::string_view> host(std::string_view endpoint);

/// The number behind the last colon or point; absent when there is none. Any integer is read, a port or not.
[[nodiscard]] std::optional<std::int64_t> port(std::string_view endpoint);

} // namespace quellon::LANClassifier
