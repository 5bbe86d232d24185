#include "QuellonProbe/ConnectionWatch.h"

#include "QuellonProbe/PrivateNetwork.h"
#include "QuellonProbe/SocketMessage.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/sock_diag.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quellon {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// Two ends of a TCP connection over the loopback; `first` has been sent 1,000 bytes.
struct Pair {
    Pair()
    {
        const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in where{};
        where.sin_family = AF_INET;
        where.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof where;
        auto* generic = reinterpret_cast<sockaddr*>(&where);
        first = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::bind(listener, generic, size) == 0 && ::listen(listener, 1) == 0 &&
            ::getsockname(listener, generic, &size) == 0 && ::connect(first, generic, size) == 0) {
            second = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        }
        ::close(listener);
        const std::vector<char> data(1000);
        std::vector<char> received(1000);
        if (second < 0 || ::send(second, data.data(), data.size(), 0) != 1000 ||
            ::recv(first, received.data(), received.size(), MSG_WAITALL) != 1000) {
            throw std::runtime_error{"no connection over the loopback"};
        }
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;
    ~Pair() { closeBoth(); }
    void closeBoth()
    {
        for (int* end : {&first, &second}) {
            if (*end >= 0) ::close(std::exchange(*end, -1));
        }
    }
    int first = -1;
    int second = -1;
};

std::uint32_t inodeOf(int descriptor)
{
    struct stat info {};
    return ::fstat(descriptor, &info) == 0 ? static_cast<std::uint32_t>(info.st_ino) : 0;
}

std::optional<InetSocket> findInDump(NetlinkSocket& diagnosis, std::uint32_t inode)
{
    std::optional<InetSocket> found;
    const auto visit = [&](const NetlinkMessage& message) {
        const auto socket = SocketDiagnosis::parse(message.body);
        if (socket && socket->inode == inode) found = socket;
    };
    EXPECT_EQ(diagnosis.dump(
                  SocketDiagnosis::dumpRequest(AF_INET), [] {}, visit),
              0);
    return found;
}

TEST(SocketDiagnosis, dumpShowsAConnectionOfThisProcess)
{
    const Pair pair;
    auto diagnosis = NetlinkSocket::open(NETLINK_SOCK_DIAG);
    ASSERT_TRUE(diagnosis);
    const auto socket = findInDump(*diagnosis, inodeOf(pair.first));
    ASSERT_TRUE(socket);
    EXPECT_EQ(socket->bytesIn, 1000U);
    EXPECT_EQ(socket->user, ::geteuid());
    EXPECT_NE(socket->cookie, 0U);
    EXPECT_TRUE(socket->ends.local.isLoopback());
    EXPECT_TRUE(socket->ends.remote.isLoopback());
}

TEST(SocketDiagnosis, destroyedSocketIsToldWithItsLastCounters)
{
    auto events = NetlinkSocket::open(NETLINK_SOCK_DIAG);
    auto diagnosis = NetlinkSocket::open(NETLINK_SOCK_DIAG);
    ASSERT_TRUE(events);
    ASSERT_TRUE(diagnosis);
    if (const int error = events->join(SKNLGRP_INET_TCP_DESTROY)) GTEST_SKIP() << "refused: " << error;
    Pair pair;
    const auto before = findInDump(*diagnosis, inodeOf(pair.first));
    ASSERT_TRUE(before);
    pair.closeBoth();
    std::optional<InetSocket> told;
    pollfd waiting{events->descriptor(), POLLIN, 0};
    while (!told && ::poll(&waiting, 1, 5000) == 1) {
        ASSERT_EQ(events->receiveEvents([&](const NetlinkMessage& message) {
            const auto socket = SocketDiagnosis::parse(message.body);
            if (socket && socket->cookie == before->cookie) told = socket;
        }),
                  0);
    }
    ASSERT_TRUE(told);
    EXPECT_EQ(told->ends, before->ends);
    EXPECT_GE(told->bytesIn, 1000U);
    EXPECT_LE(told->bytesIn, 1001U) << "a FIN counts 1";
    EXPECT_EQ(told->inode, 0U);
}

TEST(ConnectionWatch, leavesOutTheLoopback)
{
    const Pair pair;
    const ProcFolder proc;
    ProcessNames names{proc};
    ConnectionWatch watch{proc, names};
    const auto answer = watch.answer();
    ASSERT_TRUE(answer);
    EXPECT_THAT(*answer, Not(HasSubstr("127.0.0.1")));
}

