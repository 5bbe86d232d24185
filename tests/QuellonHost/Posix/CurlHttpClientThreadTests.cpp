#include "QuellonHost/Support/CurlHttpClientTest.h"
#include "QuellonHost/Support/StuckLookup.h"
#include "QuellonHost/Support/TlsServer.h"
#include "QuellonHost/Support/WithoutThreads.h"

#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <thread>

namespace quellon {
namespace {

using testing::StuckLookup;
using Clock = std::chrono::steady_clock;

class CurlHttpClientThread : public testing::CurlHttpClientTest {
protected:
    static std::size_t openDescriptors()
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator{"/proc/self/fd"}, {}));
    }
    static std::size_t threads()
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator{"/proc/self/task"}, {}));
    }
    void awaitReadable() const
    {
        pollfd waited{loop->descriptor(), POLLIN, 0};
        ASSERT_EQ(poll(&waited, 1, 10'000), 1);
    }
};

TEST_F(CurlHttpClientThread, answersOnTheMainThreadInALaterTurn)
{
    server().reply("/", 200, "ok");
    bool answered = false;
    std::thread::id thread;
    client->send(get(server().url("/")), [&](const std::optional<HttpResponse>&) {
        thread = std::this_thread::get_id();
        answered = true;
    });
    EXPECT_FALSE(answered);
    runUntil(answered);
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(CurlHttpClientThread, beginsWithTheFirstRequest)
{
    const auto before = threads();
    const auto descriptors = openDescriptors();
    const CurlHttpClient idle{*loop, trustingOptions()};
    EXPECT_EQ(threads(), before);
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(CurlHttpClientThread, oneExchangeDoesNotWaitForAnother)
{
    server().reply("/never", {});
    server().reply("/", 200, "ok");
    int failed = 0;
    bool bothFailed = false;
    for (int i = 0; i < 2; ++i) {
        auto request = get(server().url("/never"));
        request.timeout = Seconds{2};
        client->send(request, [&](const std::optional<HttpResponse>& response) {
            EXPECT_EQ(response, std::nullopt);
            bothFailed = ++failed == 2;
        });
    }
    ASSERT_EQ(server().awaitRequests(2).size(), 2U);
    EXPECT_EQ(exchange(get(server().url("/"))), (HttpResponse{200, "ok"}));
    EXPECT_EQ(failed, 0);
    runUntil(bothFailed);
}

TEST_F(CurlHttpClientThread, manyAtOnceAreEachAnsweredOnce)
{
    constexpr int count = 20;
    for (int i = 0; i < count; ++i) server().reply("/" + std::to_string(i), 200, "reply " + std::to_string(i));
    const auto descriptors = openDescriptors();
    std::vector<int> answers(count, 0);
    int arrived = 0;
    bool all = false;
    for (int i = 0; i < count; ++i) {
        client->send(get(server().url("/" + std::to_string(i))), [&, i](const std::optional<HttpResponse>& response) {
            EXPECT_EQ(response, (HttpResponse{200, "reply " + std::to_string(i)}));
            ++answers[static_cast<std::size_t>(i)];
            all = ++arrived == count;
        });
    }
    runUntil(all);
    EXPECT_EQ(answers, std::vector<int>(count, 1));
    client.reset();
    EXPECT_EQ(openDescriptors(), descriptors) << "nothing is left open";
}

TEST_F(CurlHttpClientThread, anAnswerMayAskAgain)
{
    server().reply("/", 200, "ok");
    int rounds = 0;
    bool ended = false;
    std::function<void(std::optional<HttpResponse>)> next = [&](const std::optional<HttpResponse>& response) {
        EXPECT_TRUE(response.has_value());
        ended = ++rounds == 3;
        if (!ended) client->send(get(server().url("/")), next);
    };
    client->send(get(server().url("/")), next);
    runUntil(ended);
    EXPECT_EQ(rounds, 3);
}

TEST_F(CurlHttpClientThread, anAnswerMayEndTheClient)
{
    server().reply("/", 200, "ok");
    server().reply("/never", {});
    bool ended = false;
    client->send(get(server().url("/never")), [](const std::optional<HttpResponse>&) { FAIL(); });
    client->send(get(server().url("/")), [&](const std::optional<HttpResponse>&) {
        client.reset();
        ended = true;
    });
    runUntil(ended);
    loop->turn();
}

TEST_F(CurlHttpClientThread, leavesNoConnectionToChildProcesses)
{
    server().reply("/never", {});
    client->send(get(server().url("/never")), [](const std::optional<HttpResponse>&) {});
    ASSERT_EQ(server().awaitRequests(1).size(), 1U);
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator{"/proc/self/fd"}) {
        const int number = std::stoi(entry.path().filename().string());
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        if (getpeername(number, reinterpret_cast<sockaddr*>(&peer), &size) != 0 || peer.sin_family != AF_INET) continue;
        if (ntohs(peer.sin_port) != server().port()) continue;
        ++found;
        EXPECT_NE(fcntl(number, F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_EQ(found, 1);
}

TEST_F(CurlHttpClientThread, blocksSignalsAlsoWhereHostsAreLookedUp)
{
    StuckLookup stuck;
    client->send(get("https://" + std::string{StuckLookup::host} + "/"), [](const std::optional<HttpResponse>&) {});
    ASSERT_TRUE(stuck.awaitBegin());
    EXPECT_TRUE(stuck.blocksSignals());
    client.reset();
}

TEST_F(CurlHttpClientThread, thatTheSystemDoesNotGiveIsAFailedTransfer)
{
    EXPECT_TRUE(testing::inUnprivilegedChild([&] {
        const testing::NoThreads none;
        const auto response = exchange(get(server().url("/")));
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        return testing::NoThreads::holds() && !response && !HasFailure() && sigismember(&blocked, SIGTERM) == 0;
    }));
    EXPECT_EQ(server().connections(), 0);
}

TEST_F(CurlHttpClientThread, endsAtOnceAndAnswersNobody)
{
    server().reply("/never", {});
    server().reply("/body", {{"HTTP/1.1 200 OK\r\n\r\n"}, {"x", 0.01}});
    server().reply("/flood", {{"HTTP/1.1 200 OK\r\n\r\n"}, {std::string(65'536, 'x'), 0.0}});
    StuckLookup stuck;
    struct Case {
        const char* name;
        std::string url;
        std::function<bool()> isUnderWay;
    };
    const auto atOnce = [] { return true; };
    std::size_t read = 0;
    const auto requestRead = [&] {
        ++read;
        return server().awaitRequests(read).size() >= read;
    };
    const Case cases[] = {
        {"before it has begun", server().url("/unread"), atOnce},
        {"waiting for a reply", server().url("/never"), requestRead},
        {"in the middle of a body", server().url("/body"), requestRead},
        {"in the middle of a flood", server().url("/flood"), requestRead},
        {"waiting for a connection", server().url("/", "full"), atOnce},
        {"waiting for a greeting", server().url("/", "silent"), atOnce},
        {"looking up the host", "https://" + std::string{StuckLookup::host} + "/", [&] { return stuck.awaitBegin(); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        client = std::make_unique<CurlHttpClient>(*loop, trustingOptions());
        const auto held = std::make_shared<int>(0);
        client->send(get(c.url, std::size_t{1} << 40U),
                     [held](const std::optional<HttpResponse>&) { ADD_FAILURE() << "answered"; });
        ASSERT_TRUE(c.isUnderWay());
        const auto begin = Clock::now();
        client.reset();
        EXPECT_LT(Seconds{Clock::now() - begin}, Seconds{0.5});
        EXPECT_EQ(held.use_count(), 1) << "who waited has been let go";
        loop->turn();
    }
}

TEST_F(CurlHttpClientThread, anAnswerUnderWayToTheMainThreadComesTooLate)
{
    server().reply("/", 200, "ok");
    client->send(get(server().url("/")), [](const std::optional<HttpResponse>&) { ADD_FAILURE() << "answered"; });
    awaitReadable();
    client.reset();
    loop->turn();
    loop->turn();
}

TEST_F(CurlHttpClientThread, theLoopMayEndWithAnAnswerInIt)
{
    server().reply("/", 200, "ok");
    client->send(get(server().url("/")), [](const std::optional<HttpResponse>&) { ADD_FAILURE() << "answered"; });
    awaitReadable();
    client.reset();
    loop.reset();
}

} // namespace
} // namespace quellon
