#include "QuellonProbe/MessageBus.h"

#include "QuellonProbe/NetworkManager.h"
#include "QuellonProbe/PrivateBus.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using namespace std::string_view_literals;
using testing::FakeNetworkManager;
using testing::PrivateBus;
using testing::TemporaryFolder;
using Clock = std::chrono::steady_clock;

MessageBus::Deadline soon()
{
    return Clock::now() + 20s;
}

TEST(MessageBus, socketNames)
{
    struct Case {
        const char* name;
        const char* address;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {"empty", "", {}},
        {"path", "unix:path=/run/dbus/system_bus_socket", {"/run/dbus/system_bus_socket"}},
        {"other keys beside it", "unix:guid=00ff,path=/a,x=y", {"/a"}},
        {"abstract", "unix:abstract=/tmp/x", {"\0/tmp/x"s}},
        {"escaped", "unix:path=/a%20b%2c", {"/a b,"}},
        {"broken escape", "unix:path=/a%2", {}},
        {"escape of other letters", "unix:path=/a%zz", {}},
        {"alternatives in their order", "unix:path=/a;tcp:host=h,port=1;unix:path=/b", {"/a", "/b"}},
        {"no path", "unix:guid=1", {}},
        {"empty path", "unix:path=", {}},
        {"no transport", "path=/a", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MessageBus::socketNames(c.address), c.names);
    }
}

TEST(MessageBus, systemAddress)
{
    const char* before = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    const std::string kept = before == nullptr ? "" : before;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/x", 1);
    EXPECT_EQ(MessageBus::systemAddress(), "unix:path=/x");
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    EXPECT_EQ(MessageBus::systemAddress(), "unix:path=/run/dbus/system_bus_socket");
    if (before != nullptr) setenv("DBUS_SYSTEM_BUS_ADDRESS", kept.c_str(), 1);
}

TEST(MessageBus, hasNothingToSayWithoutABus)
{
    const TemporaryFolder folder;
    MessageBus none{"unix:path=" + folder.path() + "/bus"};
    MessageBus unknown{"tcp:host=localhost,port=1"};
    MessageBus tooLong{"unix:path=/" + std::string(200, 'x')};
    for (auto* bus : {&none, &unknown, &tooLong}) { EXPECT_FALSE(bus->call({"a.b", "/", "c.d", "E", {}}, soon())); }
}

