#pragma once

#include "QuellonProbe/KernelNetwork.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quellon {

/// What an interface is to its user.
enum class LinkKind : std::uint8_t {
    loopback,
    wifi,
    ethernet,
    usbEthernet,
    iPhoneUsb,
    usbTethering,
    bluetoothPan,
    mobileBroadband,
    tunnel,
    bridge,
    vlan,
    bond,
    virtual_,
    other,
};

/// What the device tree says about an interface; empty where it says nothing.
struct DeviceFacts {
    std::string type;   ///< DEVTYPE of the uevent file: "wlan", "wwan", "bluetooth", …
    std::string driver; ///< of the hardware behind it: "ipheth", "e1000e", …
    bool isUsb = false;

    friend bool operator==(const DeviceFacts&, const DeviceFacts&) = default;
};

/// The device tree's folder of network interfaces. It may be missing, and may show another network namespace than the
/// one that the kernel is asked about.
class DeviceFolder {
public:
    explicit DeviceFolder(std::string root = "/sys/class/net") : root_{std::move(root)} {}

    /// Empty facts when the folder knows no interface of this name, or one with another index.
    [[nodiscard]] DeviceFacts facts(const Link& link) const;

private:
    std::string root_;
};

[[nodiscard]] LinkKind linkKind(const Link& link, const DeviceFacts& facts);

/// The name under which a port of this kind is shown, as "Wi-Fi" or "USB Ethernet".
[[nodiscard]] std::string_view portName(LinkKind kind);

/// A hardware address as pairs of hexadecimal digits with colons between; empty for an empty one.
[[nodiscard]] std::string hardwareText(std::string_view address);

} // namespace quellon
