#include "QuellonHost/Posix/CurlHttpClient.h"
#include "QuellonHost/Posix/PosixRunLoop.h"
#include "QuellonHost/Support/TlsServer.h"
#include "ScriptedHost.h"

#include <chrono>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using testing::TlsServer;

/// The real client and a real server, which serves all tests.
struct RealHttp {
    inline static std::unique_ptr<TlsServer> server;
    std::optional<PosixRunLoop> loop{std::in_place};
    std::optional<CurlHttpClient> real;

    static void beginAll() { server = std::make_unique<TlsServer>(); }
    static void endAll() { server.reset(); }

    RealHttp()
    {
        for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) unsetenv(name);
        server->forget();
        real.emplace(*loop, CurlHttpClient::Options{server->authority(), server->addresses()});
    }
    [[nodiscard]] HttpClient& client() { return *real; }
    [[nodiscard]] RunLoop& runLoop() { return *loop; }
    [[nodiscard]] std::string url(const std::string& path) const { return server->url(path); }
    void replies(const std::string& path, const HttpResponse& response)
    {
        server->reply(path, response.status, response.body);
    }
    void breaksOff(const std::string& path)
    {
        server->reply(path, {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf"}}, TlsServer::End::cut);
    }
    void neverReplies(const std::string& path) { server->reply(path, {}); }
    bool runUntil(const std::function<bool()>& condition)
    {
        const auto patience = std::chrono::steady_clock::now() + 20s;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > patience) return false;
            pollfd waited{loop->descriptor(), POLLIN, 0};
            const auto next = loop->nextDeadline().value_or(1s);
            (void)poll(&waited, 1, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(next).count()));
            loop->turn();
        }
        return true;
    }
    [[nodiscard]] Seconds now() const { return std::chrono::steady_clock::now().time_since_epoch(); }
    void end()
    {
        real.reset();
        loop.reset();
    }
};

struct ScriptedWorld {
    std::optional<ScriptedHost> host{std::in_place};

    static void beginAll() {}
    static void endAll() {}

