#pragma once

#include "QuellonProbe/Netlink.h"

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// An internet address: 16 bytes in network order, IPv4 in its mapped form ::ffff:a.b.c.d.
struct InetAddress {
    std::array<std::uint8_t, 16> bytes{};

    /// From 4 or 16 bytes in network order; absent for another length.
    [[nodiscard]] static std::optional<InetAddress> from(Bytes value);

    [[nodiscard]] bool isIPv4() const;
    /// 127.0.0.0/8 or ::1.
    [[nodiscard]] bool isLoopback() const;
    /// fe80::/10, an address that means something only together with its link.
    [[nodiscard]] bool isLinkLocal() const;
    /// In numbers, without a zone.
    [[nodiscard]] std::string text() const;

    friend auto operator<=>(const InetAddress&, const InetAddress&) = default;
};

/// The two ends of a TCP connection. Ports in host order.
struct Endpoints {
    InetAddress local;
    InetAddress remote;
    std::uint16_t localPort = 0;
    std::uint16_t remotePort = 0;
    std::uint32_t link = 0; ///< index of the interface that a link-local address belongs to, else 0

    friend auto operator<=>(const Endpoints&, const Endpoints&) = default;
};

/// A TCP socket as the kernel describes it in a dump or when it destroys it; in the latter case without user, inode and
/// control group.
struct InetSocket {
    Endpoints ends;
    std::uint32_t device = 0; ///< interface the socket is bound to, 0 for none
    std::uint32_t user = 0;
    std::uint32_t inode = 0;    ///< the N of "socket:[N]"; 0 when no descriptor holds it any more
    std::uint64_t cookie = 0;   ///< unique from boot to boot
    std::uint64_t cgroup = 0;   ///< inode of the control group's folder; 0 when unknown
    std::uint64_t bytesIn = 0;  ///< payload received in order, and 1 for the peer's FIN
    std::uint64_t bytesOut = 0; ///< payload acknowledged by the peer, and 1 each for SYN and FIN

    friend bool operator==(const InetSocket&, const InetSocket&) = default;
};

/// The kernel's socket diagnosis (NETLINK_SOCK_DIAG).
namespace SocketDiagnosis {

/// Reads the body of a row or an event. Absent when it is broken, of another family, or carries no byte counters, as
/// what waits in TIME_WAIT doesn't.
[[nodiscard]] std::optional<InetSocket> parse(Bytes body);

/// Asks for all TCP sockets of a family (AF_INET, AF_INET6) that carry or will carry traffic: not for those that
/// listen, wait for the end of a handshake, or sit in TIME_WAIT.
[[nodiscard]] NetlinkRequest dumpRequest(std::uint8_t family);

} // namespace SocketDiagnosis

/// The label of a connection: "tcp4 10.0.0.2:50000<->93.184.216.34:443" or, with the port behind a point,
/// "tcp6 2001:db8::1.50000<->2001:db8::2.443". `zone` is the name of the interface of link-local addresses; empty for
/// none.
[[nodiscard]] std::string connectionLabel(const Endpoints& ends, std::string_view zone = {});

} // namespace quellon
