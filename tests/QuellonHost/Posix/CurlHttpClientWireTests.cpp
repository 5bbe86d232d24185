#include "QuellonHost/Support/CurlHttpClientTest.h"
#include "QuellonHost/Support/SentRequest.h"
#include "QuellonHost/Support/StuckLookup.h"
#include "QuellonHost/Support/TlsServer.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::SentRequest;
using testing::StuckLookup;
using testing::TlsServer;

class CurlHttpClientWire : public testing::CurlHttpClientTest {
protected:
    static std::string hostHeader(const char* name = TlsServer::host)
    {
        return std::string{"Host: "} + name + ":" + std::to_string(server().port());
    }
    static HttpRequest post(std::string url, std::string body)
    {
        return {"POST",
                std::move(url),
                {{"User-Agent", "Quellon/1.2.0 (macOS 14.5.0)"}, {"Content-Type", "application/json"}},
                std::move(body),
                Seconds{10},
                65'536};
    }
    /// All that was sent once so many connections have ended.
    static std::vector<SentRequest> awaitSent(std::size_t count)
    {
        std::vector<SentRequest> result;
        for (const auto& bytes : server().awaitEnds(count)) result.push_back(SentRequest::parse(bytes));
        return result;
    }
};

TEST_F(CurlHttpClientWire, requestIsWhatItSaysAndNothingElse)
{
    const std::string userAgent = "User-Agent: Quellon/1.2.0 (macOS 14.5.0)";
    const std::string url = server().url("/v1/explain");
    const std::string big(1'100'000, 'x');
    struct Case {
        const char* name;
        HttpRequest request;
        SentRequest sent;
    };
    const Case cases[] = {
        {"a POST",
         post(url, R"({"label":"x"})"),
         {"POST /v1/explain HTTP/1.1",
          {"Content-Length: 13", "Content-Type: application/json", hostHeader(), userAgent},
          R"({"label":"x"})"}},
        {"a POST of any bytes",
         post(url, std::string{"\0\xff\r\n", 4}),
         {"POST /v1/explain HTTP/1.1",
          {"Content-Length: 4", "Content-Type: application/json", hostHeader(), userAgent},
          std::string{"\0\xff\r\n", 4}}},
        {"a POST of nothing",
         post(url, ""),
         {"POST /v1/explain HTTP/1.1",
          {"Content-Length: 0", "Content-Type: application/json", hostHeader(), userAgent},
          ""}},
        {"a long POST, without asking first",
         post(url, big),
         {"POST /v1/explain HTTP/1.1",
          {"Content-Length: 1100000", "Content-Type: application/json", hostHeader(), userAgent},
          big}},
        {"a POST without headers",
         {"POST", url, {}, "a=b", Seconds{10}, 65'536},
         {"POST /v1/explain HTTP/1.1", {"Content-Length: 3", hostHeader()}, "a=b"}},
        {"a GET",
         {"GET", url, {{"User-Agent", "Quellon/1.2.0 (macOS 14.5.0)"}}, "", Seconds{10}, 65'536},
         {"GET /v1/explain HTTP/1.1", {hostHeader(), userAgent}, ""}},
        {"a GET without headers",
         {"GET", url, {}, "", Seconds{10}, 65'536},
         {"GET /v1/explain HTTP/1.1", {hostHeader()}, ""}},
        {"an empty header",
         {"GET", url, {{"X-Empty", ""}}, "", Seconds{10}, 65'536},
         {"GET /v1/explain HTTP/1.1", {hostHeader(), "X-Empty:"}, ""}},
        {"a header that would not be sent unasked",
         {"GET", url, {{"ACCEPT", "a/b"}}, "", Seconds{10}, 65'536},
         {"GET /v1/explain HTTP/1.1", {"ACCEPT: a/b", hostHeader()}, ""}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        server().forget();
        server().reply("/v1/explain", 200, "ok");
        EXPECT_EQ(exchange(c.request), (HttpResponse{200, "ok"}));
        EXPECT_EQ(awaitSent(1), (std::vector{c.sent}));
        EXPECT_EQ(server().connections(), 1);
    }
}

TEST_F(CurlHttpClientWire, nothingIsKeptBetweenTwoExchanges)
{
    server().reply("/", {{"HTTP/1.1 200 OK\r\nSet-Cookie: a=b; Secure\r\nStrict-Transport-Security: max-age=9\r\n"
                          "ETag: \"x\"\r\nCache-Control: max-age=1000\r\nAlt-Svc: h2=\":1\"\r\nContent-Length: 2\r\n"
                          "\r\nok"}});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(exchange(get(server().url("/"))), (HttpResponse{200, "ok"}));
    const SentRequest each{"GET / HTTP/1.1", {hostHeader(), "User-Agent: Tests/1"}, ""};
    EXPECT_EQ(awaitSent(3), (std::vector{each, each, each}));
    EXPECT_EQ(server().connections(), 3);
}

TEST_F(CurlHttpClientWire, noPasswordIsGivenWhenAsked)
{
    const auto home = std::getenv("HOME");
    const testing::TemporaryFolder folder;
    std::ofstream{folder / ".netrc"} << "machine " << TlsServer::host << " login user password secret\n";
    setenv("HOME", folder.path().c_str(), 1);
    server().reply("/", {{"HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=x\r\nContent-Length: 0\r\n\r\n"}});
    EXPECT_EQ(exchange(get(server().url("/"))), (HttpResponse{401, ""}));
    EXPECT_EQ(awaitSent(1), (std::vector{SentRequest{"GET / HTTP/1.1", {hostHeader(), "User-Agent: Tests/1"}, ""}}));
    if (home != nullptr) setenv("HOME", home, 1);
}

TEST_F(CurlHttpClientWire, redirectsAreFollowedByWhatCarriesNoBody)
{
    const std::string type = "Content-Type: application/json";
    const std::string agent = "User-Agent: Quellon/1.2.0 (macOS 14.5.0)";
    const SentRequest posted{"POST / HTTP/1.1", {"Content-Length: 2", type, hostHeader(), agent}, "{}"};
    const SentRequest asked{"GET / HTTP/1.1", {hostHeader(), "User-Agent: Tests/1"}, ""};
    const SentRequest askedThere{"GET /target HTTP/1.1", {hostHeader(TlsServer::otherHost), "User-Agent: Tests/1"}, ""};
    for (const int status : {301, 302, 303, 307, 308}) {
        for (const auto& location : {server().url("/target", "valid", TlsServer::otherHost), std::string{"/target"}}) {
            SCOPED_TRACE(std::to_string(status) + " to " + location);
            server().forget();
            server().reply("/", {{"HTTP/1.1 " + std::to_string(status) +
                                  " Go\r\nContent-Length: 4\r\nLocation: " + location + "\r\n\r\npage"}});
            server().reply("/target", 200, "ok");
            EXPECT_EQ(exchange(post(server().url("/"), "{}")), (HttpResponse{status, "page"}));
            EXPECT_EQ(awaitSent(1), std::vector{posted});
            EXPECT_EQ(server().connections(), 1);
        }
        server().forget();
        server().reply("/", {{"HTTP/1.1 " + std::to_string(status) + " Go\r\nContent-Length: 0\r\nLocation: " +
                              server().url("/target", "valid", TlsServer::otherHost) + "\r\n\r\n"}});
        server().reply("/target", 200, "ok");
        EXPECT_EQ(exchange(get(server().url("/"))), (HttpResponse{200, "ok"}));
        EXPECT_EQ(awaitSent(2), (std::vector{asked, askedThere}));
    }
}

TEST_F(CurlHttpClientWire, proxyIsTheOneOfTheEnvironment)
{
    server().reply("/", 200, "ok");
    setenv("https_proxy", ("http://127.0.0.1:" + std::to_string(server().port("plain"))).c_str(), 1);
    EXPECT_EQ(exchange(get(server().url("/"))), std::nullopt) << "this one just hangs up";
    EXPECT_EQ(server().connections("plain"), 1);
    EXPECT_EQ(server().connections(), 0);
    setenv("no_proxy", TlsServer::host, 1);
    EXPECT_EQ(exchange(get(server().url("/"))), (HttpResponse{200, "ok"}));
    EXPECT_EQ(server().connections("plain"), 1);
    unsetenv("https_proxy");
    unsetenv("no_proxy");
}

TEST_F(CurlHttpClientWire, whatCanNotBeSentFails)
{
    const auto url = server().url("/");
    const auto plain = "http://" + std::string{TlsServer::host} + ":" + std::to_string(server().port("plain")) + "/";
    struct Case {
        const char* name;
        HttpRequest request;
    };
    const Case cases[] = {
        {"http", get(plain)},
        {"no scheme", get(plain.substr(7))},
        {"a file", get("file:///etc/hostname")},
        {"nothing", get("")},
        {"no host", get("https:///x")},
        {"a password", get("https://user:secret@" + url.substr(8))},
        {"a blank", get(url + "a b")},
        {"a line end in the url", get(url + "x\r\nX: y")},
        {"an unknown method", {"PUT", url, {}, "", Seconds{10}, 10}},
        {"a line end in a value", {"GET", url, {{"X", "a\r\nY: b"}}, "", Seconds{10}, 10}},
        {"a line end in a name", {"GET", url, {{"X\nY", "b"}}, "", Seconds{10}, 10}},
        {"a zero byte in a value", {"GET", url, {{"X", std::string{"a\0b", 3}}}, "", Seconds{10}, 10}},
        {"a port that nobody listens on", get("https://127.0.0.1:1/")},
        {"a host that is not there", get("https://" + std::string{StuckLookup::absentHost} + "/")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(exchange(c.request), std::nullopt);
        EXPECT_LT(elapsed, Seconds{5});
    }
    EXPECT_EQ(server().connections(), 0);
    EXPECT_EQ(server().connections("plain"), 0);
}

} // namespace
} // namespace quellon
