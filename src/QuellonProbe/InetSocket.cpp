#include "QuellonProbe/InetSocket.h"

#include "QuellonProbe/Text.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <linux/inet_diag.h>
#include <linux/sock_diag.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace quellon {

namespace {

constexpr std::array<std::uint8_t, 12> mappedPrefix{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};

// Not in every header: since Linux 5.9.
constexpr std::uint16_t cgroupAttribute = 21;

// States as the kernel numbers them; its own header names them only inside the kernel.
constexpr unsigned int established = 1, synSent = 2, finWait1 = 4, finWait2 = 5, closeWait = 8, lastAck = 9,
                       closing = 11;
constexpr std::uint32_t trafficStates = 1U << established | 1U << synSent | 1U << finWait1 | 1U << finWait2 |
                                        1U << closeWait | 1U << lastAck | 1U << closing;

std::uint16_t fromNetworkOrder(std::uint16_t value)
{
    const auto bytes = std::bit_cast<std::array<std::uint8_t, 2>>(value);
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

std::optional<InetAddress> address(std::uint8_t family, Bytes field)
{
    if (family == AF_INET) return InetAddress::from(field.first(4));
    if (family == AF_INET6) return InetAddress::from(field.first(16));
    return std::nullopt;
}

} // namespace

std::optional<InetAddress> InetAddress::from(Bytes value)
{
    InetAddress result;
    if (value.size() == 16) {
        std::memcpy(result.bytes.data(), value.data(), 16);
    } else if (value.size() == 4) {
        std::ranges::copy(mappedPrefix, result.bytes.begin());
        std::memcpy(result.bytes.data() + mappedPrefix.size(), value.data(), 4);
    } else {
        return std::nullopt;
    }
    return result;
}

bool InetAddress::isIPv4() const
{
    return std::equal(mappedPrefix.begin(), mappedPrefix.end(), bytes.begin());
}

bool InetAddress::isLoopback() const
{
    constexpr std::array<std::uint8_t, 16> loopback{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    return isIPv4() ? bytes[12] == 127 : bytes == loopback;
}

bool InetAddress::isLinkLocal() const
{
    return bytes[0] == 0xfe && (bytes[1] & 0xc0) == 0x80;
}

std::string InetAddress::text() const
{
    std::array<char, 16> characters{};
    std::memcpy(characters.data(), bytes.data(), bytes.size());
    const std::string_view all{characters.data(), characters.size()};
    return addressText(isIPv4() ? all.substr(mappedPrefix.size()) : all);
}

namespace SocketDiagnosis {

std::optional<InetSocket> parse(Bytes body)
{
    const auto head = Netlink::read<inet_diag_msg>(body);
    if (!head) return std::nullopt;
    const auto& id = head->id;
    const auto local = address(head->idiag_family, std::as_bytes(std::span{id.idiag_src}));
    const auto remote = address(head->idiag_family, std::as_bytes(std::span{id.idiag_dst}));
    if (!local || !remote) return std::nullopt;

    const auto attributes = Netlink::behind(body, sizeof *head);
    const auto info = Netlink::attribute(attributes, INET_DIAG_INFO);
    constexpr auto needed = offsetof(tcp_info, tcpi_bytes_received) + sizeof(tcp_info::tcpi_bytes_received);
    if (!info || info->size() < needed) return std::nullopt;
    const auto counters = Netlink::readPrefix<tcp_info>(*info);

    InetSocket result;
    result.ends = {*local, *remote, fromNetworkOrder(id.idiag_sport), fromNetworkOrder(id.idiag_dport), 0};
    if (local->isLinkLocal() || remote->isLinkLocal()) result.ends.link = id.idiag_if;
    result.device = id.idiag_if;
    result.user = head->idiag_uid;
    result.inode = head->idiag_inode;
    result.cookie = static_cast<std::uint64_t>(id.idiag_cookie[1]) << 32 | id.idiag_cookie[0];
    result.cgroup = Netlink::readAttribute<std::uint64_t>(attributes, cgroupAttribute).value_or(0);
    result.bytesIn = counters.tcpi_bytes_received;
    result.bytesOut = counters.tcpi_bytes_acked;
    return result;
}

NetlinkRequest dumpRequest(std::uint8_t family)
{
    inet_diag_req_v2 request{};
    request.sdiag_family = family;
    request.sdiag_protocol = IPPROTO_TCP;
    request.idiag_ext = 1U << (INET_DIAG_INFO - 1);
    request.idiag_states = trafficStates;
    NetlinkRequest result{SOCK_DIAG_BY_FAMILY};
    result.add(request);
    return result;
}

} // namespace SocketDiagnosis

std::string connectionLabel(const Endpoints& ends, std::string_view zone)
{
    const bool isIPv4 = ends.local.isIPv4() && ends.remote.isIPv4();
    const auto end = [&](const InetAddress& address, std::uint16_t port) {
        auto text = address.text();
        if (!zone.empty() && address.isLinkLocal()) text.append("%").append(zone);
        return text.append(isIPv4 ? ":" : ".").append(std::to_string(port));
    };
    return std::string{isIPv4 ? "tcp4 " : "tcp6 "} + end(ends.local, ends.localPort) + "<->" +
           end(ends.remote, ends.remotePort);
}

} // namespace quellon