/// One who listens like a bus, and says to the first who comes what the test wants.
class OddBus {
public:
    OddBus(const TemporaryFolder& folder, std::string words) : address_{"unix:path=" + folder.path() + "/odd"}
    {
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        (folder.path() + "/odd").copy(place.sun_path, sizeof place.sun_path - 1);
        listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        isListening_ =
            bind(listener_, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0 && listen(listener_, 8) == 0;
        thread_ = std::thread{[this, words = std::move(words)] {
            const int visitor = accept(listener_, nullptr, nullptr);
            char ignored[4096];
            for (std::string_view rest = words; !rest.empty();) {
                const auto sent = send(visitor, rest.data(), rest.size(), MSG_NOSIGNAL);
                if (sent <= 0) break;
                rest.remove_prefix(static_cast<std::size_t>(sent));
            }
            while (recv(visitor, ignored, sizeof ignored, 0) > 0) {}
            close(visitor);
        }};
    }
    OddBus(const OddBus&) = delete;
    OddBus& operator=(const OddBus&) = delete;
    ~OddBus()
    {
        shutdown(listener_, SHUT_RDWR); // ends accept(), if nobody came
        thread_.join();
        close(listener_);
    }
    [[nodiscard]] bool isListening() const { return isListening_; }
    [[nodiscard]] const std::string& address() const { return address_; }

private:
    std::string address_;
    int listener_ = -1;
    bool isListening_ = false;
    std::thread thread_;
};

TEST(MessageBus, leavesAnOddBus)
{
    struct Case {
        const char* name;
        std::string words;
        bool endsEarly; ///< before the time is up
    };
    const std::string ok = "DATA\r\nOK 00ff\r\n";
    const Case cases[] = {
        {"rejects the user", "REJECTED EXTERNAL\r\n", true},
        {"rejects the user at the second word", "DATA\r\nREJECTED EXTERNAL\r\n", true},
        {"greeting without an end", std::string(100'000, 'x'), true},
        {"speaks something else", ok + "HTTP/1.1 400 Bad Request\r\n\r\n", true},
        {"message of 4 GiB", ok + std::string{"l\2\1\1\xFF\xFF\xFF\xFF\1\0\0\0\0\0\0\0"sv}, true},
        {"broken header field", ok + std::string{"l\2\1\1\0\0\0\0\1\0\0\0\x8\0\0\0\5\1x\0\1\0\0\0"sv}, true},
        {"says nothing", "", false},
        {"stops in the middle of a message", ok + std::string{"l\2\1\1\0\0\0\0\1\0\0\0\x8\0\0\0\5"sv}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TemporaryFolder folder;
        const OddBus odd{folder, c.words};
        ASSERT_TRUE(odd.isListening());
        MessageBus bus{odd.address()};
        const auto deadline = c.endsEarly ? soon() : Clock::now() + 50ms;
        EXPECT_FALSE(bus.call({"a.b", "/", "c.d", "E", {}}, deadline));
        EXPECT_EQ(Clock::now() < deadline, c.endsEarly);
    }
}

class NetworkManagerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!bus_.isRunning()) GTEST_SKIP() << "no dbus-daemon here";
    }

    PrivateBus bus_;
    MessageBus connection_{bus_.address()};
    NetworkManager manager_{connection_};
};

TEST_F(NetworkManagerTest, tellsADevice)
{
    FakeNetworkManager fake{bus_};
    ASSERT_TRUE(fake.isRunning());
    struct Case {
        const char* name;
        std::uint32_t metered;
        std::uint32_t type;
        ManagedDevice expected;
    };
    constexpr Case cases[] = {
        {"unknown", 0, 2, {Metered::unknown, false}},
        {"yes", 1, 2, {Metered::yes, false}},
        {"no", 2, 1, {Metered::no, false}},
        {"guessed yes", 3, 2, {Metered::guessYes, false}},
        {"guessed no", 4, 2, {Metered::guessNo, false}},
        {"modem", 3, 8, {Metered::guessYes, true}},
        {"a number of the future", 5, 2, {Metered::unknown, false}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fake.metered = c.metered;
        fake.deviceType = c.type;
        EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), c.expected);
    }
    EXPECT_EQ(manager_.device("eth7", soon()), std::nullopt) << "a device it doesn't know";
    EXPECT_NE(manager_.device(FakeNetworkManager::interface, soon()), std::nullopt) << "after an error";
}

TEST_F(NetworkManagerTest, isAbsentAndComesBack)
{
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), std::nullopt) << "nobody has the name";
    FakeNetworkManager fake{bus_};
    fake.metered = 1;
    const ManagedDevice expected{Metered::yes, false};
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), expected);
    fake.stop();
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), std::nullopt);
    fake.start();
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), expected);
}

TEST_F(NetworkManagerTest, outlivesTheBus)
{
    const ManagedDevice expected{Metered::guessYes, false};
    {
        FakeNetworkManager fake{bus_};
        fake.metered = 3;
        EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), expected);
    }
    bus_.stop();
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), std::nullopt);
    bus_.start();
    ASSERT_TRUE(bus_.isRunning());
    FakeNetworkManager fake{bus_};
    fake.metered = 3;
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), expected);
    // Ended and begun anew between two questions: the kept connection is a dead one.
    fake.stop();
    bus_.stop();
    bus_.start();
    fake.start();
    ASSERT_TRUE(fake.isRunning());
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, soon()), expected);
}

TEST_F(NetworkManagerTest, doesNotWaitForOneThatHangs)
{
    FakeNetworkManager fake{bus_};
    fake.metered = 1;
    EXPECT_NE(manager_.device(FakeNetworkManager::interface, soon()), std::nullopt);
    fake.answers = false;
    const auto deadline = Clock::now() + 50ms;
    EXPECT_EQ(manager_.device(FakeNetworkManager::interface, deadline), std::nullopt);
    EXPECT_GE(Clock::now(), deadline);
    EXPECT_LT(Clock::now(), deadline + 10s);
    fake.answers = true;
    EXPECT_NE(manager_.device(FakeNetworkManager::interface, soon()), std::nullopt);
}

} // namespace
} // namespace quellon
