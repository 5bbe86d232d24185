#include "QuellonProbe/NetstatRole.h"

#include "QuellonProbe/LinkKind.h"
#include "QuellonProbe/Text.h"

#include <cerrno>
#include <cstddef>
#include <net/if.h>

namespace quellon {
namespace {

constexpr std::string_view header =
    "Name       Mtu   Network       Address            Ipkts Ierrs     Ibytes    Opkts Oerrs     Obytes  Coll\n";
constexpr std::size_t ethernetAddressSize = 6;

void appendLeft(std::string& row, std::string_view text, std::size_t width)
{
    row.append(text).append(text.size() < width ? width - text.size() : 0, ' ').append(1, ' ');
}

void appendRight(std::string& row, std::uint64_t number, std::size_t width)
{
    const auto digits = std::to_string(number);
    row.append(digits.size() < width ? width - digits.size() : 0, ' ').append(digits).append(1, ' ');
}

} // namespace

std::optional<std::string> NetstatRole::answer(KernelNetwork& network, std::string_view interface)
{
    Link link;
    const int error = network.link(interface, link);
    if (error == ENODEV) return std::string{};
    if (error != 0) {
        complain("the counters can't be read", error);
        return std::nullopt;
    }
    return text(link);
}

std::string NetstatRole::text(const Link& link)
{
    if (!link.counters) return {};
    const bool isDown = (link.flags & IFF_UP) == 0;
    const bool hasAddress = link.hardwareAddress.size() == ethernetAddressSize && (link.flags & IFF_LOOPBACK) == 0;
    std::string text{header};
    appendLeft(text, cleanName(link.name) + (isDown ? "*" : ""), 10);
    appendLeft(text, std::to_string(link.mtu), 5);
    appendLeft(text, "<Link#" + std::to_string(link.index) + ">", 11);
    appendLeft(text, hasAddress ? hardwareText(link.hardwareAddress) : std::string{}, 17);
    appendRight(text, link.counters->packetsIn, 8);
    appendRight(text, link.counters->errorsIn, 5);
    appendRight(text, link.counters->bytesIn, 10);
    appendRight(text, link.counters->packetsOut, 8);
    appendRight(text, link.counters->errorsOut, 5);
    appendRight(text, link.counters->bytesOut, 10);
    appendRight(text, link.counters->collisions, 5);
    text.back() = '\n';
    return text;
}

} // namespace quellon
