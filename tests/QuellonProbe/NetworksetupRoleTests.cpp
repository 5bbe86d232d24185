#include "QuellonProbe/NetworksetupRole.h"

#include "QuellonProbe/PrivateNetwork.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace std::string_view_literals;
using NetworksetupRole::Port;
using testing::inPrivateNetwork;

TEST(NetworksetupRole, text)
{
    const std::string address{"\x02\xFC\x00\x00\x00\x01"sv};
    EXPECT_EQ(NetworksetupRole::text({}), "");
    EXPECT_EQ(NetworksetupRole::text({{LinkKind::loopback, "lo", ""}}), "");
    EXPECT_EQ(NetworksetupRole::text({{LinkKind::ethernet, "eth0", address},
                                      {LinkKind::loopback, "lo", ""},
                                      {LinkKind::wifi, "wlan0", address},
                                      {LinkKind::ethernet, "eth1", ""},
                                      {LinkKind::ethernet, "a\nb", ""}}),
              "\nHardware Port: Ethernet\nDevice: eth0\nEthernet Address: 02:fc:00:00:00:01\n"
              "\nHardware Port: Wi-Fi\nDevice: wlan0\nEthernet Address: 02:fc:00:00:00:01\n"
              "\nHardware Port: Ethernet 2\nDevice: eth1\nEthernet Address: N/A\n"
              "\nHardware Port: Ethernet 3\nDevice: a?b\nEthernet Address: N/A\n");
}

TEST(NetworksetupRole, namesTheLinksOfANamespace)
{
    const auto run = inPrivateNetwork(
        {"link add up0 address 02:00:00:00:00:01 type veth peer name up1 address 02:00:00:00:00:02",
         "link add br0 address 02:00:00:00:00:03 type bridge"},
        [] {
            auto network = KernelNetwork::open();
            const DeviceFolder devices;
            return network ? NetworksetupRole::answer(*network, devices).value_or("refused") : "no socket";
        });
    if (run.lack) GTEST_SKIP() << *run.lack;
    // Links that the kernel makes in each new namespace may stand before them; the pair's ends come in either order.
    for (const auto* block :
         {"Device: up0\nEthernet Address: 02:00:00:00:00:01\n", "Device: up1\nEthernet Address: 02:00:00:00:00:02\n",
          "\nHardware Port: Virtual interface\nDevice: ", "\nHardware Port: Virtual interface 2\n",
          "\nHardware Port: Bridge\nDevice: br0\nEthernet Address: 02:00:00:00:00:03\n"})
        EXPECT_NE(run.text.find(block), std::string::npos) << block << "in" << run.text;
    EXPECT_EQ(run.text.find("Device: lo\n"), std::string::npos);
}

} // namespace
} // namespace quellon