    [[nodiscard]] HttpClient& client() { return host->http(); }
    [[nodiscard]] RunLoop& runLoop() { return host->host().runLoop; }
    [[nodiscard]] std::string url(const std::string& path) const { return "https://api.quellon.example" + path; }
    /// For whatever is asked from now on.
    void replies(const std::string& /*path*/, const HttpResponse& response) { host->http().reply = {response, 10ms}; }
    void breaksOff(const std::string& /*path*/) { host->http().reply = {std::nullopt, 10ms}; }
    void neverReplies(const std::string& /*path*/) { host->http().reply = {HttpResponse{200, "late"}, 86'400s}; }
    bool runUntil(const std::function<bool()>& condition)
    {
        host->advance(0s);
        for (int i = 0; i < 20'000 && !condition(); ++i) host->advance(1ms);
        return condition();
    }
    [[nodiscard]] Seconds now() const { return host->elapsed(); }
    void end() { host.reset(); }
};

template <typename World>
class HttpClientContract : public ::testing::Test {
protected:
    using Response = std::optional<HttpResponse>;

    static void SetUpTestSuite() { World::beginAll(); }
    static void TearDownTestSuite() { World::endAll(); }

    World world;

    [[nodiscard]] HttpRequest get(const std::string& path, std::size_t most = 100) const
    {
        return {"GET", world.url(path), {{"User-Agent", "Tests/1"}}, "", 10s, most};
    }
    /// The answer to this one request; nothing at all is a test failure.
    Response answer(HttpRequest request)
    {
        Response result;
        bool answered = false;
        world.client().send(std::move(request), [&](Response response) {
            result = std::move(response);
            answered = true;
        });
        EXPECT_TRUE(world.runUntil([&] { return answered; })) << "no answer";
        return result;
    }
    /// Everything that is due now has run afterwards.
    bool settle()
    {
        bool settled = false;
        world.runLoop().post([&] { settled = true; });
        return world.runUntil([&] { return settled; });
    }
};

using Worlds = ::testing::Types<RealHttp, ScriptedWorld>;
TYPED_TEST_SUITE(HttpClientContract, Worlds);

TYPED_TEST(HttpClientContract, answersOnceInALaterTurnOnTheMainThread)
{
    struct Case {
        const char* name;
        std::function<void()> arrange;
    };
    const Case cases[] = {
        {"a reply",
         [&] {
             this->world.replies("/", {200, "hello"});
         }},
        {"a failure", [&] { this->world.breaksOff("/"); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        c.arrange();
        std::vector<std::thread::id> answers;
        this->world.client().send(this->get("/"), [&](const auto&) { answers.push_back(std::this_thread::get_id()); });
        EXPECT_TRUE(answers.empty()) << "not within the call";
        ASSERT_TRUE(this->world.runUntil([&] { return !answers.empty(); }));
        EXPECT_TRUE(this->settle());
        EXPECT_EQ(answers, std::vector{std::this_thread::get_id()});
    }
}

TYPED_TEST(HttpClientContract, givesTheReplyByteForByte)
{
    const HttpResponse cases[] = {
        {200, "hello"}, {200, ""}, {404, "not here"}, {503, ""}, {200, std::string{"\0\xFF\r\n", 4}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(::testing::PrintToString(each.body));
        this->world.replies("/", each);
        EXPECT_EQ(this->answer(this->get("/")), each);
    }
}

TYPED_TEST(HttpClientContract, aFailedTransferHasNoResponse)
{
    this->world.breaksOff("/");
    EXPECT_EQ(this->answer(this->get("/")), std::nullopt);
    this->world.replies("/", {200, "again"});
    EXPECT_EQ(this->answer(this->get("/")), (HttpResponse{200, "again"})) << "the next is none the worse";
}

TYPED_TEST(HttpClientContract, readsOneByteBeyondTheLimitAndNoMore)
{
    struct Case {
        std::size_t sent;
        std::size_t most;
        std::size_t read;
    };
    constexpr Case cases[] = {{99, 100, 99},   {100, 100, 100},    {101, 100, 101},
                              {102, 100, 101}, {70'000, 100, 101}, {0, 0, 0},
                              {1, 0, 1},       {2, 0, 1},          {65'537, 65'536, 65'537}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.sent) + " bytes of " + std::to_string(c.most));
        this->world.replies("/", {200, std::string(c.sent, 'x')});
        EXPECT_EQ(this->answer(this->get("/", c.most)), (HttpResponse{200, std::string(c.read, 'x')}));
    }
}

TYPED_TEST(HttpClientContract, outOfTimeHasNoResponse)
{
    this->world.neverReplies("/");
    auto request = this->get("/");
    request.timeout = 200ms;
    const auto begin = this->world.now();
    EXPECT_EQ(this->answer(std::move(request)), std::nullopt);
    EXPECT_GE(this->world.now() - begin, 199ms);
    EXPECT_LT(this->world.now() - begin, 5s);
}

TYPED_TEST(HttpClientContract, twoAtOnceEachGetTheirOwn)
{
    std::vector<typename TestFixture::Response> answers(2);
    int count = 0;
    for (const std::size_t i : {0U, 1U}) {
        const auto path = "/" + std::to_string(i);
        this->world.replies(path, {200, path});
        this->world.client().send(this->get(path), [&, i](const auto& response) {
            answers[i] = response;
            ++count;
        });
    }
    ASSERT_TRUE(this->world.runUntil([&] { return count == 2; }));
    EXPECT_EQ(answers[0], (HttpResponse{200, "/0"}));
    EXPECT_EQ(answers[1], (HttpResponse{200, "/1"}));
}

TYPED_TEST(HttpClientContract, aSlowOneKeepsNobodyWaiting)
{
    this->world.neverReplies("/slow");
    auto slow = this->get("/slow");
    slow.timeout = 500ms;
    std::string order;
    this->world.client().send(std::move(slow), [&](const auto& response) { order += response ? "?" : "slow "; });
    this->world.replies("/quick", {200, "quick "});
    this->world.client().send(this->get("/quick"), [&](const auto& response) { order += response.value().body; });
    ASSERT_TRUE(this->world.runUntil([&] { return order.size() >= 11; })) << order;
    EXPECT_EQ(order, "quick slow ");
}

TYPED_TEST(HttpClientContract, anAnswerMayAskAgain)
{
    this->world.replies("/", {200, "hello"});
    int answers = 0;
    const std::function<void(typename TestFixture::Response)> ask = [&](const auto& response) {
        EXPECT_EQ(response, (HttpResponse{200, "hello"}));
        if (++answers < 3) this->world.client().send(this->get("/"), ask);
    };
    this->world.client().send(this->get("/"), ask);
    ASSERT_TRUE(this->world.runUntil([&] { return answers == 3; }));
    EXPECT_TRUE(this->settle());
    EXPECT_EQ(answers, 3);
}

TYPED_TEST(HttpClientContract, theEndAnswersNobodyAndLetsThemGo)
{
    this->world.neverReplies("/never");
    const auto held = std::make_shared<int>(0);
    const auto refuse = [held](const auto&) { ADD_FAILURE() << "answered"; };
    this->world.client().send(this->get("/never"), refuse);
    EXPECT_TRUE(this->settle());
    this->world.replies("/", {200, "too late"});
    this->world.client().send(this->get("/"), refuse);
    EXPECT_EQ(held.use_count(), 4);
    this->world.end();
    EXPECT_EQ(held.use_count(), 2) << "only this test holds it";
}

} // namespace
} // namespace quellon
