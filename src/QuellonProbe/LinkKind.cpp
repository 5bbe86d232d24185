#include "QuellonProbe/LinkKind.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <fcntl.h>
#include <net/if_arp.h>
#include <unistd.h>

namespace quellon {
namespace {

constexpr std::size_t smallFile = 4096;
constexpr std::uint16_t rawIp = 519; ///< ARPHRD_RAWIP, which older headers lack
constexpr std::array<std::string_view, 15> tunnelKinds{"tun",    "wireguard", "ppp",    "ipip", "sit",
                                                       "ip6tnl", "gre",       "ip6gre", "vti",  "vti6",
                                                       "xfrm",   "ovpn",      "ipvti",  "l2tp", "gretap"};
constexpr std::array<std::uint16_t, 6> tunnelTypes{ARPHRD_PPP, ARPHRD_TUNNEL, ARPHRD_TUNNEL6,
                                                   ARPHRD_SIT, ARPHRD_IPGRE,  ARPHRD_NONE};
constexpr std::array<std::string_view, 3> tetheringDrivers{"rndis_host", "cdc_ether", "cdc_ncm"};

template <typename List, typename Value>
bool contains(const List& list, const Value& value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// The first 4 KiB of a file; empty when it can't be read.
std::string readSmall(const std::string& path)
{
    std::string text(smallFile, '\0');
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    const auto size = descriptor < 0 ? -1 : read(descriptor, text.data(), text.size());
    if (descriptor >= 0) close(descriptor);
    text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return text;
}

/// The last name of what a symbolic link leads to; empty when it is none.
std::string linkedName(const std::string& path)
{
    std::array<char, PATH_MAX> target;
    const auto size = readlink(path.c_str(), target.data(), target.size());
    if (size <= 0) return {};
    const std::string_view whole{target.data(), static_cast<std::size_t>(size)};
    return std::string{whole.substr(whole.rfind('/') + 1)};
}

std::string lineValue(std::string_view text, std::string_view key)
{
    while (!text.empty()) {
        const auto line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.substr(0, key.size()) == key) return std::string{line.substr(key.size())};
    }
    return {};
}

LinkKind hardwareKind(const Link& link, const DeviceFacts& facts)
{
    if (facts.driver == "ipheth") return LinkKind::iPhoneUsb;
    if (contains(tetheringDrivers, facts.driver)) return LinkKind::usbTethering;
    if (link.hardwareType == ARPHRD_ETHER) return facts.isUsb ? LinkKind::usbEthernet : LinkKind::ethernet;
    return LinkKind::other;
}

} // namespace

DeviceFacts DeviceFolder::facts(const Link& link) const
{
    const std::string folder = root_ + "/" + link.name;
    const auto uevent = readSmall(folder + "/uevent");
    if (lineValue(uevent, "IFINDEX=") != std::to_string(link.index)) return {};
    return {lineValue(uevent, "DEVTYPE="), linkedName(folder + "/device/driver"),
            linkedName(folder + "/device/subsystem") == "usb"};
}

LinkKind linkKind(const Link& link, const DeviceFacts& facts)
{
    if (link.hardwareType == ARPHRD_LOOPBACK) return LinkKind::loopback;
    if (facts.type == "wlan") return LinkKind::wifi;
    if (facts.type == "wwan" || link.hardwareType == rawIp || link.kind == "wwan" || link.kind == "rmnet")
        return LinkKind::mobileBroadband;
    if (facts.type == "bluetooth") return LinkKind::bluetoothPan;
    if (contains(tunnelKinds, link.kind) || contains(tunnelTypes, link.hardwareType)) return LinkKind::tunnel;
    if (link.kind == "bridge") return LinkKind::bridge;
    if (link.kind == "vlan") return LinkKind::vlan;
    if (link.kind == "bond" || link.kind == "team") return LinkKind::bond;
    if (!link.kind.empty()) return LinkKind::virtual_;
    return hardwareKind(link, facts);
}

std::string_view portName(LinkKind kind)
{
    switch (kind) {
    case LinkKind::loopback:
        return "Loopback";
    case LinkKind::wifi:
        return "Wi-Fi";
    case LinkKind::ethernet:
        return "Ethernet";
    case LinkKind::usbEthernet:
        return "USB Ethernet";
    case LinkKind::iPhoneUsb:
        return "iPhone USB";
    case LinkKind::usbTethering:
        return "USB tethering";
    case LinkKind::bluetoothPan:
        return "Bluetooth PAN";
    case LinkKind::mobileBroadband:
        return "Mobile broadband";
    case LinkKind::tunnel:
        return "VPN tunnel";
    case LinkKind::bridge:
        return "Bridge";
    case LinkKind::vlan:
        return "VLAN";
    case LinkKind::bond:
        return "Bond";
    case LinkKind::virtual_:
        return "Virtual interface";
    case LinkKind::other:
        break;
    }
    return "Network interface";
}

std::string hardwareText(std::string_view address)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char c : address) {
        if (!text.empty()) text += ':';
        text += digits[static_cast<unsigned char>(c) >> 4U];
        text += digits[static_cast<unsigned char>(c) & 0x0FU];
    }
    return text;
}

} // namespace quellon
