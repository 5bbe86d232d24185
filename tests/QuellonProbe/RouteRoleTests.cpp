#include "QuellonProbe/RouteRole.h"

#include "QuellonProbe/PrivateNetwork.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace quellon {
namespace {

using testing::inPrivateNetwork;
using namespace std::string_view_literals;

const std::string head = "   route to: default\ndestination: default\n       mask: default\n";

TEST(RouteRole, text)
{
    struct Case {
        const char* name;
        std::string_view gateway;
        std::string lines;
    };
    const Case cases[] = {
        {"hotspot", "\xAC\x14\x0A\x01"sv, "    gateway: 172.20.10.1\n  interface: wlan0\n"},
        {"no gateway", ""sv, "  interface: wlan0\n"},
        {"link-local gateway has its zone", "\xFE\x80\0\0\0\0\0\0\0\0\0\0\0\0\0\x01"sv,
         "    gateway: fe80::1%wlan0\n  interface: wlan0\n"},
        {"last of the link-local range", "\xFE\xBF\0\0\0\0\0\0\0\0\0\0\0\0\0\x01"sv,
         "    gateway: febf::1%wlan0\n  interface: wlan0\n"},
        {"global IPv6 gateway", "\xFD\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x01"sv, "    gateway: fd00::1\n  interface: wlan0\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Route route;
        route.gateway = c.gateway;
        EXPECT_EQ(RouteRole::text(route, "wlan0"), head + c.lines);
    }
}

TEST(RouteRole, followsTheKernelsChoice)
{
    const std::vector<std::string> link = {"link add wlan0 type veth peer name other", "link set wlan0 up",
                                           "link set other up", "addr add 172.20.10.2/28 dev wlan0",
                                           "addr add fd00::2/64 dev wlan0 nodad"};
    struct Case {
        const char* name;
        std::vector<std::string> lines;
        std::string expected;
    };
    const Case cases[] = {
        {"no default route", {}, ""},
        {"IPv4", {"route add default via 172.20.10.1"}, head + "    gateway: 172.20.10.1\n  interface: wlan0\n"},
        {"IPv6 alone",
         {"-6 route add default via fe80::1 dev wlan0"},
         head + "    gateway: fe80::1%wlan0\n  interface: wlan0\n"},
        {"IPv4 before IPv6",
         {"-6 route add default via fe80::1 dev wlan0", "route add default via 172.20.10.1"},
         head + "    gateway: 172.20.10.1\n  interface: wlan0\n"},
        {"without a gateway", {"route add default dev wlan0"}, head + "  interface: wlan0\n"},
        {"smaller metric",
         {"route add default via 172.20.10.1 metric 600", "route add default via 172.20.10.3 metric 100"},
         head + "    gateway: 172.20.10.3\n  interface: wlan0\n"},
        {"two halves before the default",
         {"route add default via 172.20.10.1", "route add 0.0.0.0/1 via 172.20.10.5"},
         head + "    gateway: 172.20.10.5\n  interface: wlan0\n"},
        {"rule to another table",
         {"route add default via 172.20.10.1", "route add default via 172.20.10.6 table 51",
          "rule add not fwmark 51 table 51"},
         head + "    gateway: 172.20.10.6\n  interface: wlan0\n"},
        {"IPv4 by way of an IPv6 gateway",
         {"route add default via inet6 fe80::1 dev wlan0"},
         head + "    gateway: fe80::1%wlan0\n  interface: wlan0\n"},
        {"the address is this machine's own", {"link set lo up", "addr add 1.1.1.1/32 dev lo"}, ""},
        {"unreachable", {"route add unreachable default", "-6 route add unreachable default"}, ""},
        {"blackhole", {"route add blackhole default"}, ""},
        {"prohibited", {"route add prohibit default"}, ""},
        {"link down", {"route add default via 172.20.10.1", "link set wlan0 down"}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto lines = link;
        lines.insert(lines.end(), c.lines.begin(), c.lines.end());
        const auto run = inPrivateNetwork(lines, [] {
            auto network = KernelNetwork::open();
            return network ? RouteRole::answer(*network).value_or("refused") : "no socket";
        });
        if (run.lack) GTEST_SKIP() << *run.lack;
        EXPECT_EQ(run.text, c.expected);
    }
}

TEST(RouteRole, whatCannotBeNamedIsNotCalledOffline)
{
    const auto run =
        inPrivateNetwork({"link add wlan0 type veth peer name other", "link set wlan0 up", "link set other up",
                          "addr add 172.20.10.2/28 dev wlan0", "route add default via 172.20.10.1"},
                         [] {
                             auto network = KernelNetwork::open();
                             // The name takes a socket, and there is none left.
                             const rlimit none{0, 0};
                             if (!network || setrlimit(RLIMIT_NOFILE, &none) != 0)
                                 return std::string{"no socket, or no limit"};
                             return RouteRole::answer(*network).value_or("refused");
                         });
    if (run.lack) GTEST_SKIP() << *run.lack;
    EXPECT_EQ(run.text, "refused");
}

} // namespace
} // namespace quellon
