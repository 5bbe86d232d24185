#include "QuellonProbe/KernelNetwork.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

namespace quellon {
namespace {

constexpr std::array<std::uint8_t, 2> families{AF_INET, AF_INET6};

std::string byteText(Bytes bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string byteText(const std::optional<Bytes>& bytes)
{
    return bytes ? byteText(*bytes) : std::string{};
}

Bytes textBytes(std::string_view text)
{
    return std::as_bytes(std::span{text.data(), text.size()});
}

bool isAddress(std::string_view bytes)
{
    return bytes.size() == 4 || bytes.size() == 16;
}

/// RTA_GATEWAY, or the address in RTA_VIA, where an IPv4 route has an IPv6 gateway.
std::string gateway(Bytes attributes)
{
    auto found = byteText(Netlink::attribute(attributes, RTA_GATEWAY));
    if (found.empty()) {
        const auto via = Netlink::attribute(attributes, RTA_VIA);
        if (via && via->size() > sizeof(std::uint16_t)) found = byteText(via->subspan(sizeof(std::uint16_t)));
    }
    return isAddress(found) ? found : std::string{};
}

/// Fills interface and gateway from the first of several next hops.
void readFirstHop(Bytes hops, Route& route)
{
    const auto hop = Netlink::read<rtnexthop>(hops);
    if (!hop || hop->rtnh_len < sizeof(rtnexthop) || hop->rtnh_len > hops.size()) return;
    route.index = hop->rtnh_ifindex;
    route.gateway = gateway(hops.subspan(sizeof(rtnexthop), hop->rtnh_len - sizeof(rtnexthop)));
    if ((hop->rtnh_flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN)) != 0) route.isDown = true;
}

} // namespace

std::optional<Link> KernelMessage::link(Bytes body)
{
    const auto header = Netlink::read<ifinfomsg>(body);
    if (!header) return std::nullopt;
    Link link;
    link.index = header->ifi_index;
    link.hardwareType = header->ifi_type;
    link.flags = header->ifi_flags;
    Bytes rest = Netlink::behind(body, sizeof(ifinfomsg));
    while (const auto next = Netlink::takeAttribute(rest)) {
        switch (next->type) {
        case IFLA_IFNAME:
            link.name = Netlink::text(next->value);
            break;
        case IFLA_ADDRESS:
            link.hardwareAddress = byteText(next->value);
            break;
        case IFLA_MTU:
            link.mtu = Netlink::read<std::uint32_t>(next->value).value_or(0);
            break;
        case IFLA_OPERSTATE:
            link.operationalState = Netlink::read<std::uint8_t>(next->value).value_or(0);
            break;
        case IFLA_LINKINFO:
            if (const auto kind = Netlink::attribute(next->value, IFLA_INFO_KIND)) link.kind = Netlink::text(*kind);
            break;
        case IFLA_STATS64: {
            const auto counters = Netlink::readPrefix<rtnl_link_stats64>(next->value);
            link.counters =
                LinkCounters{counters.rx_packets, counters.rx_errors, counters.rx_bytes,  counters.tx_packets,
                             counters.tx_errors,  counters.tx_bytes,  counters.collisions};
            break;
        }
        default:
            break;
        }
    }
    if (link.index <= 0 || link.name.empty()) return std::nullopt;
    return link;
}

std::optional<LinkAddress> KernelMessage::address(Bytes body)
{
    const auto header = Netlink::read<ifaddrmsg>(body);
    if (!header) return std::nullopt;
    const Bytes attributes = Netlink::behind(body, sizeof(ifaddrmsg));
    LinkAddress address;
    address.index = static_cast<std::int32_t>(header->ifa_index);
    address.prefixLength = header->ifa_prefixlen;
    address.local = byteText(Netlink::attribute(attributes, IFA_LOCAL));
    address.broadcast = byteText(Netlink::attribute(attributes, IFA_BROADCAST));
    const auto other = byteText(Netlink::attribute(attributes, IFA_ADDRESS));
    if (address.local.empty())
        address.local = other;
    else if (other != address.local && isAddress(other))
        address.peer = other;
    if (!isAddress(address.local)) return std::nullopt;
    return address;
}

std::optional<Route> KernelMessage::route(Bytes body)
{
    const auto header = Netlink::read<rtmsg>(body);
    if (!header) return std::nullopt;
    const Bytes attributes = Netlink::behind(body, sizeof(rtmsg));
    Route route;
    route.prefixLength = header->rtm_dst_len;
    route.isIPv6 = header->rtm_family == AF_INET6;
    route.isUnicast = header->rtm_type == RTN_UNICAST;
    route.isDown = (header->rtm_flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN)) != 0;
    route.metric = Netlink::readAttribute<std::uint32_t>(attributes, RTA_PRIORITY).value_or(0);
    route.index = Netlink::readAttribute<std::int32_t>(attributes, RTA_OIF).value_or(0);
    route.gateway = gateway(attributes);
    if (route.index == 0) {
        if (const auto hops = Netlink::attribute(attributes, RTA_MULTIPATH)) readFirstHop(*hops, route);
    }
    return route;
}

