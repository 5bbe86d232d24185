#include "QuellonProbe/LocalAddresses.h"

#include "QuellonProbe/SocketMessage.h"

#include <gtest/gtest.h>
#include <net/if.h>

namespace quellon {
namespace {

using testing::address;
using testing::endpoints;

LocalAddresses laptop()
{
    LocalAddresses addresses;
    addresses.set({{address("172.20.10.2"), 3},
                   {address("fe80::5"), 4},
                   {address("fe80::5"), 3},
                   {address("127.0.0.1"), 1},
                   {address("2001:db8::2"), 3},
                   {address("10.8.0.6"), 9}});
    return addresses;
}

TEST(LocalAddresses, interface)
{
    struct Case {
        const char* name;
        const char* address;
        std::uint32_t preferred, interface;
    };
    constexpr Case cases[] = {
        {"the one that carries it", "172.20.10.2", 0, 3},
        {"a tunnel's own address", "10.8.0.6", 0, 9},
        {"IPv6", "2001:db8::2", 0, 3},
        {"nobody's", "172.20.10.3", 0, 0},
        {"one of several", "fe80::5", 4, 4},
        {"the first of several", "fe80::5", 0, 3},
        {"a preference that doesn't carry it", "172.20.10.2", 9, 3},
    };
    const auto addresses = laptop();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(addresses.interface(address(c.address), c.preferred), c.interface);
    }
}

TEST(LocalAddresses, isExternal)
{
    struct Case {
        const char* name;
        Endpoints ends;
        bool isExternal;
    };
    const Case cases[] = {
        {"to the internet", endpoints("172.20.10.2", 1, "8.8.8.8", 2), true},
        {"to the phone", endpoints("172.20.10.2", 1, "172.20.10.1", 2), true},
        {"from an address that is gone", endpoints("192.168.1.5", 1, "8.8.8.8", 2), true},
        {"loopback", endpoints("127.0.0.1", 1, "127.0.0.1", 2), false},
        {"IPv6 loopback", endpoints("::1", 1, "::1", 2), false},
        {"mapped loopback", endpoints("::ffff:127.0.0.1", 1, "::ffff:127.0.0.1", 2), false},
        {"to an address of its own", endpoints("172.20.10.2", 1, "172.20.10.2", 2), false},
        {"to another address of its own", endpoints("10.8.0.6", 1, "172.20.10.2", 2), false},
    };
    const auto addresses = laptop();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(addresses.isExternal(c.ends), c.isExternal);
    }
}

TEST(LocalAddresses, aNewTableReplacesTheOld)
{
    auto addresses = laptop();
    addresses.set({{address("172.20.10.2"), 12}});
    EXPECT_EQ(addresses.interface(address("172.20.10.2")), 12U);
    EXPECT_FALSE(addresses.contains(address("10.8.0.6")));
}

TEST(LocalAddresses, nameOfTheLoopbackAndOfNothing)
{
    LocalAddresses addresses;
    EXPECT_EQ(addresses.name(::if_nametoindex("lo")), "lo");
    EXPECT_EQ(addresses.name(0), "?");
}

TEST(LocalAddresses, refreshFindsTheLoopbackAddress)
{
    auto route = NetlinkSocket::open(NETLINK_ROUTE);
    ASSERT_TRUE(route);
    LocalAddresses addresses;
    ASSERT_EQ(addresses.refresh(*route), 0);
    if (!addresses.contains(address("127.0.0.1"))) GTEST_SKIP() << "the loopback is down here";
    EXPECT_EQ(addresses.interface(address("127.0.0.1")), ::if_nametoindex("lo"));
}

} // namespace
} // namespace quellon
