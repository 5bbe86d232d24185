#include "QuellonHost/Support/CurlHttpClientTest.h"
#include "QuellonHost/Support/MemoryPeak.h"
#include "QuellonHost/Support/Repeated.h"
#include "QuellonHost/Support/StuckLookup.h"
#include "QuellonHost/Support/TlsServer.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::repeated;
using testing::StuckLookup;
using testing::TlsServer;
using End = TlsServer::End;
using Steps = std::vector<TlsServer::Step>;

constexpr std::size_t limit = 65'536;

std::string withLength(std::size_t length, std::string_view body, std::string_view headers = "")
{
    return "HTTP/1.1 200 OK\r\n" + std::string{headers} + "Content-Length: " + std::to_string(length) + "\r\n\r\n" +
           std::string{body};
}

std::string whole(std::string_view body, std::string_view headers = "")
{
    return withLength(body.size(), body, headers);
}

std::string redirect(int status, std::string_view location)
{
    return "HTTP/1.1 " + std::to_string(status) + " Elsewhere\r\nLocation: " + std::string{location} +
           "\r\nContent-Length: 4\r\n\r\npage";
}

const std::string untilTheEnd = "HTTP/1.1 200 OK\r\n\r\n";
const std::string inChunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

class CurlHttpClientReplies : public testing::CurlHttpClientTest {
protected:
    /// What a request of "/" gives when the server says this.
    std::optional<HttpResponse> whenServerSays(const Steps& steps, End end = End::hang, std::size_t most = limit)
    {
        server().forget();
        server().reply("/", steps, end);
        server().reply("/target", 200, "target");
        return exchange(get(server().url("/"), most));
    }
};

