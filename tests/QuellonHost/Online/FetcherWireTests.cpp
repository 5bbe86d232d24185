#include "QuellonHost/Online/FetcherTest.h"
#include "QuellonHost/Support/SentRequest.h"

#include "QuellonCore/Engine/OnlineContexts.h"
#include "QuellonHost/SystemHost.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::SentRequest;
using testing::TlsServer;

class FetcherWire : public testing::FetcherTest {
protected:
    static std::string hostHeader()
    {
        return std::string{"Host: "} + TlsServer::host + ":" + std::to_string(server().port());
    }
    /// The one request that was sent, once its connection has ended.
    static SentRequest sent()
    {
        const auto exchanges = server().awaitEnds(1);
        EXPECT_EQ(exchanges.size(), 1U);
        EXPECT_EQ(server().connections(), 1);
        return exchanges.empty() ? SentRequest{} : SentRequest::parse(exchanges.front());
    }
    /// The agent texts of both systems, and the one that this very program sends.
    static std::vector<std::string> agents()
    {
        return {UpdateChecker::userAgent("1.2.0", Platform::macOS().name, "14.5.0"),
                UpdateChecker::userAgent("1.2.0", Platform::linux().name, SystemHost::systemVersion())};
    }
};

TEST_F(FetcherWire, agentsNameTheSystem)
{
    EXPECT_EQ(agents().front(), "Quellon/1.2.0 (macOS 14.5.0)");
    EXPECT_EQ(agents().back(), "Quellon/1.2.0 (Linux " + SystemHost::systemVersion() + ")");
}

TEST_F(FetcherWire, aLookupSendsTheNameAndNothingElse)
{
    struct Case {
        const char* name;
        std::string label;
        std::string body;
    };
    const Case cases[] = {
        {"a word", "Sync", R"({"label":"Sync"})"},
        {"as the panel shows it", " Sync Helper (Plugin) ", R"({"label":" Sync Helper (Plugin) "})"},
        {"signs of JSON", "a\"b\\c\n", R"({"label":"a\"b\\c\n"})"},
        {"not ASCII", "同步", R"({"label":"同步"})"},
        {"nothing", "", R"({"label":""})"},
    };
    for (const auto& agent : agents()) {
        for (const auto& c : cases) {
            SCOPED_TRACE(agent + ", " + c.name);
            server().forget();
            server().reply("/v1/explain", 200, "{}");
            bool isDone = false;
            NetworkExplanationFetcher fetcher{host(), agent, server().url("/v1/explain"), log};
            fetcher.fetchExplanation(c.label, [&](const ExplanationFetching::Result&) { isDone = true; });
            runUntil(isDone);
            EXPECT_EQ(sent(), (SentRequest{"POST /v1/explain HTTP/1.1",
                                           {"Content-Length: " + std::to_string(c.body.size()),
                                            "Content-Type: application/json", hostHeader(), "User-Agent: " + agent},
                                           c.body}));
        }
    }
}

TEST_F(FetcherWire, aCheckSendsNothingButWhoAsks)
{
    for (const auto& agent : agents()) {
        SCOPED_TRACE(agent);
        server().forget();
        server().reply("/quellon/appcast/1.2.0.json", 200, "{}");
        bool isDone = false;
        NetworkManifestFetcher fetcher{host(), agent, log};
        fetcher.fetchManifest(server().url("/quellon/appcast/1.2.0.json"),
                              [&](const UpdateManifestFetching::Result&) { isDone = true; });
        runUntil(isDone);
        EXPECT_EQ(sent(), (SentRequest{
                              "GET /quellon/appcast/1.2.0.json HTTP/1.1", {hostHeader(), "User-Agent: " + agent}, ""}));
    }
}

TEST_F(FetcherWire, aReplyLeavesNoTraceInTheNextRequest)
{
    server().reply("/v1/explain",
                   {{"HTTP/1.1 200 OK\r\nSet-Cookie: id=5; Secure; Max-Age=9999\r\nETag: \"5\"\r\nCache-Control: "
                     "max-age=9999\r\nLast-Modified: Sun, 15 Mar 2026 10:00:00 GMT\r\nContent-Length: 2\r\n\r\n{}"}});
    for (int i = 0; i < 2; ++i) explain(server().url("/v1/explain"));
    fetchManifest(server().url("/v1/explain"));
    const auto exchanges = server().awaitEnds(3);
    ASSERT_EQ(exchanges.size(), 3U);
    EXPECT_EQ(exchanges[1], exchanges[0]);
    EXPECT_EQ(SentRequest::parse(exchanges[2]).headers,
              (std::vector<std::string>{hostHeader(), "User-Agent: Quellon/1.2.0 (Linux 6.1.0)"}));
    EXPECT_EQ(server().connections(), 3);
}

} // namespace
} // namespace quellon
