#include "QuellonProbe/IfconfigRole.h"

#include "QuellonProbe/PrivateBus.h"
#include "QuellonProbe/PrivateNetwork.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <net/if_arp.h>

namespace quellon {
namespace {

using namespace std::string_view_literals;
using testing::FakeNetworkManager;
using testing::inPrivateNetwork;
using testing::PrivateBus;
using testing::PrivateRun;

TEST(IfconfigRole, text)
{
    Link link;
    link.index = 13;
    link.name = "wlan0";
    link.flags = IFF_UP | IFF_BROADCAST | IFF_RUNNING | IFF_MULTICAST | 0x10000U;
    link.mtu = 1500;
    link.operationalState = 6;
    link.hardwareAddress = "\x02\xFC\x00\x00\x00\x01"sv;
    const std::vector<LinkAddress> addresses = {
        {13, std::string{"\xAC\x14\x0A\x02"sv}, "", std::string{"\xAC\x14\x0A\x0F"sv}, 28},
        {13, std::string{"\x0A\x00\x00\x02"sv}, std::string{"\x0A\x00\x00\x01"sv}, "", 0},
        {13, std::string{"\xFE\x80\0\0\0\0\0\0\0\0\0\0\0\0\0\x01"sv}, "", "", 64},
        {13, std::string{"\xFD\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x02"sv}, "", "", 128},
    };
    const std::string front = "wlan0: flags=11043<UP,BROADCAST,RUNNING,MULTICAST> mtu 1500\n"
                              "\tether 02:fc:00:00:00:01\n"
                              "\tinet 172.20.10.2 netmask 0xfffffff0 broadcast 172.20.10.15\n"
                              "\tinet 10.0.0.2 --> 10.0.0.1 netmask 0x00000000\n"
                              "\tinet6 fe80::1%wlan0 prefixlen 64 scopeid 0xd\n"
                              "\tinet6 fd00::2 prefixlen 128\n";
    EXPECT_EQ(IfconfigRole::text(link, addresses, {}), front + "\tstatus: active\n");
    EXPECT_EQ(IfconfigRole::text(link, addresses, {true, true, true}),
              front + "\tconstrained\n\texpensive\n\tcellular\n\tstatus: active\n");
    link.flags = 0;
    link.operationalState = 2;
    link.hardwareAddress = "\x01\x02\x03\x04"sv;
    EXPECT_EQ(IfconfigRole::text(link, {}, {}), "wlan0: flags=0<> mtu 1500\n\tstatus: inactive\n");
    link.flags = IFF_UP | IFF_RUNNING | IFF_LOOPBACK;
    link.operationalState = 0;
    link.hardwareAddress = "\0\0\0\0\0\0"sv;
    link.name = "a\nb";
    EXPECT_EQ(IfconfigRole::text(link, {}, {}), "a?b: flags=49<UP,LOOPBACK,RUNNING> mtu 1500\n\tstatus: active\n");
}

TEST(IfconfigRole, ownCost)
{
    using Device = std::optional<ManagedDevice>;
    struct Case {
        const char* name;
        LinkKind kind;
        Device device;
        LinkCost expected;
    };
    const Case cases[] = {
        {"nobody knows", LinkKind::wifi, std::nullopt, {}},
        {"not told", LinkKind::wifi, ManagedDevice{Metered::unknown, false}, {}},
        {"marked as metered", LinkKind::wifi, ManagedDevice{Metered::yes, false}, {true, false, false}},
        {"marked as not metered", LinkKind::wifi, ManagedDevice{Metered::no, false}, {}},
        {"guessed metered", LinkKind::wifi, ManagedDevice{Metered::guessYes, false}, {false, true, false}},
        {"guessed not metered", LinkKind::wifi, ManagedDevice{Metered::guessNo, false}, {}},
        {"modem by its kind", LinkKind::mobileBroadband, std::nullopt, {false, false, true}},
        {"modem by NetworkManager", LinkKind::tunnel, ManagedDevice{Metered::unknown, true}, {false, false, true}},
        {"modem guessed metered",
         LinkKind::mobileBroadband,
         ManagedDevice{Metered::guessYes, true},
         {false, true, true}},
        {"modem guessed not metered",
         LinkKind::mobileBroadband,
         ManagedDevice{Metered::guessNo, true},
         {false, false, true}},
        {"modem marked as not metered", LinkKind::mobileBroadband, ManagedDevice{Metered::no, true}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(IfconfigRole::ownCost(c.kind, c.device), c.expected);
    }
}

/// The words about cost in the answer for an interface of a private network, each in brackets; NetworkManager is asked
/// at `bus`.
PrivateRun costWords(const std::vector<std::string>& lines, const std::string& interface, const std::string& bus)
{
    return inPrivateNetwork(lines, [&] {
        auto network = KernelNetwork::open();
        if (!network) return std::string{"no socket"};
        const DeviceFolder devices{"/nonexistent"};
        MessageBus connection{bus};
        NetworkManager manager{connection};
        const auto text = IfconfigRole{*network, devices, manager}.answer(interface);
        if (!text) return std::string{"refused"};
        if (text->empty()) return std::string{"empty"};
        std::string words;
        for (const auto* word : {"constrained", "expensive", "cellular"}) {
            if (text->find(word) != std::string::npos) words += "[" + std::string{word} + "]";
        }
        return words + (text->find("status: ") != std::string::npos ? "" : "no status");
    });
}

const std::vector<std::string> wlan = {"link add wlan0 type veth peer name other", "link set wlan0 up",
                                       "link set other up", "addr add 192.168.1.2/24 dev wlan0"};

TEST(IfconfigRole, asksNetworkManager)
{
    const PrivateBus bus;
    if (!bus.isRunning()) GTEST_SKIP() << "no dbus-daemon here";
    FakeNetworkManager fake{bus};
    struct Case {
        const char* name;
        std::uint32_t metered;
        std::uint32_t type;
        const char* interface;
        const char* words;
    };
    constexpr Case cases[] = {
        {"unknown", 0, 2, "wlan0", ""},
        {"yes", 1, 2, "wlan0", "[constrained]"},
        {"no", 2, 2, "wlan0", ""},
        {"guessed yes", 3, 2, "wlan0", "[expensive]"},
        {"guessed no", 4, 2, "wlan0", ""},
        {"modem", 3, 8, "wlan0", "[expensive][cellular]"},
        {"modem marked as not metered", 2, 8, "wlan0", ""},
        {"interface that NetworkManager doesn't know", 1, 8, "other", ""},
        {"no such interface", 1, 8, "nope", "empty"},
        {"loopback", 1, 8, "lo", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fake.metered = c.metered;
        fake.deviceType = c.type;
        const auto run = costWords(wlan, c.interface, bus.address());
        if (run.lack) GTEST_SKIP() << *run.lack;
        EXPECT_EQ(run.text, c.words);
    }
    fake.stop();
    EXPECT_EQ(costWords(wlan, "wlan0", bus.address()).text, "") << "without the service";
    EXPECT_EQ(costWords(wlan, "wlan0", "unix:path=/nonexistent").text, "") << "without a bus";
}

TEST(IfconfigRole, looksUnderATunnel)
{
    const PrivateBus bus;
    if (!bus.isRunning()) GTEST_SKIP() << "no dbus-daemon here";
    FakeNetworkManager fake{bus};
    auto lines = wlan;
    for (const auto* line : {"tuntap add dev tun9 mode tun", "addr add 10.9.0.2/24 dev tun9", "link set tun9 up",
                             "route add default dev tun9", "addr add 172.20.10.2/28 dev other"})
        lines.emplace_back(line);
    struct Case {
        const char* name;
        std::uint32_t metered;
        std::vector<std::string> routes;
        const char* words;
    };
    const Case cases[] = {
        {"nothing under it", 1, {}, ""},
        {"link that isn't metered", 4, {"route add default via 192.168.1.1 metric 600"}, ""},
        {"link marked as metered", 1, {"route add default via 192.168.1.1 metric 600"}, "[expensive]"},
        {"link guessed metered", 3, {"route add default via 192.168.1.1 metric 600"}, "[expensive]"},
        {"phone's gateway", 4, {"route add default via 172.20.10.1 metric 600"}, "[expensive]"},
        {"smallest metric decides",
         1,
         {"addr add 192.168.7.2/24 dev other", "route add default via 192.168.1.1 metric 600",
          "route add default via 192.168.7.1 metric 100"},
         ""},
        {"smaller metric in another table",
         1,
         {"addr add 192.168.7.2/24 dev other", "route add default via 192.168.1.1 metric 600",
          "route add default via 192.168.7.1 metric 100 table 77"},
         ""},
        {"smaller metric in the main table",
         1,
         {"addr add 192.168.7.2/24 dev other", "route add default via 192.168.1.1 metric 600 table 77",
          "route add default via 192.168.7.1 dev other metric 100"},
         ""},
        {"route in another table", 1, {"route add default via 192.168.1.1 table 77"}, "[expensive]"},
        {"IPv6 alone under it", 1, {"-6 route add default via fe80::1 dev wlan0"}, "[expensive]"},
        {"IPv4 before IPv6",
         1,
         {"addr add 192.168.7.2/24 dev other", "-6 route add default via fe80::1 dev wlan0 metric 1",
          "route add default via 192.168.7.1 metric 600"},
         ""},
        {"phone marked as not metered",
         2,
         {"addr add 172.20.10.5/28 dev wlan0", "route add default via 172.20.10.1 dev wlan0 metric 600"},
         ""},
        {"local-only route", 1, {"route add blackhole default table 77"}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fake.metered = c.metered;
        auto all = lines;
        all.insert(all.end(), c.routes.begin(), c.routes.end());
        const auto run = costWords(all, "tun9", bus.address());
        if (run.lack) GTEST_SKIP() << *run.lack;
        EXPECT_EQ(run.text, c.words);
    }
    auto metered = lines;
    metered.emplace_back("route add default via 172.20.10.1 metric 600");
    const auto plain = costWords(metered, "wlan0", "unix:path=/nonexistent");
    EXPECT_EQ(plain.text, "") << "only a tunnel has a link under it";
}

} // namespace
} // namespace quellon
