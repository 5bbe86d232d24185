#include "QuellonProbe/KernelNetwork.h"

#include "QuellonProbe/PrivateNetwork.h"
#include "QuellonProbe/Text.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if_arp.h>
#include <sys/socket.h>

namespace quellon {
namespace {

using namespace std::string_view_literals;
using testing::inPrivateNetwork;

Bytes raw(std::string_view text)
{
    return std::as_bytes(std::span{text.data(), text.size()});
}

template <typename T>
Bytes raw(const T& value) requires std::is_trivially_copyable_v<T> &&(!std::is_convertible_v<T, std::string_view>)
{
    return std::as_bytes(std::span{&value, 1});
}

/// The message's body, of which each shorter piece can be read as well.
class Body {
public:
    explicit Body(const NetlinkRequest& request) : message_{request.message(0, 1)} {}
    [[nodiscard]] Bytes bytes() const { return Bytes{message_}.subspan(sizeof(nlmsghdr)); }

private:
    std::vector<std::byte> message_;
};

TEST(KernelMessage, link)
{
    ifinfomsg header{};
    header.ifi_index = 7;
    header.ifi_type = ARPHRD_ETHER;
    header.ifi_flags = 0x11043;
    rtnl_link_stats64 counters{};
    counters.rx_packets = 1;
    counters.tx_packets = 2;
    counters.rx_bytes = 0x1'0000'0003;
    counters.tx_bytes = 4;
    counters.rx_errors = 5;
    counters.tx_errors = 6;
    counters.collisions = 7;
    const Body body{NetlinkRequest{RTM_NEWLINK}
                        .add(header)
                        .attribute(IFLA_IFNAME, raw("wlan0\0"sv))
                        .attribute(IFLA_ADDRESS, raw("\x02\xFC\x00\x00\x00\x01"sv))
                        .attribute(IFLA_MTU, raw(std::uint32_t{1400}))
                        .attribute(IFLA_OPERSTATE, raw(std::uint8_t{6}))
                        .attribute(IFLA_LINKINFO, raw("\x09\x00\x01\x00veth\0\0\0\0"sv))
                        .attribute(IFLA_STATS64, raw(counters))};
    Link expected;
    expected.index = 7;
    expected.name = "wlan0";
    expected.kind = "veth";
    expected.hardwareAddress = "\x02\xFC\x00\x00\x00\x01"sv;
    expected.hardwareType = ARPHRD_ETHER;
    expected.flags = 0x11043;
    expected.mtu = 1400;
    expected.operationalState = 6;
    expected.counters = LinkCounters{1, 5, 0x1'0000'0003, 2, 6, 4, 7};
    EXPECT_EQ(KernelMessage::link(body.bytes()), expected);
    for (std::size_t size = 0; size < body.bytes().size(); ++size) {
        SCOPED_TRACE(size);
        // With the name there is a link, however much is missing behind it.
        EXPECT_EQ(KernelMessage::link(body.bytes().first(size)).has_value(), size >= sizeof header + 10);
    }
}

TEST(KernelMessage, address)
{
    ifaddrmsg header{};
    header.ifa_family = AF_INET;
    header.ifa_index = 3;
    header.ifa_prefixlen = 28;
    const auto inet = [&] { return NetlinkRequest{RTM_NEWADDR}.add(header); };
    const auto here = "\xAC\x14\x0A\x02"sv;
    const auto there = "\xAC\x14\x0A\x01"sv;
    const auto wide = "\xFE\x80\0\0\0\0\0\0\0\0\0\0\0\0\0\x01"sv;
    struct Case {
        const char* name;
        NetlinkRequest message;
        std::optional<LinkAddress> expected;
    };
    const Case cases[] = {
        {"ordinary", inet().attribute(IFA_ADDRESS, raw(here)).attribute(IFA_LOCAL, raw(here)),
         LinkAddress{3, std::string{here}, "", "", 28}},
        {"point to point", inet().attribute(IFA_ADDRESS, raw(there)).attribute(IFA_LOCAL, raw(here)),
         LinkAddress{3, std::string{here}, std::string{there}, "", 28}},
        {"broadcast", inet().attribute(IFA_LOCAL, raw(here)).attribute(IFA_BROADCAST, raw(there)),
         LinkAddress{3, std::string{here}, "", std::string{there}, 28}},
        {"IPv6 has no local", inet().attribute(IFA_ADDRESS, raw(wide)), LinkAddress{3, std::string{wide}, "", "", 28}},
        {"no address", inet(), std::nullopt},
        {"address of three bytes", inet().attribute(IFA_LOCAL, raw("\x01\x02\x03"sv)), std::nullopt},
        {"shorter than its header", NetlinkRequest{RTM_NEWADDR}.add(std::uint32_t{0}), std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(KernelMessage::address(Body{c.message}.bytes()), c.expected);
    }
}

TEST(KernelMessage, route)
{
    const auto message = [](std::uint8_t type, unsigned flags = 0) {
        rtmsg header{};
        header.rtm_family = AF_INET;
        header.rtm_type = type;
        header.rtm_flags = flags;
        return NetlinkRequest{RTM_NEWROUTE}.add(header);
    };
    const auto gateway = "\xAC\x14\x0A\x01"sv;
    const auto wide = "\xFE\x80\0\0\0\0\0\0\0\0\0\0\0\0\0\x01"sv;
    const auto index = [](std::int32_t value) { return value; };
    const auto via = std::string("\x0A\x00", 2) + std::string{wide};
    // Two next hops of 16 bytes: length, flags, hops, interface, then a gateway each.
    const std::string hops = std::string("\x10\x00\x00\x00\x05\x00\x00\x00\x08\x00\x05\x00", 12) +
                             std::string{gateway} + std::string("\x08\x00\x00\x00\x06\x00\x00\x00", 8);
    const std::string longHop = std::string("\x40\x00\x00\x00\x05\x00\x00\x00", 8);
    struct Case {
        const char* name;
        NetlinkRequest message;
        Route expected;
    };
    const Case cases[] = {
        {"gateway and metric",
         message(RTN_UNICAST)
             .attribute(RTA_OIF, raw(index(3)))
             .attribute(RTA_GATEWAY, raw(gateway))
             .attribute(RTA_PRIORITY, raw(std::uint32_t{600})),
         Route{3, std::string{gateway}, 600, 0, false, true, false}},
        {"on the link", message(RTN_UNICAST).attribute(RTA_OIF, raw(index(3))), Route{3, "", 0, 0, false, true, false}},
        {"IPv4 by way of an IPv6 gateway",
         message(RTN_UNICAST).attribute(RTA_OIF, raw(index(3))).attribute(RTA_VIA, raw(std::string_view{via})),
         Route{3, std::string{wide}, 0, 0, false, true, false}},
        {"gateway of a strange length",
         message(RTN_UNICAST).attribute(RTA_OIF, raw(index(3))).attribute(RTA_GATEWAY, raw("abc"sv)),
         Route{3, "", 0, 0, false, true, false}},
        {"first of several hops", message(RTN_UNICAST).attribute(RTA_MULTIPATH, raw(std::string_view{hops})),
         Route{5, std::string{gateway}, 0, 0, false, true, false}},
        {"hop beyond the end", message(RTN_UNICAST).attribute(RTA_MULTIPATH, raw(std::string_view{longHop})),
         Route{0, "", 0, 0, false, true, false}},
        {"carrier lost", message(RTN_UNICAST, RTNH_F_LINKDOWN).attribute(RTA_OIF, raw(index(3))),
         Route{3, "", 0, 0, false, true, true}},
        {"local", message(RTN_LOCAL).attribute(RTA_OIF, raw(index(1))), Route{1, "", 0, 0, false, false, false}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(KernelMessage::route(Body{c.message}.bytes()), c.expected);
    }
    EXPECT_EQ(KernelMessage::route(raw("abc"sv)), std::nullopt);
}

TEST(KernelNetwork, describesThisMachine)
{
    auto network = KernelNetwork::open();
    ASSERT_TRUE(network);
    Link loopback;
    ASSERT_EQ(network->link("lo", loopback), 0);
    EXPECT_EQ(loopback.name, "lo");
    EXPECT_EQ(loopback.hardwareType, ARPHRD_LOOPBACK);
    EXPECT_TRUE(loopback.counters);
    std::vector<Link> links;
    ASSERT_EQ(network->links(links), 0);
    EXPECT_EQ(std::count_if(links.begin(), links.end(), [](const Link& link) { return link.name == "lo"; }), 1);
    EXPECT_TRUE(std::is_sorted(links.begin(), links.end(), [](auto& a, auto& b) { return a.index < b.index; }));
    Link none;
    EXPECT_EQ(network->link("nosuchlink0", none), ENODEV);
    EXPECT_EQ(network->link("", none), ENODEV);
    EXPECT_EQ(network->link("a name of far too many letters", none), ENODEV);
    EXPECT_EQ(network->link("lo\0x"sv, none), ENODEV);
}

TEST(KernelNetwork, listsAddressesAndRoutesOfALink)
{
    const auto run = inPrivateNetwork(
        {"link set lo up", "link add wlan0 type veth peer name other",
         "addr add 172.20.10.2/28 broadcast 172.20.10.15 dev wlan0", "addr add fd00::2/64 dev wlan0 nodad",
         "link set wlan0 up", "link set other up", "route add default via 172.20.10.1 dev wlan0 metric 600",
         "route add default via 172.20.10.3 dev wlan0 metric 50 table 99"},
        [] {
            auto network = KernelNetwork::open();
            std::string text;
            Link link;
            std::vector<LinkAddress> addresses;
            std::vector<Route> routes;
            if (!network || network->link("wlan0", link) != 0 || network->addresses(link.index, addresses) != 0 ||
                network->defaultRoutes(routes) != 0)
                return std::string{"refused"};
            text += link.kind + "\n";
            for (const auto& each : addresses) {
                const auto local = addressText(each.local);
                if (local.compare(0, 4, "fe80") == 0) continue;
                text += local + "/" + std::to_string(each.prefixLength) + " " + addressText(each.broadcast) + "\n";
            }
            for (const auto& each : routes)
                text += addressText(each.gateway) + " " + std::to_string(each.metric) +
                        (each.index == link.index ? " here\n" : " elsewhere\n");
            return text;
        });
    if (run.lack) GTEST_SKIP() << *run.lack;
    EXPECT_EQ(run.text, "veth\n172.20.10.2/28 172.20.10.15\nfd00::2/64 \n"
                        "172.20.10.3 50 here\n172.20.10.1 600 here\n");
}

} // namespace
} // namespace quellon
