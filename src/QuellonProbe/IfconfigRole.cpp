#include "QuellonProbe/IfconfigRole.h"

#include "QuellonProbe/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <net/if.h>
#include <utility>

namespace quellon {
namespace {

constexpr std::chrono::seconds managerPatience{1};
/// The range that a phone's personal hotspot hands out, 172.20.10.0/24, in bytes.
constexpr std::string_view hotspotRange = "\xAC\x14\x0A";
constexpr std::size_t ethernetAddressSize = 6;
constexpr std::uint8_t operationalUp = 6; ///< IF_OPER_UP

constexpr std::array<std::pair<std::uint32_t, const char*>, 16> flagNames{{
    {IFF_UP, "UP"},
    {IFF_BROADCAST, "BROADCAST"},
    {IFF_DEBUG, "DEBUG"},
    {IFF_LOOPBACK, "LOOPBACK"},
    {IFF_POINTOPOINT, "POINTOPOINT"},
    {IFF_NOTRAILERS, "NOTRAILERS"},
    {IFF_RUNNING, "RUNNING"},
    {IFF_NOARP, "NOARP"},
    {IFF_PROMISC, "PROMISC"},
    {IFF_ALLMULTI, "ALLMULTI"},
    {IFF_MASTER, "MASTER"},
    {IFF_SLAVE, "SLAVE"},
    {IFF_MULTICAST, "MULTICAST"},
    {IFF_PORTSEL, "PORTSEL"},
    {IFF_AUTOMEDIA, "AUTOMEDIA"},
    {IFF_DYNAMIC, "DYNAMIC"},
}};

std::string hexadecimal(std::uint32_t number)
{
    std::array<char, 16> text;
    const int size = std::snprintf(text.data(), text.size(), "%x", number);
    return {text.data(), static_cast<std::size_t>(size)};
}

std::string flagText(std::uint32_t flags)
{
    std::string names;
    for (const auto& [flag, name] : flagNames) {
        if ((flags & flag) == 0) continue;
        if (!names.empty()) names += ',';
        names += name;
    }
    return hexadecimal(flags) + "<" + names + ">";
}

std::string inetLine(const LinkAddress& address)
{
    const auto length = std::min<unsigned>(address.prefixLength, 32);
    const std::uint32_t mask = length == 0 ? 0 : ~std::uint32_t{0} << (32U - length);
    std::string line = "\tinet " + addressText(address.local);
    if (!address.peer.empty()) line += " --> " + addressText(address.peer);
    line += " netmask 0x";
    const auto digits = hexadecimal(mask);
    line.append(8 - digits.size(), '0').append(digits);
    if (!address.broadcast.empty()) line += " broadcast " + addressText(address.broadcast);
    return line + "\n";
}

std::string inet6Line(const LinkAddress& address, const Link& link)
{
    std::string line = "\tinet6 " + addressText(address.local);
    const bool isLinkLocal =
        address.local[0] == '\xFE' && (static_cast<unsigned char>(address.local[1]) & 0xC0U) == 0x80;
    if (isLinkLocal) line += "%" + cleanName(link.name);
    line += " prefixlen " + std::to_string(address.prefixLength);
    if (isLinkLocal) line += " scopeid 0x" + hexadecimal(static_cast<std::uint32_t>(link.index));
    return line + "\n";
}

bool isActive(const Link& link)
{
    // A driver that doesn't tell its state (0) has at least the flag.
    return link.operationalState == operationalUp || (link.operationalState == 0 && (link.flags & IFF_RUNNING) != 0);
}

} // namespace

std::optional<std::string> IfconfigRole::answer(std::string_view interface)
{
    Link link;
    std::vector<LinkAddress> addresses;
    int error = network_.link(interface, link);
    if (error == ENODEV) return std::string{};
    if (error == 0) error = network_.addresses(link.index, addresses);
    if (error != 0) {
        complain("the interface can't be read", error);
        return std::nullopt;
    }
    return text(link, addresses, cost(link, std::chrono::steady_clock::now() + managerPatience));
}

std::string IfconfigRole::text(const Link& link, const std::vector<LinkAddress>& addresses, const LinkCost& cost)
{
    std::string text =
        cleanName(link.name) + ": flags=" + flagText(link.flags) + " mtu " + std::to_string(link.mtu) + "\n";
    if (link.hardwareAddress.size() == ethernetAddressSize && (link.flags & IFF_LOOPBACK) == 0)
        text += "\tether " + hardwareText(link.hardwareAddress) + "\n";
    for (const auto& address : addresses) {
        text += address.local.size() == 4 ? inetLine(address) : inet6Line(address, link);
    }
    if (cost.constrained) text += "\tconstrained\n";
    if (cost.expensive) text += "\texpensive\n";
    if (cost.cellular) text += "\tcellular\n";
    return text + "\tstatus: " + (isActive(link) ? "active" : "inactive") + "\n";
}

LinkCost IfconfigRole::ownCost(LinkKind kind, const std::optional<ManagedDevice>& device)
{
    if (device && device->metered == Metered::no) return {};
    LinkCost cost;
    cost.constrained = device && device->metered == Metered::yes;
    cost.expensive = device && device->metered == Metered::guessYes;
    cost.cellular = kind == LinkKind::mobileBroadband || (device && device->isModem);
    return cost;
}

LinkCost IfconfigRole::cost(const Link& link, MessageBus::Deadline deadline)
{
    const auto kind = linkKind(link, devices_.facts(link));
    if (kind == LinkKind::loopback) return {};
    const auto device = manager_.device(link.name, deadline);
    auto cost = ownCost(kind, device);
    const bool isDenied = device && device->metered == Metered::no;
    if (kind == LinkKind::tunnel && !isDenied && cost == LinkCost{}) cost.expensive = underlayIsMetered(deadline);
    return cost;
}

/// Whether the link that carries a tunnel's packets is metered: that of the best default route, in whichever table,
/// that leads through no tunnel. A tunnel is often set up so that ordinary lookups never find this route.
bool IfconfigRole::underlayIsMetered(MessageBus::Deadline deadline)
{
    std::vector<Route> routes;
    std::vector<Link> links;
    if (network_.defaultRoutes(routes) != 0 || network_.links(links) != 0) return false;
    std::stable_sort(routes.begin(), routes.end(), [](const Route& a, const Route& b) {
        return std::pair{a.isIPv6, a.metric} < std::pair{b.isIPv6, b.metric};
    });
    for (const auto& route : routes) {
        const auto link =
            std::find_if(links.begin(), links.end(), [&](const Link& each) { return each.index == route.index; });
        if (!route.isUnicast || route.isDown || link == links.end() || (link->flags & IFF_UP) == 0) continue;
        const auto kind = linkKind(*link, devices_.facts(*link));
        if (kind == LinkKind::tunnel || kind == LinkKind::loopback) continue;
        const auto device = manager_.device(link->name, deadline);
        if (device && device->metered == Metered::no) return false;
        const bool isHotspot = route.gateway.size() == 4 && route.gateway.compare(0, 3, hotspotRange) == 0;
        return isHotspot || ownCost(kind, device) != LinkCost{};
    }
    return false;
}

} // namespace quellon
