#include "QuellonProbe/Netlink.h"

#include <bit>
#include <cerrno>
#include <cstdint>
#include <gtest/gtest.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <set>
#include <string>
#include <vector>

namespace quellon {
namespace {

std::vector<std::byte> bytes(std::initializer_list<int> values)
{
    std::vector<std::byte> raw;
    for (const int value : values) raw.push_back(static_cast<std::byte>(value));
    return raw;
}

std::vector<std::byte> joined(std::vector<std::byte> a, const std::vector<std::byte>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<std::byte> header(std::uint32_t length, std::uint16_t type = 20)
{
    const nlmsghdr raw{length, type, 3, 7, 0};
    const auto view = std::as_bytes(std::span{&raw, 1});
    return {view.begin(), view.end()};
}

TEST(Netlink, takeMessage)
{
    struct Case {
        const char* name;
        std::vector<std::byte> datagram;
        std::vector<std::size_t> bodies; ///< sizes of the bodies that are found
    };
    const Case cases[] = {
        {"nothing", {}, {}},
        {"a part of a header", bytes({16, 0, 0, 0, 1}), {}},
        {"header alone", header(16), {0}},
        {"length below that of a header", header(15), {}},
        {"length zero", header(0), {}},
        {"length beyond the end", header(17), {}},
        {"greatest length", header(0xFFFFFFFF), {}},
        {"unpadded last message", joined(header(19), bytes({1, 2, 3})), {3}},
        {"padding before the next", joined(joined(header(17), bytes({1, 0, 0, 0})), header(16)), {1, 0}},
        {"rest too short for another", joined(header(16), bytes({1, 2, 3, 4})), {0}},
        {"second one cut", joined(header(16), header(20)), {0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes rest = c.datagram;
        std::vector<std::size_t> bodies;
        while (const auto message = Netlink::takeMessage(rest)) {
            EXPECT_EQ(message->type, 20);
            EXPECT_EQ(message->flags, 3);
            EXPECT_EQ(message->sequence, 7U);
            bodies.push_back(message->body.size());
        }
        EXPECT_EQ(bodies, c.bodies);
        EXPECT_TRUE(rest.empty());
    }
}

TEST(Netlink, takeAttribute)
{
    struct Case {
        const char* name;
        std::vector<std::byte> attributes;
        std::vector<std::pair<int, std::size_t>> found; ///< type, size
    };
    const Case cases[] = {
        {"nothing", {}, {}},
        {"three bytes", bytes({4, 0, 1}), {}},
        {"empty value", bytes({4, 0, 1, 0}), {{1, 0}}},
        {"length below that of a header", bytes({3, 0, 1, 0, 9, 9, 9, 9}), {}},
        {"length zero never stands still", bytes({0, 0, 1, 0, 4, 0, 2, 0}), {}},
        {"length beyond the end", bytes({9, 0, 1, 0, 1, 2, 3, 4}), {}},
        {"nested and network-order flags are no part of the type",
         bytes({4, 0, 1, 0x80, 4, 0, 2, 0x40}),
         {{1, 0}, {2, 0}}},
        {"padding is skipped", bytes({5, 0, 1, 0, 7, 0, 0, 0, 4, 0, 2, 0}), {{1, 1}, {2, 0}}},
        {"padding missing at the end", bytes({5, 0, 1, 0, 7}), {{1, 1}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes rest = c.attributes;
        std::vector<std::pair<int, std::size_t>> found;
        while (const auto next = Netlink::takeAttribute(rest)) found.emplace_back(next->type, next->value.size());
        EXPECT_EQ(found, c.found);
        EXPECT_TRUE(rest.empty());
    }
}

TEST(Netlink, readsWithoutLeavingTheBytes)
{
    const auto raw = bytes({6, 0, 5, 0, 0x34, 0x12, 0, 0, 8, 0, 6, 0, 'l', 'o', 0, 'x'});
    EXPECT_EQ(Netlink::readAttribute<std::uint16_t>(raw, 5), 0x1234);
    EXPECT_EQ(Netlink::readAttribute<std::uint32_t>(raw, 5), std::nullopt) << "the value is shorter";
    EXPECT_EQ(Netlink::attribute(raw, 7), std::nullopt);
    EXPECT_EQ(Netlink::text(*Netlink::attribute(raw, 6)), "lo");
    EXPECT_EQ(Netlink::text({}), "");
    EXPECT_EQ(Netlink::behind(raw, 5).size(), raw.size() - 8) << "padded to four";
    EXPECT_TRUE(Netlink::behind(raw, 100).empty());
    struct Two {
        std::uint16_t first;
        std::uint32_t second;
    };
    const auto prefix = Netlink::readPrefix<Two>(bytes({1, 0, 0, 0, 5}));
    EXPECT_EQ(prefix.first, 1);
    EXPECT_EQ(prefix.second, 5U) << "the bytes that are there; the others zero";
}

TEST(Netlink, requestIsPadded)
{
    const auto value = bytes({'l', 'o', 0});
    const auto message = NetlinkRequest{RTM_GETLINK, 1}.add(std::uint8_t{9}).attribute(3, value).message(4, 77);
    const auto expected = joined(bytes({28, 0, 0, 0, 18, 0, 5, 0, 77, 0, 0, 0, 0, 0, 0, 0}),
                                 bytes({9, 0, 0, 0, 7, 0, 3, 0, 'l', 'o', 0, 0}));
    if constexpr (std::endian::native == std::endian::little) { EXPECT_EQ(message, expected); }
    Bytes rest = message;
    const auto read = Netlink::takeMessage(rest);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->sequence, 77U);
    EXPECT_EQ(Netlink::text(*Netlink::attribute(Netlink::behind(read->body, 1), 3)), "lo");
}

TEST(NetlinkSocket, dumpsTheLinksOfThisMachine)
{
    auto socket = NetlinkSocket::open(NETLINK_ROUTE);
    ASSERT_TRUE(socket);
    for (int time = 0; time < 2; ++time) {
        std::set<std::string> names;
        int begun = 0;
        const int error = socket->dump(
            NetlinkRequest{RTM_GETLINK}.add(ifinfomsg{}),
            [&] {
                names.clear();
                ++begun;
            },
            [&](const NetlinkMessage& message) {
                EXPECT_EQ(message.type, RTM_NEWLINK);
                const auto name = Netlink::attribute(Netlink::behind(message.body, sizeof(ifinfomsg)), IFLA_IFNAME);
                if (name) names.emplace(Netlink::text(*name));
            });
        EXPECT_EQ(error, 0);
        EXPECT_GE(begun, 1);
        EXPECT_TRUE(names.count("lo") == 1);
    }
}

TEST(NetlinkSocket, tellsWhatTheKernelRefuses)
{
    auto socket = NetlinkSocket::open(NETLINK_ROUTE);
    ASSERT_TRUE(socket);
    ifinfomsg unknown{};
    unknown.ifi_index = 0x7FFFFFFF;
    bool visited = false;
    const auto visit = [&](const NetlinkMessage&) { visited = true; };
    EXPECT_EQ(socket->request(NetlinkRequest{RTM_GETLINK}.add(unknown), visit), ENODEV);
    EXPECT_EQ(socket->request(NetlinkRequest{RTM_MAX + 1}.add(unknown), visit), EOPNOTSUPP);
    EXPECT_FALSE(visited);
    unknown.ifi_index = static_cast<int>(if_nametoindex("lo"));
    EXPECT_EQ(socket->request(NetlinkRequest{RTM_GETLINK}.add(unknown), visit), 0) << "still usable";
    EXPECT_TRUE(visited);
    EXPECT_FALSE(NetlinkSocket::open(9999).has_value());
}

TEST(NetlinkSocket, showsNoEventsWithoutAny)
{
    auto socket = NetlinkSocket::open(NETLINK_ROUTE);
    ASSERT_TRUE(socket);
    EXPECT_EQ(socket->join(RTNLGRP_LINK), 0);
    EXPECT_NE(socket->join(4'000'000), 0);
    EXPECT_EQ(socket->receiveEvents([](const NetlinkMessage&) {}), 0);
    NetlinkSocket moved = std::move(*socket);
    EXPECT_EQ(moved.receiveEvents([](const NetlinkMessage&) {}), 0);
    EXPECT_EQ(socket->descriptor(), -1);
}

} // namespace
} // namespace quellon
