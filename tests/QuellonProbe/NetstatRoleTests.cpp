#include "QuellonProbe/NetstatRole.h"

#include "QuellonProbe/PrivateNetwork.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sstream>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace quellon {
namespace {

using testing::inPrivateNetwork;
using namespace std::string_view_literals;

const std::string header =
    "Name       Mtu   Network       Address            Ipkts Ierrs     Ibytes    Opkts Oerrs     Obytes  Coll\n";

std::vector<std::string> tokens(const std::string& text)
{
    std::istringstream words{text.substr(text.find('\n') + 1)};
    std::vector<std::string> all;
    for (std::string word; words >> word;) all.push_back(word);
    return all;
}

TEST(NetstatRole, text)
{
    Link link;
    link.index = 14;
    link.name = "wlan0";
    link.flags = IFF_UP;
    link.mtu = 1500;
    link.hardwareAddress = "\x02\xFC\x00\x00\x00\x01"sv;
    link.counters = LinkCounters{21869567, 1, 18446744073709551615U, 22461432, 2, 29723901148, 3};
    EXPECT_EQ(NetstatRole::text(link), header + "wlan0      1500  <Link#14>   02:fc:00:00:00:01 21869567     1 "
                                                "18446744073709551615 22461432     2 29723901148     3\n");
    using Words = std::vector<std::string>;
    link.counters = LinkCounters{1, 2, 3, 4, 5, 6, 7};
    struct Case {
        const char* name;
        std::string_view interface;
        std::uint32_t flags;
        std::string_view address;
        Words words;
    };
    const Case cases[] = {
        {"down",
         "wlan0",
         0,
         "\x02\xFC\x00\x00\x00\x01"sv,
         {"wlan0*", "1500", "<Link#14>", "02:fc:00:00:00:01", "1", "2", "3", "4", "5", "6", "7"}},
        {"no address", "tun9", IFF_UP, "", {"tun9", "1500", "<Link#14>", "1", "2", "3", "4", "5", "6", "7"}},
        {"address of a tunnel",
         "sit0",
         IFF_UP,
         "\x01\x02\x03\x04",
         {"sit0", "1500", "<Link#14>", "1", "2", "3", "4", "5", "6", "7"}},
        {"loopback",
         "lo",
         IFF_UP | IFF_LOOPBACK,
         "\0\0\0\0\0\0"sv,
         {"lo", "1500", "<Link#14>", "1", "2", "3", "4", "5", "6", "7"}},
        {"longest name isn't cut",
         "enx00112233445",
         0,
         "",
         {"enx00112233445*", "1500", "<Link#14>", "1", "2", "3", "4", "5", "6", "7"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        link.name = c.interface;
        link.flags = c.flags;
        link.hardwareAddress = c.address;
        EXPECT_EQ(tokens(NetstatRole::text(link)), c.words);
    }
    link.counters.reset();
    EXPECT_EQ(NetstatRole::text(link), "");
}

/// Sends one datagram of 1000 bytes over the loopback to a socket that takes it. False when the system refuses.
bool sendDatagram()
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    const int end = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const std::string datagram(1000, 'x');
    const bool sent = bind(end, place, size) == 0 && getsockname(end, place, &size) == 0 &&
                      sendto(end, datagram.data(), datagram.size(), 0, place, size) == 1000;
    close(end);
    return sent;
}

TEST(NetstatRole, countsRealTraffic)
{
    const auto run = inPrivateNetwork({"link set lo up"}, [] {
        auto network = KernelNetwork::open();
        if (!network) return std::string{"no socket"};
        const auto before = tokens(NetstatRole::answer(*network, "lo").value_or(""));
        if (!sendDatagram()) return std::string{"no datagram"};
        const auto after = tokens(NetstatRole::answer(*network, "lo").value_or(""));
        if (before.size() != 10 || after.size() != 10) return std::string{"no row"};
        return std::to_string(std::stoull(after[5]) - std::stoull(before[5])) + " in, " +
               std::to_string(std::stoull(after[8]) - std::stoull(before[8])) + " out; unknown: \"" +
               NetstatRole::answer(*network, "nope").value_or("refused") + "\"";
    });
    if (run.lack) GTEST_SKIP() << *run.lack;
    // With the headers of UDP and IP; the loopback has none of its own.
    EXPECT_EQ(run.text, "1028 in, 1028 out; unknown: \"\"");
}

} // namespace
} // namespace quellon
