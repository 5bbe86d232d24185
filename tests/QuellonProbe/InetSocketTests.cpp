#include "QuellonProbe/InetSocket.h"

#include "QuellonProbe/SocketMessage.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::address;
using testing::endpoints;
using testing::SocketMessage;

SocketMessage ordinary()
{
    SocketMessage message;
    message.ends("10.0.0.2", 50000, "93.184.216.34", 443);
    message.head.idiag_uid = 1000;
    message.head.idiag_inode = 777;
    message.head.id.idiag_cookie[0] = 0x89abcdef;
    message.head.id.idiag_cookie[1] = 0x01234567;
    return message;
}

TEST(SocketDiagnosis, parseReadsARow)
{
    const std::uint64_t group = 0x1122334455;
    const auto body = ordinary().attribute(21, std::as_bytes(std::span{&group, 1})).counters(123, 45).body();
    InetSocket expected;
    expected.ends = endpoints("10.0.0.2", 50000, "93.184.216.34", 443);
    expected.user = 1000;
    expected.inode = 777;
    expected.cookie = 0x0123456789abcdef;
    expected.cgroup = group;
    expected.bytesIn = 123;
    expected.bytesOut = 45;
    EXPECT_EQ(SocketDiagnosis::parse(body), expected);
}

TEST(SocketDiagnosis, parseOfBrokenBodies)
{
    struct Case {
        const char* name;
        std::vector<std::byte> body;
        bool isRead;
    };
    constexpr std::size_t needed = 136;
    auto unknownFamily = ordinary();
    unknownFamily.head.idiag_family = AF_UNIX;
    auto lying = ordinary().counters(1, 2).body();
    lying[sizeof(inet_diag_msg)] = std::byte{0xff};
    lying[sizeof(inet_diag_msg) + 1] = std::byte{0xff};
    const Case cases[] = {
        {"nothing", {}, false},
        {"no attributes, as in TIME_WAIT", ordinary().body(), false},
        {"counters just cut off", ordinary().counters(1, 2, needed - 1).body(), false},
        {"counters just there, from an older kernel", ordinary().counters(1, 2, needed).body(), true},
        {"another family", unknownFamily.counters(1, 2).body(), false},
        {"an attribute longer than the message", lying, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(SocketDiagnosis::parse(c.body).has_value(), c.isRead);
    }
}

TEST(SocketDiagnosis, parseOfEveryCutBodyStaysInside)
{
    const auto body = ordinary().counters(123, 45).body();
    for (std::size_t size = 0; size < body.size(); ++size) {
        // A copy of exactly this size, so that a sanitizer sees a byte too many.
        const std::vector<std::byte> cut{body.begin(), body.begin() + static_cast<std::ptrdiff_t>(size)};
        EXPECT_FALSE(SocketDiagnosis::parse(cut)) << size;
    }
    EXPECT_TRUE(SocketDiagnosis::parse(body));
}

TEST(SocketDiagnosis, linkIsKeptForLinkLocalAddressesOnly)
{
    SocketMessage local{AF_INET6};
    local.ends("fe80::1", 1, "fe80::2", 2).counters(0, 0).head.id.idiag_if = 7;
    EXPECT_EQ(SocketDiagnosis::parse(local.body())->ends.link, 7U);
    SocketMessage global{AF_INET6};
    global.ends("2001:db8::1", 1, "2001:db8::2", 2).counters(0, 0).head.id.idiag_if = 7;
    const auto parsed = SocketDiagnosis::parse(global.body());
    EXPECT_EQ(parsed->ends.link, 0U);
    EXPECT_EQ(parsed->device, 7U);
}

TEST(InetAddress, kinds)
{
    struct Case {
        const char* name;
        const char* text;
        bool isIPv4, isLoopback, isLinkLocal;
    };
    constexpr Case cases[] = {
        {"IPv4", "93.184.216.34", true, false, false},
        {"mapped IPv4", "::ffff:93.184.216.34", true, false, false},
        {"loopback", "127.0.0.1", true, true, false},
        {"the whole of 127/8", "127.255.0.9", true, true, false},
        {"just above 127/8", "128.0.0.1", true, false, false},
        {"mapped loopback", "::ffff:127.0.0.1", true, true, false},
        {"IPv6 loopback", "::1", false, true, false},
        {"compatible IPv4 is no IPv4", "::7f00:1", false, false, false},
        {"first of fe80::/10", "fe80::", false, false, true},
        {"last of fe80::/10", "febf:ffff::1", false, false, true},
        {"site-local", "fec0::1", false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto value = address(c.text);
        EXPECT_EQ(value.isIPv4(), c.isIPv4);
        EXPECT_EQ(value.isLoopback(), c.isLoopback);
        EXPECT_EQ(value.isLinkLocal(), c.isLinkLocal);
    }
    EXPECT_FALSE(InetAddress::from({}));
    EXPECT_FALSE(InetAddress::from(std::vector<std::byte>(5)));
}

TEST(ConnectionLabel, forms)
{
    struct Case {
        const char* name;
        Endpoints ends;
        const char* zone;
        const char* label;
    };
    const Case cases[] = {
        {"IPv4", endpoints("10.0.0.2", 50000, "93.184.216.34", 443), "", "tcp4 10.0.0.2:50000<->93.184.216.34:443"},
        {"mapped IPv4 is IPv4", endpoints("::ffff:10.0.0.2", 1, "::ffff:8.8.8.8", 65535), "",
         "tcp4 10.0.0.2:1<->8.8.8.8:65535"},
        {"IPv6 has its port behind a point", endpoints("2606:4700::1", 64984, "2606:4700:4700::1111", 443), "",
         "tcp6 2606:4700::1.64984<->2606:4700:4700::1111.443"},
        {"the zone stands before the port", endpoints("fe80::1", 5000, "fe80::2", 443), "wlan0",
         "tcp6 fe80::1%wlan0.5000<->fe80::2%wlan0.443"},
        {"a zone is only for link-local addresses", endpoints("2001:db8::1", 1, "fe80::2", 2), "eth0.100",
         "tcp6 2001:db8::1.1<->fe80::2%eth0.100.2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(connectionLabel(c.ends, c.zone), c.label);
    }
}

} // namespace
} // namespace quellon
