#include "QuellonCore/Measurement/LANClassifier.h"

#include <gtest/gtest.h>

#include <string>

namespace quellon {
namespace {

struct FlagCase {
    const char* name;
    const char* text;
    bool expected;
};

TEST(LANClassifier, isLANConnection)
{
    constexpr FlagCase cases[] = {
        {"empty", "", false},
        {"no arrow", "tcp4 *:22", false},
        {"no remote side", "tcp4 192.168.1.2:22<->", false},
        {"private remote", "tcp4 192.168.1.2:50000<->192.168.1.1:443", true},
        {"only the local side is private", "tcp4 10.0.0.2:50000<->8.8.8.8:53", false},
        {"only the remote side counts", "tcp4 8.8.8.8:50000<->10.0.0.2:53", true},
        {"hotspot's own range", "tcp4 172.20.10.2:50000<->172.20.10.1:53", true},
        {"carrier-grade remote", "tcp4 172.20.10.2:50000<->100.64.1.1:80", false},
        {"wildcard on a discovery port", "udp4 *:5353<->*:*", true},
        {"wildcard on another port", "udp4 *:49152<->*:*", false},
        {"wildcard in IPv6 on a discovery port", "udp6 *.5353<->*.*", true},
        {"wildcard in IPv6 on another port", "udp6 *.41641<->*.*", false},
        {"wildcard with a bound address", "udp4 192.168.3.37:137<->*:*", true},
        {"wildcard, blanks around the sides", "udp4   *:1900 <-> *:* ", true},
        {"wildcard without a protocol word", "*:1900<->*:*", true},
        {"wildcard without a local side", "<->*:*", false},
        {"wildcard with blanks for a local side", "   <->*:*", false},
        {"wildcard without a local port", "udp4 *:*<->*:*", false},
        {"wildcard, port with a plus", "udp4 *:+5353<->*:*", true},
        {"wildcard, port with leading zeros", "udp4 *:0067<->*:*", true},
        {"wildcard, port in the protocol word", "udp.5353 x<->*:*", false},
        {"wildcard, blank behind the port", "5353:5353 <->*:*", true},
        {"wildcard, blanks behind the port", "*:5353   <->*:*", true},
        {"discovery port with a fixed peer", "udp4 10.0.0.2:5353<->8.8.8.8:5353", false},
        {"second arrow belongs to the remote side", "tcp4 a:1<->10.0.0.1:2<->8.8.8.8:3", false},
        {"quic to the internet", "quic4 192.168.5.87:64253<->64.233.161.94:443", false},
        {"quic over a link-local zone", "quic6 fe80::1%awdl0.52214<->fe80::13:faff%awdl0.50386", true},
        {"multicast", "udp4 192.168.1.2:5353<->224.0.0.251:5353", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LANClassifier::isLANConnection(c.text), c.expected);
    }
}

TEST(LANClassifier, everyDiscoveryPort)
{
    constexpr std::int64_t ports[] = {5353, 1900, 5355, 137, 138, 139, 67, 68, 546, 547, 5350, 5351, 3702};
    ASSERT_EQ(LANClassifier::discoveryPorts.size(), std::size(ports));
    for (const auto port : ports) {
        SCOPED_TRACE(port);
        EXPECT_TRUE(LANClassifier::isLANConnection("udp4 *:" + std::to_string(port) + "<->*:*"));
        EXPECT_TRUE(LANClassifier::isLANConnection("udp6 *." + std::to_string(port) + "<->*.*"));
        EXPECT_FALSE(LANClassifier::isLANConnection("udp4 *:" + std::to_string(port + 10000) + "<->*:*"));
    }
}

TEST(LANClassifier, isLANEndpoint)
{
    constexpr FlagCase cases[] = {
        {"empty", "", false},
        {"only blanks", " \t", false},
        {"wildcard", "*:*", false},
        {"wildcard behind blanks", "  *.5353", false},
        {"no host", ":443", false},
        {"unclosed bracket", "[fe80::1", false},
        {"trimmed", " \t192.168.0.1:80 ", true},
        {"link-local with zone and port", "fe80::1%en0.5353", true},
        {"link-local in brackets with zone", "[fe80::1%en0]:443", true},
        {"global IPv6 with port", "2606:4700:4700::1111.443", false},
        {"local name", "printer.local:631", true},
        {"name of the internet", "example.com:443", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LANClassifier::isLANEndpoint(c.text), c.expected);
    }
}

TEST(LANClassifier, isPrivateIPv4)
{
    constexpr FlagCase cases[] = {
        {"this network", "0.0.0.0", true},
        {"end of this network", "0.255.255.255", true},
        {"just behind this network", "1.0.0.0", false},
        {"just below the 10/8 block", "9.255.255.255", false},
        {"10/8", "10.255.0.1", true},
        {"just behind the 10/8 block", "11.0.0.0", false},
        {"carrier-grade range is internet", "100.64.1.1", false},
        {"just below loopback", "126.255.255.255", false},
        {"loopback", "127.0.0.53", true},
        {"just behind loopback", "128.0.0.1", false},
        {"192.168/16", "192.168.1.1", true},
        {"192.167", "192.167.1.1", false},
        {"192.169", "192.169.1.1", false},
        {"just below the 172.16/12 block", "172.15.0.1", false},
        {"first of the 172.16/12 block", "172.16.0.1", true},
        {"hotspot range", "172.20.10.1", true},
        {"last of the 172.16/12 block", "172.31.255.1", true},
        {"just behind the 172.16/12 block", "172.32.0.1", false},
        {"172 with the same lower bits", "172.48.0.1", false},
        {"169.253", "169.253.1.1", false},
        {"169.254", "169.254.1.1", true},
        {"169.255", "169.255.1.1", false},
        {"just below multicast", "223.255.255.255", false},
        {"first of multicast", "224.0.0.0", true},
        {"multicast", "224.0.0.251", true},
        {"reserved", "240.0.0.1", true},
        {"broadcast", "255.255.255.255", true},
        {"ordinary", "8.8.8.8", false},
        {"leading zeros are decimal", "010.0.0.1", true},
        {"parts with a plus", "+10.+0.+0.+1", true},
        {"a part of minus zero", "10.-0.0.1", true},
        {"three numbers are no address", "10.1.1", false},
        {"five numbers are no address", "10.1.1.1.1", false},
        {"an empty part", "10..1.1", false},
        {"an empty last part", "10.1.1.", false},
        {"a part beyond 8 bits", "10.0.0.256", false},
        {"a negative part", "10.-1.0.1", false},
        {"a part with a blank", "10. 1.0.1", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LANClassifier::isPrivate(c.text), c.expected);
    }
}

TEST(LANClassifier, isPrivateText)
{
    constexpr FlagCase cases[] = {
        {"empty", "", false},
        {"loopback", "::1", true},
        {"unspecified", "::", true},
        {"longer than loopback", "::12", false},
        {"mapped", "::ffff:10.0.0.1", false},
        {"link-local", "fe80::1", true},
        {"link-local in capitals", "FE80::1", true},
        {"just below link-local", "fe7f::1", false},
        {"a plain prefix, not arithmetic", "fe90::1", false},
        {"multicast", "ff02::fb", true},
        {"unique local fc", "fc00::1", true},
        {"unique local fd", "FD12:3456::1", true},
        {"global", "2001:db8::1", false},
        {"a name that begins so", "fcbarcelona.com", true},
        {"local suffix", "printer.local", true},
        {"local suffix in capitals", "Printer.LOCAL", true},
        {"only the suffix", ".local", true},
        {"without the point", "local", false},
        {"suffix inside", "a.local.example.com", false},
        {"three numbers under local", "10.1.1.local", true},
        {"five numbers behind a prefix", "ff.1.1.1.1", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LANClassifier::isPrivate(c.text), c.expected);
    }
}

TEST(LANClassifier, host)
{
    struct Case {
        const char* name;
        const char* endpoint;
        std::optional<std::string_view> host;
    };
    constexpr Case cases[] = {
        {"empty", "", std::nullopt},
        {"only a port", ":80", std::nullopt},
        {"IPv4 with port", "1.2.3.4:80", "1.2.3.4"},
        {"IPv4 without port", "1.2.3.4", "1.2.3.4"},
        {"name", "localhost", "localhost"},
        {"IPv6 with port", "fe80::1.5353", "fe80::1"},
        {"IPv6 with zone and port", "fe80::1%en0.5353", "fe80::1"},
        {"IPv6 without port", "2001:db8::1", "2001:db8::1"},
        {"mapped IPv6 with port", "::ffff:1.2.3.4.443", "::ffff:1.2.3.4"},
        {"brackets", "[2001:db8::1]:443", "2001:db8::1"},
        {"brackets with zone", "[fe80::1%utun3]:443", "fe80::1"},
        {"empty brackets", "[]:443", std::nullopt},
        {"unclosed bracket", "[::1", std::nullopt},
        {"zone without a host", "%en0:80", std::nullopt},
        {"one colon in an abbreviated address", "a:80", "a"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LANClassifier::host(c.endpoint), c.host);
    }
}

TEST(LANClassifier, port)
{
    struct Case {
        const char* name;
        const char* endpoint;
        std::optional<std::int64_t> port;
    };
    constexpr Case cases[] = {
        {"empty", "", std::nullopt},
        {"no separator", "localhost", std::nullopt},
        {"behind a colon", "1.2.3.4:80", 80},
        {"behind a point", "fe80::1.5353", 5353},
        {"the last separator counts", "a:1.2", 2},
        {"nothing behind it", "1.2.3.4:", std::nullopt},
        {"wildcard", "*:*", std::nullopt},
        {"trimmed", " *:5353\t", 5353},
        {"plus", "*:+80", 80},
        {"minus", "*:-80", -80},
        {"minus zero", "*:-0", 0},
        {"leading zeros", "*:00080", 80},
        {"larger than a port", "*:70000", 70000},
        {"does not fit", "*:9223372036854775808", std::nullopt},
        {"blank inside", "*:53 53", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LANClassifier::port(c.endpoint), c.port);
    }
}

} // namespace
} // namespace quellon