TEST(ConnectionWatch, listsAConnectionUnderItsProcessAndInterface)
{
    const auto run = testing::inPrivateNetwork(
        {"link add outside type veth peer name other", "link set other up", "addr add 198.18.0.2/24 dev outside",
         "link set outside up"},
        [] {
            // Nobody answers there, so that it stays in the handshake.
            const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
            sockaddr_in where{};
            where.sin_family = AF_INET;
            where.sin_addr.s_addr = htonl(0xc6120009);
            where.sin_port = htons(443);
            static_cast<void>(::connect(descriptor, reinterpret_cast<sockaddr*>(&where), sizeof where));
            socklen_t size = sizeof where;
            ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&where), &size);
            const ProcFolder proc;
            ProcessNames names{proc};
            ConnectionWatch watch{proc, names};
            const auto answer = watch.answer().value_or("refused");
            const auto expected =
                "tcp4 198.18.0.2:" + std::to_string(ntohs(where.sin_port)) + "<->198.18.0.9:443,outside,0,0,\n";
            const auto owner = "." + std::to_string(::getpid()) + ",,0,0,\n";
            ::close(descriptor);
            const auto seen = watch.seen();
            const bool isSeen = seen.size() == 1 && seen[0].pid == ::getpid() && seen[0].group == ::getpgrp() &&
                                seen[0].path == names.of(::getpid(), proc.stat(::getpid()).value());
            const bool isRight = answer.find(expected) != answer.npos && answer.find(owner) != answer.npos && isSeen;
            return isRight ? std::string{"right"} : answer;
        });
    if (run.lack) GTEST_SKIP() << *run.lack;
    EXPECT_EQ(run.text, "right");
}

/// Sends 1,000 bytes over a connection from 198.18.0.2 to 198.18.1.5, both of which are here, and closes it. Its label.
std::string connectAndClose()
{
    const auto address = [](std::uint32_t host) {
        sockaddr_in where{};
        where.sin_family = AF_INET;
        where.sin_addr.s_addr = htonl(host);
        return where;
    };
    auto local = address(0xc6120002);
    auto remote = address(0xc6120105);
    socklen_t size = sizeof local;
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int first = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const std::vector<char> data(1000);
    const bool isOpen = ::bind(listener, reinterpret_cast<sockaddr*>(&remote), size) == 0 &&
                        ::listen(listener, 1) == 0 &&
                        ::getsockname(listener, reinterpret_cast<sockaddr*>(&remote), &size) == 0 &&
                        ::bind(first, reinterpret_cast<sockaddr*>(&local), size) == 0 &&
                        ::connect(first, reinterpret_cast<sockaddr*>(&remote), size) == 0 &&
                        ::getsockname(first, reinterpret_cast<sockaddr*>(&local), &size) == 0 &&
                        ::send(first, data.data(), data.size(), 0) == 1000;
    const int second = isOpen ? ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC) : -1;
    for (const int descriptor : {first, second, listener}) ::close(descriptor);
    return "tcp4 198.18.0.2:" + std::to_string(ntohs(local.sin_port)) +
           "<->198.18.1.5:" + std::to_string(ntohs(remote.sin_port));
}

TEST(ConnectionWatch, connectionOverANewAddressHasItsInterfaceAlthoughItHasClosed)
{
    const auto run = testing::inPrivateNetwork(
        // Addresses behind a local route are answered for, but nobody's own.
        {"link set lo up", "route add local 198.18.1.0/24 dev lo", "link add outside type veth peer name other",
         "link set other up", "link set outside up"},
        [] {
            const ProcFolder proc;
            ProcessNames names{proc};
            ConnectionWatch watch{proc, names};
            watch.subscribe();
            if (watch.descriptor() < 0) return std::string{"no news of closed connections"};
            if (std::system("ip addr add 198.18.0.2/24 dev outside") != 0) return std::string{"no address"};
            const auto label = connectAndClose();
            pollfd waiting{watch.descriptor(), POLLIN, 0};
            std::string answer;
            while (answer.find(label) == answer.npos && ::poll(&waiting, 1, 5000) == 1) {
                watch.readable();
                answer += watch.answer().value_or("refused");
            }
            const bool isRight = answer.find(label + ",outside,") != answer.npos;
            return isRight ? std::string{"right"} : label + "\n" + answer;
        });
    if (run.lack) GTEST_SKIP() << *run.lack;
    EXPECT_EQ(run.text, "right");
}

} // namespace
} // namespace quellon
