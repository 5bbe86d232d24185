#include "QuellonProbe/RouteRole.h"

#include "QuellonProbe/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <net/if.h>

namespace quellon {
namespace {

using namespace std::string_view_literals;

/// Addresses of the internet at large, which no local network holds: 1.1.1.1 and 2606:4700::1111.
constexpr std::array internetAddresses{"\x01\x01\x01\x01"sv, "\x26\x06\x47\0\0\0\0\0\0\0\0\0\0\0\x11\x11"sv};

/// The errors by which the kernel says that there is no way, or no such family; any other one is a refusal.
constexpr std::array noWay{ENETUNREACH, EHOSTUNREACH, ENETDOWN,   EACCES,       EINVAL,
                           ESRCH,       EAFNOSUPPORT, EOPNOTSUPP, EADDRNOTAVAIL};
static_assert(internetAddresses[0].size() == 4 && internetAddresses[1].size() == 16);

bool isLinkLocal(std::string_view address)
{
    return address.size() == 16 && address[0] == '\xFE' && (static_cast<unsigned char>(address[1]) & 0xC0U) == 0x80;
}

std::optional<std::string> refused(int error)
{
    complain("the route can't be read", error);
    return std::nullopt;
}

} // namespace

std::optional<std::string> RouteRole::answer(KernelNetwork& network)
{
    for (const auto address : internetAddresses) {
        Route route;
        const int error = network.routeTo(address, route);
        if (error != 0 && std::find(noWay.begin(), noWay.end(), error) == noWay.end()) return refused(error);
        if (error != 0 || !route.isUnicast) continue;
        std::array<char, IF_NAMESIZE> name{};
        if (if_indextoname(static_cast<unsigned>(route.index), name.data()) != nullptr)
            return text(route, cleanName(name.data()));
        // ENXIO: the interface has gone since.
        if (errno != ENXIO) return refused(errno);
    }
    return std::string{};
}

std::string RouteRole::text(const Route& route, std::string_view interface)
{
    std::string text = "   route to: default\n"
                       "destination: default\n"
                       "       mask: default\n";
    if (!route.gateway.empty()) {
        text.append("    gateway: ").append(addressText(route.gateway));
        if (isLinkLocal(route.gateway)) text.append("%").append(interface);
        text += '\n';
    }
    text.append("  interface: ").append(interface).append("\n");
    return text;
}

} // namespace quellon