std::optional<KernelNetwork> KernelNetwork::open()
{
    auto socket = NetlinkSocket::open(NETLINK_ROUTE);
    if (!socket) return std::nullopt;
    return KernelNetwork{std::move(*socket)};
}

int KernelNetwork::link(std::string_view name, Link& found)
{
    if (name.empty() || name.size() >= IFNAMSIZ || name.find('\0') != std::string_view::npos) return ENODEV;
    NetlinkRequest request{RTM_GETLINK};
    request.add(ifinfomsg{}).attribute(IFLA_IFNAME, textBytes(std::string{name} + '\0'));
    std::optional<Link> answer;
    const int error =
        socket_.request(request, [&](const auto& message) { answer = KernelMessage::link(message.body); });
    if (error != 0) return error;
    // The kernel also knows alternative names; they are no names of this role.
    if (!answer || answer->name != name) return ENODEV;
    found = std::move(*answer);
    return 0;
}

int KernelNetwork::links(std::vector<Link>& found)
{
    NetlinkRequest request{RTM_GETLINK};
    request.add(ifinfomsg{});
    const int error = socket_.dump(
        request, [&] { found.clear(); },
        [&](const auto& message) {
            if (auto link = KernelMessage::link(message.body)) found.push_back(std::move(*link));
        });
    std::sort(found.begin(), found.end(), [](const Link& a, const Link& b) { return a.index < b.index; });
    return error == EINTR ? 0 : error;
}

int KernelNetwork::addresses(std::int32_t index, std::vector<LinkAddress>& found)
{
    found.clear();
    for (const auto family : families) {
        ifaddrmsg header{};
        header.ifa_family = family;
        header.ifa_index = static_cast<std::uint32_t>(index);
        const auto before = static_cast<std::ptrdiff_t>(found.size());
        const int error = socket_.dump(
            NetlinkRequest{RTM_GETADDR}.add(header), [&] { found.erase(found.begin() + before, found.end()); },
            [&](const auto& message) {
                auto address = KernelMessage::address(message.body);
                // An older kernel lists all interfaces, and one without a family the other family's addresses.
                const std::size_t size = family == AF_INET ? 4 : 16;
                if (address && address->index == index && address->local.size() == size)
                    found.push_back(std::move(*address));
            });
        if (error != 0 && error != EINTR) return error;
    }
    return 0;
}

int KernelNetwork::routeTo(std::string_view address, Route& found)
{
    rtmsg header{};
    header.rtm_family = address.size() == 4 ? AF_INET : AF_INET6;
    header.rtm_dst_len = static_cast<std::uint8_t>(address.size() * 8);
    NetlinkRequest request{RTM_GETROUTE};
    request.add(header).attribute(RTA_DST, textBytes(address));
    std::optional<Route> answer;
    const int error =
        socket_.request(request, [&](const auto& message) { answer = KernelMessage::route(message.body); });
    if (error != 0) return error;
    if (!answer) return EPROTO;
    found = std::move(*answer);
    return 0;
}

int KernelNetwork::defaultRoutes(std::vector<Route>& found)
{
    found.clear();
    for (const auto family : families) {
        rtmsg header{};
        header.rtm_family = family;
        const auto before = static_cast<std::ptrdiff_t>(found.size());
        const int error = socket_.dump(
            NetlinkRequest{RTM_GETROUTE}.add(header), [&] { found.erase(found.begin() + before, found.end()); },
            [&](const auto& message) {
                auto route = KernelMessage::route(message.body);
                if (route && route->prefixLength == 0 && route->index > 0) found.push_back(std::move(*route));
            });
        if (error != 0 && error != EINTR) return error;
    }
    return 0;
}

} // namespace quellon
