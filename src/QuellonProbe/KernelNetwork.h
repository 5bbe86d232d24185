#pragma once

#include "QuellonProbe/Netlink.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// Link-layer counters since the interface came up.
struct LinkCounters {
    std::uint64_t packetsIn = 0;
    std::uint64_t errorsIn = 0;
    std::uint64_t bytesIn = 0;
    std::uint64_t packetsOut = 0;
    std::uint64_t errorsOut = 0;
    std::uint64_t bytesOut = 0;
    std::uint64_t collisions = 0;

    friend bool operator==(const LinkCounters&, const LinkCounters&) = default;
};

/// One network interface.
struct Link {
    std::int32_t index = 0;
    std::string name;
    std::string kind;               ///< of a virtual one: "veth", "wireguard", …; empty for hardware
    std::string hardwareAddress;    ///< bytes; empty when it has none
    std::uint16_t hardwareType = 0; ///< ARPHRD_…
    std::uint32_t flags = 0;        ///< IFF_…
    std::uint32_t mtu = 0;
    std::uint8_t operationalState = 0; ///< IF_OPER_…
    std::optional<LinkCounters> counters;

    friend bool operator==(const Link&, const Link&) = default;
};

/// One address of an interface.
struct LinkAddress {
    std::int32_t index = 0; ///< of the interface
    std::string local;      ///< 4 or 16 bytes
    std::string peer;       ///< the other end of a point-to-point link, else empty
    std::string broadcast;  ///< empty when there is none
    std::uint8_t prefixLength = 0;

    friend bool operator==(const LinkAddress&, const LinkAddress&) = default;
};

/// Where a packet would go.
struct Route {
    std::int32_t index = 0;   ///< of the outgoing interface
    std::string gateway;      ///< 4 or 16 bytes; empty when the destination is on the link itself
    std::uint32_t metric = 0; ///< smaller is preferred
    std::uint8_t prefixLength = 0;
    bool isIPv6 = false;
    bool isUnicast = false; ///< leads somewhere, and isn't local, blackholed or prohibited
    bool isDown = false;    ///< its link has no carrier; the kernel may choose it all the same

    friend bool operator==(const Route&, const Route&) = default;
};

/// Reading the kernel's descriptions of links, addresses and routes. Bodies that are too short, or lack what can't be
/// left out, are absent; a broken attribute ends the attributes.
namespace KernelMessage {
[[nodiscard]] std::optional<Link> link(Bytes body);
[[nodiscard]] std::optional<LinkAddress> address(Bytes body);
/// A route over several gateways gives the first.
[[nodiscard]] std::optional<Route> route(Bytes body);
} // namespace KernelMessage

/// Questions about the network of this namespace. Each gives 0 or an error number beside its answer. Not thread-safe.
class KernelNetwork {
public:
    /// Absent, with errno set, when the kernel gives no socket.
    [[nodiscard]] static std::optional<KernelNetwork> open();

    /// ENODEV when no interface has this name.
    int link(std::string_view name, Link& found);
    /// All interfaces, ascending by index.
    int links(std::vector<Link>& found);
    /// All addresses of an interface, in the kernel's order, IPv4 first.
    int addresses(std::int32_t index, std::vector<LinkAddress>& found);
    /// The way to an address of 4 or 16 bytes, chosen by the kernel with all its rules and tables.
    int routeTo(std::string_view address, Route& found);
    /// The default routes of both families in all tables, IPv4 first, otherwise in the kernel's order.
    int defaultRoutes(std::vector<Route>& found);

private:
    explicit KernelNetwork(NetlinkSocket socket) : socket_{std::move(socket)} {}

    NetlinkSocket socket_;
};

} // namespace quellon
