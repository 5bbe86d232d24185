#include "QuellonProbe/LinkKind.h"

#include "QuellonProbe/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <net/if_arp.h>

namespace quellon {
namespace {

using testing::TemporaryFolder;
using namespace std::string_view_literals;

TEST(LinkKind, linkKind)
{
    struct Case {
        const char* name;
        std::uint16_t hardwareType;
        const char* kind;
        DeviceFacts facts;
        LinkKind expected;
        std::string_view port;
    };
    const Case cases[] = {
        {"loopback", ARPHRD_LOOPBACK, "", {}, LinkKind::loopback, "Loopback"},
        {"Wi-Fi", ARPHRD_ETHER, "", {"wlan", "iwlwifi", false}, LinkKind::wifi, "Wi-Fi"},
        {"Wi-Fi stick", ARPHRD_ETHER, "", {"wlan", "mt76x2u", true}, LinkKind::wifi, "Wi-Fi"},
        {"wired", ARPHRD_ETHER, "", {"", "e1000e", false}, LinkKind::ethernet, "Ethernet"},
        {"nothing known but the type", ARPHRD_ETHER, "", {}, LinkKind::ethernet, "Ethernet"},
        {"USB adapter", ARPHRD_ETHER, "", {"", "ax88179_178a", true}, LinkKind::usbEthernet, "USB Ethernet"},
        {"iPhone on a cable", ARPHRD_ETHER, "", {"", "ipheth", true}, LinkKind::iPhoneUsb, "iPhone USB"},
        {"Android on a cable", ARPHRD_ETHER, "", {"", "rndis_host", true}, LinkKind::usbTethering, "USB tethering"},
        {"phone with the Ethernet class",
         ARPHRD_ETHER,
         "",
         {"", "cdc_ether", true},
         LinkKind::usbTethering,
         "USB tethering"},
        {"phone with the network class",
         ARPHRD_ETHER,
         "",
         {"", "cdc_ncm", true},
         LinkKind::usbTethering,
         "USB tethering"},
        {"phone by Bluetooth", ARPHRD_ETHER, "", {"bluetooth", "", false}, LinkKind::bluetoothPan, "Bluetooth PAN"},
        {"modem that looks like Ethernet",
         ARPHRD_ETHER,
         "",
         {"wwan", "cdc_mbim", true},
         LinkKind::mobileBroadband,
         "Mobile broadband"},
        {"modem without link layer",
         ARPHRD_NONE,
         "",
         {"wwan", "qmi_wwan", true},
         LinkKind::mobileBroadband,
         "Mobile broadband"},
        {"raw IP", 519, "", {}, LinkKind::mobileBroadband, "Mobile broadband"},
        {"modem made by the kernel's own framework",
         ARPHRD_NONE,
         "wwan",
         {},
         LinkKind::mobileBroadband,
         "Mobile broadband"},
        {"tun", ARPHRD_NONE, "tun", {}, LinkKind::tunnel, "VPN tunnel"},
        {"tap", ARPHRD_ETHER, "tun", {}, LinkKind::tunnel, "VPN tunnel"},
        {"WireGuard", ARPHRD_NONE, "wireguard", {"wireguard", "", false}, LinkKind::tunnel, "VPN tunnel"},
        {"PPP", ARPHRD_PPP, "ppp", {"ppp", "", false}, LinkKind::tunnel, "VPN tunnel"},
        {"IPsec", ARPHRD_NONE, "xfrm", {}, LinkKind::tunnel, "VPN tunnel"},
        {"IP in IP", ARPHRD_TUNNEL, "ipip", {}, LinkKind::tunnel, "VPN tunnel"},
        {"bridge", ARPHRD_ETHER, "bridge", {"bridge", "", false}, LinkKind::bridge, "Bridge"},
        {"VLAN", ARPHRD_ETHER, "vlan", {"vlan", "", false}, LinkKind::vlan, "VLAN"},
        {"bond", ARPHRD_ETHER, "bond", {"bond", "", false}, LinkKind::bond, "Bond"},
        {"container's end", ARPHRD_ETHER, "veth", {}, LinkKind::virtual_, "Virtual interface"},
        {"something else", ARPHRD_IEEE1394, "", {}, LinkKind::other, "Network interface"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Link link;
        link.hardwareType = c.hardwareType;
        link.kind = c.kind;
        EXPECT_EQ(linkKind(link, c.facts), c.expected);
        EXPECT_EQ(portName(c.expected), c.port);
    }
}

TEST(DeviceFolder, readsTheDeviceTree)
{
    const TemporaryFolder tree;
    tree.write("usb0/uevent", "INTERFACE=usb0\nIFINDEX=5\n");
    tree.link("usb0/device/driver", "../../../../bus/usb/drivers/ipheth");
    tree.link("usb0/device/subsystem", "../../../../bus/usb");
    tree.write("wlan0/uevent", "DEVTYPE=wlan\nINTERFACE=wlan0\nIFINDEX=3\n");
    tree.link("wlan0/device/subsystem", "../../../../bus/pci");
    tree.write("eth0/uevent", "DEVTYPE=wlan\nINTERFACE=eth0\nIFINDEX=4\n");
    tree.write("bare/uevent", "");
    const DeviceFolder folder{tree.path()};
    struct Case {
        const char* name;
        const char* interface;
        std::int32_t index;
        DeviceFacts facts;
    };
    const Case cases[] = {
        {"driver behind USB", "usb0", 5, {"", "ipheth", true}},
        {"type and no driver", "wlan0", 3, {"wlan", "", false}},
        {"same name in another namespace", "eth0", 9, {}},
        {"empty uevent", "bare", 1, {}},
        {"unknown", "nope", 1, {}},
        {"name that would lead elsewhere", "..", 1, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Link link;
        link.name = c.interface;
        link.index = c.index;
        EXPECT_EQ(folder.facts(link), c.facts);
        EXPECT_EQ(DeviceFolder{tree.path() + "/none"}.facts(link), DeviceFacts{});
    }
}

TEST(LinkKind, hardwareText)
{
    EXPECT_EQ(hardwareText("\x02\xFC\x00\x0A\x00\x01"sv), "02:fc:00:0a:00:01");
    EXPECT_EQ(hardwareText(""), "");
}

} // namespace
} // namespace quellon
