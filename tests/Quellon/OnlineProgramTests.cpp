#include "FreezingWorld.h"
#include "InternetTrap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A way to end the program, in one of its views.
struct Ending {
    const char* name;
    const char* view;
    void (*end)(ChildTerminal& terminal);
};

constexpr Ending endings[] = {
    {"lines, SIGTERM", "--plain", [](ChildTerminal& terminal) { terminal.signal(SIGTERM); }},
    {"lines, Ctrl-C", "--plain", [](ChildTerminal& terminal) { terminal.type("\x03"); }},
    {"lines, the window closes", "--plain", [](ChildTerminal& terminal) { terminal.close(); }},
    {"terminal view, q", "--terminal", [](ChildTerminal& terminal) { terminal.type("q"); }},
    {"terminal view, SIGTERM", "--terminal", [](ChildTerminal& terminal) { terminal.signal(SIGTERM); }},
};

std::string consents(const std::string& answer)
{
    return R"(, "updateCheckConsent": ")" + answer + R"(", "explainConsent": ")" + answer + '"';
}

TEST(Online, withoutAYesTheProgramOpensNoSocket)
{
    for (const auto& settings : {std::string{}, consents("unasked"), consents("denied")}) {
        for (const auto& ending : endings) {
            SCOPED_TRACE(settings + ending.name);
            const FreezingWorld world{0, settings};
            auto setup = world.setup({ending.view});
            setup.prepare = InternetTrap::arm;
            ChildTerminal terminal{setup};
            ASSERT_TRUE(terminal.waitFor("Guarding")) << terminal.screen();
            ending.end(terminal);
            EXPECT_EQ(terminal.wait(), 0);
            EXPECT_THAT(world.stateFile("settings.json"), Not(HasSubstr("updateLastCheckedAt")));
        }
    }
}

/// What the other test would see of a program that asks.
TEST(Online, withAYesItDoes)
{
    const FreezingWorld world{0, consents("granted")};
    auto setup = world.setup({"--plain"});
    setup.prepare = InternetTrap::arm;
    ChildTerminal terminal{setup};
    EXPECT_EQ(terminal.wait(), 128 + SIGSYS) << terminal.screen();
}

/// Takes one connection, and says nothing.
class SilentProxy {
public:
    SilentProxy()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const general = reinterpret_cast<sockaddr*>(&address);
        const bool listens = bind(listener_, general, size) == 0 && listen(listener_, 1) == 0 &&
                             getsockname(listener_, general, &size) == 0;
        if (!listens) std::abort();
        port_ = ntohs(address.sin_port);
    }
    SilentProxy(const SilentProxy&) = delete;
    SilentProxy& operator=(const SilentProxy&) = delete;
    ~SilentProxy()
    {
        close(link_);
        close(listener_);
    }

    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }
    /// Whether a whole head of a request has come by now.
    [[nodiscard]] bool isAsked()
    {
        if (link_ < 0) link_ = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        std::array<char, 4096> bytes{};
        const ssize_t count = link_ < 0 ? 0 : recv(link_, bytes.data(), bytes.size(), 0);
        if (count > 0) request_.append(bytes.data(), static_cast<std::size_t>(count));
        return request_.find("\r\n\r\n") != std::string::npos;
    }
    [[nodiscard]] const std::string& request() const { return request_; }

private:
    int listener_ = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    int link_ = -1;
    int port_ = 0;
    std::string request_;
};

TEST(Online, aRequestUnderWayKeepsNobodyFromQuitting)
{
    for (const auto& ending : endings) {
        SCOPED_TRACE(ending.name);
        const FreezingWorld world{0, consents("granted")};
        SilentProxy proxy;
        auto setup = world.setup({ending.view});
        setup.environment.emplace_back("https_proxy", proxy.url());
        ChildTerminal terminal{setup};
        ASSERT_TRUE(terminal.waitFor("Guarding")) << terminal.screen();
        ASSERT_TRUE(terminal.waitUntil([&] { return proxy.isAsked(); })) << terminal.screen();
        EXPECT_THAT(proxy.request(), StartsWith("CONNECT updates.quellon.example:443 HTTP/1.1\r\n"));
        EXPECT_THAT(proxy.request(), Not(HasSubstr("Quellon/"))) << "the agent text is for the host alone";
        const auto begin = std::chrono::steady_clock::now();
        ending.end(terminal);
        EXPECT_EQ(terminal.wait(), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 3s) << "the request alone may take 10";
        EXPECT_THAT(world.stateFile("settings.json"), Not(HasSubstr("updateLastCheckedAt")));
    }
}

} // namespace
} // namespace quellon