TEST_F(CurlHttpClientReplies, arrive)
{
    const std::string deep = repeated("[", 100'000) + repeated("]", 100'000);
    const std::string packed = server().gzippedZeros(1000);
    struct Case {
        const char* name;
        Steps steps;
        End end;
        HttpResponse response;
    };
    const Case cases[] = {
        {"a body", {{whole("hello")}}, End::hang, {200, "hello"}},
        {"an empty body", {{whole("")}}, End::hang, {200, ""}},
        {"no body", {{"HTTP/1.1 204 No Content\r\n\r\n"}}, End::hang, {204, ""}},
        {"a body until the end of the connection", {{untilTheEnd + "hello"}}, End::close, {200, "hello"}},
        {"a body in chunks and headers after it",
         {{inChunks + "2\r\nhe\r\n0\r\nX: y\r\n\r\n"}},
         End::hang,
         {200, "he"}},
        {"a body in chunks", {{inChunks + "2\r\nhe\r\n3;x=y\r\nllo\r\n0\r\n\r\n"}}, End::hang, {200, "hello"}},
        {"HTTP/1.0", {{"HTTP/1.0 200 OK\r\n\r\nhello"}}, End::close, {200, "hello"}},
        {"a word before the reply", {{"HTTP/1.1 100 Continue\r\n\r\n" + whole("hello")}}, End::hang, {200, "hello"}},
        {"not found", {{"HTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\nno"}}, End::hang, {404, "no"}},
        {"too many requests", {{"HTTP/1.1 429 Slow\r\nContent-Length: 4\r\n\r\nlate"}}, End::hang, {429, "late"}},
        {"unavailable", {{"HTTP/1.1 503 Busy\r\nContent-Length: 4\r\n\r\nbusy"}}, End::hang, {503, "busy"}},
        {"an uncommon status", {{"HTTP/1.1 799\r\nContent-Length: 0\r\n\r\n"}}, End::hang, {799, ""}},
        {"a redirect to nowhere", {{"HTTP/1.1 302 Found\r\nContent-Length: 4\r\n\r\npage"}}, End::hang, {302, "page"}},
        {"a question for a password",
         {{"HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=x\r\nContent-Length: 2\r\n\r\nwh"}},
         End::hang,
         {401, "wh"}},
        {"bytes that are no UTF-8",
         {{whole(std::string{"\xff\xfe\0\xc0 x", 6})}},
         End::hang,
         {200, std::string{"\xff\xfe\0\xc0 x", 6}}},
        {"deeply nested lists", {{whole(deep)}}, End::hang, {200, deep}},
        {"packed bytes as they came", {{whole(packed, "Content-Encoding: gzip\r\n")}}, End::hang, {200, packed}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(whenServerSays(c.steps, c.end, 1'000'000), c.response);
    }
}

TEST_F(CurlHttpClientReplies, areReadOneByteBeyondTheLimit)
{
    const std::string most(limit, 'x');
    const std::string more = most + "x";
    struct Case {
        const char* name;
        std::size_t most;
        Steps steps;
        End end;
        std::string body;
    };
    const Case cases[] = {
        {"exactly the limit", limit, {{whole(most)}}, End::hang, most},
        {"one byte more", limit, {{whole(more)}}, End::hang, more},
        {"two bytes more", limit, {{whole(more + "x")}}, End::hang, more},
        {"exactly the limit in the smallest chunks",
         limit,
         {{inChunks + repeated("1\r\nx\r\n", limit) + "0\r\n\r\n"}},
         End::hang,
         most},
        {"one byte more in the smallest chunks",
         limit,
         {{inChunks + repeated("1\r\nx\r\n", limit + 1)}},
         End::hang,
         more},
        {"a length that is not sent any more", limit, {{withLength(1'000'000, more)}}, End::hang, more},
        {"cut off beyond the limit", limit, {{withLength(1'000'000, more + "x")}}, End::cut, more},
        {"without end", limit, {{untilTheEnd}, {std::string(65'536, 'x'), 0.0}}, End::hang, more},
        {"without end, in chunks", limit, {{inChunks}, {"10000\r\n" + most + "\r\n", 0.0}}, End::hang, more},
        {"nothing allowed and nothing sent", 0, {{whole("")}}, End::hang, ""},
        {"nothing allowed", 0, {{whole("abc")}}, End::hang, "a"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto response = whenServerSays(c.steps, c.end, c.most);
        ASSERT_TRUE(response.has_value());
        EXPECT_EQ(response->status, 200);
        EXPECT_EQ(response->body.size(), c.body.size());
        EXPECT_TRUE(response->body == c.body);
        EXPECT_LT(elapsed, Seconds{5});
    }
}

TEST_F(CurlHttpClientReplies, failWhenTheyAreNone)
{
    struct Case {
        const char* name;
        Steps steps;
        End end;
    };
    const Case cases[] = {
        {"nothing", {}, End::close},
        {"less than the length", {{withLength(10, "hello")}}, End::close},
        {"chunks without the last", {{inChunks + "5\r\nhello\r\n"}}, End::close},
        {"a chunk cut off", {{inChunks + "5\r\nhe"}}, End::close},
        {"headers cut off", {{"HTTP/1.1 200 OK\r\nContent-Le"}}, End::close},
        {"less than the length, cut", {{withLength(10, "hello")}}, End::cut},
        {"a chunk cut", {{inChunks + "5\r\nhe"}}, End::cut},
        {"a status alone", {{"HTTP/1.1 200 OK\r\n"}}, End::close},
        {"a word before the reply and no reply", {{"HTTP/1.1 100 Continue\r\n\r\n"}}, End::close},
        {"another protocol",
         {{"HTTP/1.1 101 Switching Protocols\r\nUpgrade: x\r\nConnection: Upgrade\r\n\r\n"}},
         End::close},
        {"half a reply after a word before it", {{"HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nX: y"}}, End::close},
        {"not HTTP", {{"220 mail.quellon.example ESMTP\r\n"}}, End::close},
        {"a body without a head", {{"<html>hello</html>"}}, End::close},
        {"HTTP of an unknown kind", {{"HTTP/9.7 200 OK\r\n\r\nhello"}}, End::close},
        {"a chunk length that is none", {{inChunks + "zz\r\nhello\r\n0\r\n\r\n"}}, End::close},
        {"headers without end", {{"HTTP/1.1 200 OK\r\n"}, {repeated("X: y\r\n", 1000), 0.0}}, End::hang},
        {"a header without end", {{"HTTP/1.1 200 OK\r\nX: "}, {std::string(65'536, 'y'), 0.0}}, End::hang},
        {"words before the reply without end", {{repeated("HTTP/1.1 100 Continue\r\n\r\n", 100), 0.0}}, End::hang},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(whenServerSays(c.steps, c.end), std::nullopt);
        EXPECT_LT(elapsed, Seconds{5});
    }
}

TEST_F(CurlHttpClientReplies, haveHeadersOfSoManyBytesAndNoMore)
{
    const auto withHeaders = [](std::size_t bytes) {
        const std::string rest = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nX: \r\n\r\n";
        return "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nX: " + std::string(bytes - rest.size(), 'y') + "\r\n\r\nok";
    };
    EXPECT_EQ(whenServerSays({{withHeaders(CurlHttpClient::mostHeaderBytes)}}), (HttpResponse{200, "ok"}));
    EXPECT_EQ(whenServerSays({{withHeaders(CurlHttpClient::mostHeaderBytes + 1)}}), std::nullopt);
    const auto first = redirect(302, "/target");
    const auto rest = CurlHttpClient::mostHeaderBytes - (first.size() - std::string_view{"page"}.size());
    server().reply("/", {{first}});
    server().reply("/target", {{withHeaders(rest)}});
    EXPECT_EQ(exchange(get(server().url("/"))), (HttpResponse{200, "ok"}));
    server().reply("/target", {{withHeaders(rest + 1)}});
    EXPECT_EQ(exchange(get(server().url("/"))), std::nullopt) << "those of a redirect count, too";
}

TEST_F(CurlHttpClientReplies, redirectOnlyToHttps)
{
    const auto plain = "http://" + std::string{TlsServer::host} + ":" + std::to_string(server().port("plain")) + "/";
    const auto withPassword = "https://user:secret@" + server().url("/target").substr(8);
    struct Case {
        const char* name;
        std::string location;
        std::optional<HttpResponse> response;
    };
    const Case cases[] = {
        {"to a path", "/target", HttpResponse{200, "target"}},
        {"to the same host", server().url("/target"), HttpResponse{200, "target"}},
        {"to another host", server().url("/target", "valid", TlsServer::otherHost), HttpResponse{200, "target"}},
        {"to http", plain, std::nullopt},
        {"to a file", "file:///etc/hostname", std::nullopt},
        {"to ftp", "ftp://" + std::string{TlsServer::host} + "/", std::nullopt},
        {"to a host with an expired certificate", server().url("/target", "expired"), std::nullopt},
        {"with a password", withPassword, std::nullopt},
        {"to itself, for ever", "/", std::nullopt},
    };
    for (const auto& c : cases) {
        for (const int status : {302, 308}) {
            SCOPED_TRACE(c.name + std::string{" with "} + std::to_string(status));
            EXPECT_EQ(whenServerSays({{redirect(status, c.location)}}), c.response);
            EXPECT_EQ(server().connections("plain"), 0);
            EXPECT_LE(server().connections(), 1 + CurlHttpClient::mostRedirects);
        }
    }
}

TEST_F(CurlHttpClientReplies, redirectWithoutReadingThePage)
{
    const Steps endless{{"HTTP/1.1 302 Found\r\nLocation: /target\r\n\r\n"}, {std::string(65'536, 'x'), 0.0}};
    EXPECT_EQ(whenServerSays(endless), (HttpResponse{200, "target"}));
    EXPECT_LT(elapsed, Seconds{5});
}

TEST_F(CurlHttpClientReplies, redirectSoOftenAndNoMore)
{
    for (long hop = 1; hop <= CurlHttpClient::mostRedirects + 1; ++hop) {
        const auto next = hop == 1 ? std::string{"/target"} : "/hop" + std::to_string(hop - 1);
        server().reply("/hop" + std::to_string(hop), {{redirect(307, next)}});
    }
    server().reply("/target", 200, "target");
    const auto hops = [&](long count) { return exchange(get(server().url("/hop" + std::to_string(count)))); };
    EXPECT_EQ(hops(CurlHttpClient::mostRedirects), (HttpResponse{200, "target"}));
    EXPECT_EQ(hops(CurlHttpClient::mostRedirects + 1), std::nullopt);
}

TEST_F(CurlHttpClientReplies, comeFromAHostThatTheAuthorityNames)
{
    for (const char* listener : {"valid", "wrongHost", "expired", "unknown", "garbage", "plain"}) {
        SCOPED_TRACE(listener);
        server().reply("/", 200, "hello");
        const auto response = exchange(get(server().url("/", listener)));
        EXPECT_EQ(response.has_value(), std::string{listener} == "valid");
        EXPECT_LT(elapsed, Seconds{5});
    }
    EXPECT_EQ(server().awaitEnds(1).size(), 1U) << "the others have not been asked anything";
}

TEST_F(CurlHttpClientReplies, areTrustedByNoVariable)
{
    server().reply("/", 200, "hello");
    for (const char* name : {"SSL_CERT_FILE", "CURL_CA_BUNDLE"}) setenv(name, server().authority().c_str(), 1);
    client = std::make_unique<CurlHttpClient>(*loop, CurlHttpClient::Options{{}, server().addresses()});
    EXPECT_EQ(exchange(get(server().url("/"))), std::nullopt);
    EXPECT_EQ(server().connections(), 1) << "it was there";
    for (const char* name : {"SSL_CERT_FILE", "CURL_CA_BUNDLE"}) unsetenv(name);
}

TEST_F(CurlHttpClientReplies, areAwaitedNoLongerThanAllowed)
{
    server().reply("/silent", {});
    server().reply("/head", {{"HTTP/1.1 200 OK\r\n"}, {"X: y\r\n", 0.05}});
    server().reply("/body", {{withLength(1'000'000, "")}, {"x", 0.05}});
    server().reply("/loop", {{"HTTP/1.1 302 Found\r\nLocation: /slow\r\nContent-Length: 0\r\n\r\n"}});
    server().reply("/slow", {{withLength(1'000'000, "")}, {"x", 0.05}});
    server().reply("/framing", {{inChunks + "1;"}, {std::string(1000, 'x'), 0.0}});
    const StuckLookup stuck;
    struct Case {
        const char* name;
        std::string url;
    };
    const Case cases[] = {
        {"a connection that nobody takes", server().url("/", "full")},
        {"a connection without a greeting", server().url("/", "silent")},
        {"no reply", server().url("/silent")},
        {"headers now and then", server().url("/head")},
        {"a byte of the body now and then", server().url("/body")},
        {"slow after a redirect", server().url("/loop")},
        {"framing of chunks without end", server().url("/framing")},
        {"a look-up without end", "https://" + std::string{StuckLookup::host} + "/"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto request = get(c.url);
        request.timeout = Seconds{0.3};
        EXPECT_EQ(exchange(request), std::nullopt);
        EXPECT_GE(elapsed, Seconds{0.29});
        EXPECT_LT(elapsed, Seconds{1.5});
    }
}

TEST_F(CurlHttpClientReplies, needATime)
{
    server().reply("/", 200, "hello");
    for (const double timeout : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        SCOPED_TRACE(timeout);
        auto request = get(server().url("/", "silent"));
        request.timeout = Seconds{timeout};
        EXPECT_EQ(exchange(request), std::nullopt);
        EXPECT_LT(elapsed, Seconds{1});
    }
    auto request = get(server().url("/"));
    request.timeout = Seconds{1e300};
    EXPECT_EQ(exchange(request), (HttpResponse{200, "hello"}));
}

TEST_F(CurlHttpClientReplies, takeNoMoreMemoryThanTheLimitAndAMebibyte)
{
    const auto bomb = server().gzippedZeros(std::size_t{64} << 20U);
    const std::string block(65'536, 'x');
    struct Case {
        const char* name;
        Steps steps;
    };
    const Case cases[] = {
        {"a body without end", {{untilTheEnd}, {block, 0.0}}},
        {"a body without end in chunks", {{inChunks}, {"10000\r\n" + block + "\r\n", 0.0}}},
        {"headers without end", {{"HTTP/1.1 200 OK\r\n"}, {repeated("X: y\r\n", 1000), 0.0}}},
        {"the shortest headers without end", {{"HTTP/1.1 200 OK\r\n"}, {repeated("a:\n", 10'000), 0.0}}},
        {"a header without end", {{"HTTP/1.1 200 OK\r\nX: "}, {block, 0.0}}},
        {"a redirect with a page without end", {{"HTTP/1.1 302 Found\r\nLocation: /target\r\n\r\n"}, {block, 0.0}}},
        {"packed zeros", {{whole(bomb, "Content-Encoding: gzip\r\n")}}},
        {"zeros packed for the way", {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n\r\n" + bomb}}},
    };
    (void)whenServerSays({{whole(block)}}); // what is needed once
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const testing::MemoryPeak peak;
        const auto response = whenServerSays(c.steps);
        EXPECT_LT(peak.growth(), limit + testing::MemoryPeak::allowance);
        EXPECT_LE(response.value_or(HttpResponse{}).body.size(), limit + 1);
        EXPECT_LT(elapsed, Seconds{5});
    }
}

} // namespace
} // namespace quellon
