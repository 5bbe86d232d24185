#include "QuellonHost/Online/FetcherTest.h"
#include "QuellonHost/Support/Repeated.h"
#include "QuellonHost/Support/StuckLookup.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quellon {
namespace {

using testing::Fetched;
using testing::repeated;
using testing::StuckLookup;
using testing::TlsServer;
using End = TlsServer::End;
using Steps = std::vector<TlsServer::Step>;

std::string reply(int status, std::string_view body, std::string_view headers = "")
{
    return "HTTP/1.1 " + std::to_string(status) + " As told\r\n" + std::string{headers} +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string{body};
}

std::string ok(std::string_view body)
{
    return reply(200, body);
}

/// What both fetchers accept, with something more in it that neither looks at.
std::string goodWith(std::string_view more)
{
    return R"({"recognized":true,"whatItIs":"x","latestVersion":"1.3","downloadURL":"https://quellon.example/","more":)" +
           std::string{more} + "}";
}

/// So many members of different names, 7 bytes each, to stand behind another one.
std::string members(std::size_t count)
{
    constexpr std::string_view letters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 !#$%&'()*+,-./:;<=>?@[]^_`{|}~";
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += {',', '"', letters[i / letters.size() % letters.size()], letters[i % letters.size()], '"', ':', '0'};
    return result;
}

std::string goodOfSize(std::size_t size)
{
    return goodWith('"' + std::string(size - goodWith(R"("")").size(), 'x') + '"');
}

const std::string good = goodWith("0");
const std::string untilTheEnd = "HTTP/1.1 200 OK\r\n\r\n";
const std::string inChunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

class FetcherReplies : public testing::FetcherTest {
protected:
    void SetUp() override
    {
        testing::FetcherTest::SetUp();
        server().reply("/", {{ok(good)}});
        ASSERT_EQ(explain(server().url("/")).result, "accepted"); // which loads what is needed once
        server().forget();
    }
    /// `result` with the line that it leaves in the log: a failed transfer, or this status and so many bytes.
    static Fetched expected(const std::string& service, const std::string& result, int status, std::size_t bytes)
    {
        const auto outcome = result == "transport" ? std::string{"failed"} : std::to_string(status);
        return {result, service + " " + outcome + ", " + std::to_string(bytes) + " bytes"};
    }
    /// Both fetchers ask for this, and come to what is told of each, in no more time than one of them may take.
    void expectBoth(const std::string& url, const std::string& explained, const std::string& checked, int status,
                    std::size_t bytes)
    {
        EXPECT_EQ(explain(url), expected("explain/explain", explained, status, bytes));
        expectThrift();
        EXPECT_EQ(fetchManifest(url), expected("update/manifest", checked, status, bytes));
        expectThrift();
    }

private:
    void expectThrift() const
    {
        EXPECT_LT(grew, limit + testing::MemoryPeak::allowance);
        EXPECT_LT(took, Seconds{5});
    }
};

TEST_F(FetcherReplies, ofEveryKind)
{
    const std::string deep = repeated("[", 100'000) + repeated("]", 100'000);
    const std::string deepWithin = goodWith(repeated("[", 30'000) + repeated("]", 30'000));
    const std::string deepObjects = repeated(R"({"a":)", 100'000);
    const std::string noUTF8 = goodWith("\"\xC3\x28\"");
    const std::string smallBomb = server().gzippedZeros(std::size_t{16} << 20U);
    const std::string bigBomb = server().gzippedZeros(std::size_t{80} << 20U);
    ASSERT_LT(smallBomb.size(), limit);
    ASSERT_GT(bigBomb.size(), limit);
    const std::string packed = "Content-Encoding: gzip\r\n";
    const std::string block(65'536, 'x');
    const std::string most = goodOfSize(limit);
    struct Case {
        const char* name;
        Steps steps;
        End end;
        const char* explained;
        const char* checked;
        int status = 200; // what is logged, and so many bytes
        std::size_t bytes = 0;
    };
    constexpr const char* accepted = "accepted";
    constexpr const char* transport = "transport";
    constexpr const char* malformed = "malformedPayload";
    const Case cases[] = {
        {"a good one", {{ok(good)}}, End::hang, accepted, accepted, 200, good.size()},
        {"busy", {{reply(503, good)}}, End::hang, "unavailable", "badStatus 503", 503, good.size()},
        {"asked too often", {{reply(429, "")}}, End::hang, "unavailable", "badStatus 429", 429, 0},
        {"broken", {{reply(500, good)}}, End::hang, "badStatus 500", "badStatus 500", 500, good.size()},
        {"not found", {{reply(404, "no")}}, End::hang, "badStatus 404", "badStatus 404", 404, 2},
        {"not modified", {{"HTTP/1.1 304 Same\r\n\r\n"}}, End::hang, "badStatus 304", "badStatus 304", 304, 0},
        {"created", {{reply(201, good)}}, End::hang, "badStatus 201", "badStatus 201", 201, good.size()},
        {"moved to nowhere", {{reply(301, "no")}}, End::hang, "badStatus 301", "badStatus 301", 301, 2},
        {"busy, without end",
         {{"HTTP/1.1 503 Busy\r\n\r\n"}, {block, 0.0}},
         End::hang,
         "unavailable",
         "badStatus 503",
         503,
         limit + 1},
        {"as long as it may be", {{ok(most)}}, End::hang, accepted, accepted, 200, limit},
        {"as long as it may be, in pieces",
         {{inChunks + "8000\r\n" + most.substr(0, 32'768) + "\r\n"},
          {"8000\r\n" + most.substr(32'768) + "\r\n0\r\n\r\n"}},
         End::hang,
         accepted,
         accepted,
         200,
         limit},
        {"a byte too long", {{ok(goodOfSize(limit + 1))}}, End::hang, malformed, malformed, 200, limit + 1},
        {"a good one and blanks, a byte too long",
         {{ok(good + std::string(limit + 1 - good.size(), ' '))}},
         End::hang,
         malformed,
         malformed,
         200,
         limit + 1},
        {"without end", {{untilTheEnd}, {block, 0.0}}, End::hang, malformed, malformed, 200, limit + 1},
        {"without end, in chunks",
         {{inChunks}, {"10000\r\n" + block + "\r\n", 0.0}},
         End::hang,
         malformed,
         malformed,
         200,
         limit + 1},
        {"cut off",
         {{"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + good}},
         End::cut,
         transport,
         transport,
         200,
         0},
        {"broken off", {{inChunks + "ff\r\n" + good}}, End::close, transport, transport, 200, 0},
        {"nothing", {}, End::close, transport, transport, 200, 0},
        {"not HTTP", {{"220 mail.quellon.example ESMTP\r\n" + good}}, End::close, transport, transport, 200, 0},
        {"good, but without a head", {{good}}, End::close, transport, transport, 200, 0},
        {"headers without end",
         {{"HTTP/1.1 200 OK\r\n"}, {repeated("a:\n", 10'000), 0.0}},
         End::hang,
         transport,
         transport,
         200,
         0},
        {"no body", {{ok("")}}, End::hang, malformed, malformed, 200, 0},
        {"not JSON", {{ok("<html>")}}, End::hang, malformed, malformed, 200, 6},
        {"not an object", {{ok("[]")}}, End::hang, malformed, malformed, 200, 2},
        {"something behind it", {{ok(good + "x")}}, End::hang, malformed, malformed, 200, good.size() + 1},
        {"not UTF-8", {{ok(noUTF8)}}, End::hang, malformed, malformed, 200, noUTF8.size()},
        {"nested 100,000 deep", {{ok(deep)}}, End::hang, malformed, malformed, 200, limit + 1},
        {"objects nested 100,000 deep", {{ok(deepObjects)}}, End::hang, malformed, malformed, 200, limit + 1},
        {"nested deeply in a good one", {{ok(deepWithin)}}, End::hang, malformed, malformed, 200, deepWithin.size()},
        {"nested as deep as the limit lets it",
         {{ok(deep.substr(0, limit))}},
         End::hang,
         malformed,
         malformed,
         200,
         limit},
        {"packed zeros", {{reply(200, smallBomb, packed)}}, End::hang, malformed, malformed, 200, smallBomb.size()},
        {"more packed zeros", {{reply(200, bigBomb, packed)}}, End::hang, malformed, malformed, 200, limit + 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        server().reply("/", c.steps, c.end);
        expectBoth(server().url("/"), c.explained, c.checked, c.status, c.bytes);
        EXPECT_EQ(explanation.has_value() && manifest.has_value(), c.explained == accepted);
    }
}

TEST_F(FetcherReplies, byWayOfOthers)
{
    const auto plain = "http://" + std::string{TlsServer::host} + ":" + std::to_string(server().port("plain")) + "/";
    const auto elsewhere = server().url("/target", "valid", TlsServer::otherHost);
    struct Case {
        const char* name;
        std::string location;
        const char* checked;
        int redirects; // that a check follows before the end; a name goes nowhere but to whom it is sent
    };
    const Case cases[] = {
        {"to https", elsewhere, "accepted", 1},
        {"to http", plain, "transport", 0},
        {"to itself, again and again", "/", "transport", CurlHttpClient::mostRedirects},
        {"to a host that is another", server().url("/target", "wrongHost"), "transport", 0},
        {"to a file", "file:///etc/hostname", "transport", 0},
    };
    server().reply("/target", {{ok(good)}});
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        server().reply("/", {{reply(307, "page", "Location: " + c.location + "\r\n")}});
        auto before = server().connections();
        EXPECT_EQ(explain(server().url("/")), expected("explain/explain", "badStatus 307", 307, 4));
        EXPECT_EQ(server().connections() - before, 1);
        before = server().connections();
        const auto isAccepted = c.checked == std::string{"accepted"};
        EXPECT_EQ(fetchManifest(server().url("/")),
                  expected("update/manifest", c.checked, 200, isAccepted ? good.size() : 0));
        EXPECT_EQ(server().connections() - before, 1 + c.redirects);
        EXPECT_EQ(server().connections("plain"), 0);
    }
}

TEST_F(FetcherReplies, fromAHostThatIsNotTheOne)
{
    server().reply("/", {{ok(good)}});
    expectBoth(server().url("/"), "accepted", "accepted", 200, good.size());
    for (const char* listener : {"wrongHost", "expired", "unknown", "garbage", "plain"}) {
        SCOPED_TRACE(listener);
        expectBoth(server().url("/", listener), "transport", "transport", 200, 0);
        EXPECT_EQ(server().connections(listener), 2);
    }
    expectBoth("https://" + std::string{StuckLookup::absentHost} + "/", "transport", "transport", 200, 0);
    EXPECT_EQ(server().awaitEnds(2).size(), 2U) << "the others have not been asked anything";
}

/// The smaller a value, the more memory it could take for each of its bytes.
TEST_F(FetcherReplies, fullOfWhatNobodyReadsAreAcceptedAndBounded)
{
    const auto listOf = [](const std::string& each) {
        return goodWith("[" + repeated(each + ",", (limit - 200) / (each.size() + 1)) + each + "]");
    };
    struct Case {
        const char* name;
        std::string body;
    };
    const Case cases[] = {
        {"lists", listOf("[]")},
        {"objects", listOf("{}")},
        {"texts", listOf(R"("")")},
        {"numbers", listOf("0")},
        {"objects of one", listOf(R"({"a":0})")},
        {"members", goodWith("0" + members((limit - 200) / 7))},
        {"members of a member", goodWith(R"({"x":0)" + members((limit - 200) / 7) + "}")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_LE(c.body.size(), limit);
        ASSERT_GT(c.body.size(), limit - 500);
        server().reply("/", {{ok(c.body)}});
        expectBoth(server().url("/"), "accepted", "accepted", 200, c.body.size());
    }
}

/// Each must ask for the time that it may take; here it gets less.
TEST_F(FetcherReplies, tooSlow)
{
    const StuckLookup stuck;
    server().reply("/silent", {});
    server().reply("/head", {{"HTTP/1.1 200 OK\r\n"}, {"X: y\r\n", 0.05}});
    server().reply("/body", {{"HTTP/1.1 200 OK\r\nContent-Length: 65536\r\n\r\n"}, {"{", 0.05}});
    server().reply("/almost",
                   {{"HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(good.size() + 1) + "\r\n\r\n"}, {good}});
    server().reply("/elsewhere", {{reply(307, "", "Location: /body\r\n")}});
    struct Case {
        const char* name;
        std::string url;
        const char* explained = "transport";
        int status = 0;
    };
    const Case cases[] = {
        {"to be found", "https://" + std::string{StuckLookup::host} + "/"},
        {"to connect", server().url("/", "full")},
        {"to greet", server().url("/", "silent")},
        {"to reply", server().url("/silent")},
        {"with the headers", server().url("/head")},
        {"with the body", server().url("/body")},
        {"with the last byte", server().url("/almost")},
        {"after a redirect", server().url("/elsewhere"), "badStatus 307", 307},
    };
    http.timeout = Seconds{0.2};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(explain(c.url), expected("explain/explain", c.explained, c.status, 0));
        EXPECT_EQ(http.askedTimeout, Seconds{15});
        EXPECT_GE(took, Seconds{c.status == 0 ? 0.19 : 0.0});
        EXPECT_LT(took, Seconds{1.5});
        EXPECT_EQ(fetchManifest(c.url), expected("update/manifest", "transport", 0, 0));
        EXPECT_EQ(http.askedTimeout, Seconds{10});
        EXPECT_GE(took, Seconds{0.19});
        EXPECT_LT(took, Seconds{1.5});
    }
}

TEST_F(FetcherReplies, explanations)
{
    struct Case {
        const char* name;
        const char* body;
        const char* result;
        std::string whatItIs = {};
    };
    const Case cases[] = {
        {"the least", R"({"recognized":true,"whatItIs":"x"})", "accepted", "x"},
        {"from a service that vouches for itself",
         R"({"recognized":true,"whatItIs":"x","confidence":"reviewed","source":"pack"})", "accepted", "x"},
        {"with keys that nobody knows", R"({"recognized":true,"whatItIs":"x","account":{"id":[5]}})", "accepted", "x"},
        {"in all of UTF-8", R"({"recognized":true,"whatItIs":"同步 \ud83d\ude00\u0000"})", "accepted",
         std::string{"同步 😀\0", 12}},
        {"without the flag", R"({"whatItIs":"x"})", "unrecognized"},
        {"with an empty flag", R"({"recognized":null,"whatItIs":"x"})", "unrecognized"},
        {"of what is not recognized", R"({"recognized":false,"whatItIs":"x"})", "unrecognized"},
        {"with a flag alone", R"({"recognized":true})", "malformedPayload"},
        {"with a refusal alone", R"({"recognized":false})", "malformedPayload"},
        {"that say nothing", R"({"recognized":true,"whatItIs":""})", "malformedPayload"},
        {"with a flag that is a text", R"({"recognized":"true","whatItIs":"x"})", "malformedPayload"},
        {"with a flag that is a number", R"({"recognized":1,"whatItIs":"x"})", "malformedPayload"},
        {"with a field of a wrong type", R"({"recognized":true,"whatItIs":["x"]})", "malformedPayload"},
        {"with an empty list for a text", R"({"recognized":true,"whatItIs":"x","limitNote":[]})", "malformedPayload"},
        {"with a wrong type where the value is not taken", R"({"recognized":true,"whatItIs":"x","source":{}})",
         "malformedPayload"},
        {"of half a character", R"({"recognized":true,"whatItIs":"\ud83d"})", "malformedPayload"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        server().reply("/", {{ok(c.body)}});
        EXPECT_EQ(explain(server().url("/")),
                  expected("explain/explain", c.result, 200, std::string_view{c.body}.size()));
        if (c.result != std::string{"accepted"}) continue;
        AppExplanation accepted;
        accepted.whatItIs = c.whatItIs;
        accepted.category = AppExplanation::Category::other;
        accepted.limitAdvice = AppExplanation::LimitAdvice::caution;
        accepted.confidence = AppExplanation::Confidence::generated;
        accepted.source = AppExplanation::Source::cloud;
        EXPECT_EQ(explanation, accepted);
    }
}

TEST_F(FetcherReplies, manifests)
{
    struct Case {
        const char* name;
        const char* body;
        std::optional<UpdateManifest> manifest;
    };
    const Case cases[] = {
        {"the least", R"({"latestVersion":"1.3","downloadURL":"https://a.example/"})",
         UpdateManifest{"1.3", "https://a.example/", {}, {}}},
        {"everything, and more",
         R"({"latestVersion":"1.3","downloadURL":"b","releaseNotesURL":"c","minimumSystemVersion":"15.0","size":5})",
         UpdateManifest{"1.3", "b", "c", "15.0"}},
        {"texts that are none of their kind", R"({"latestVersion":"","downloadURL":""})",
         UpdateManifest{"", "", {}, {}}},
        {"no version", R"({"downloadURL":"https://a.example/"})", std::nullopt},
        {"no address", R"({"latestVersion":"1.3"})", std::nullopt},
        {"a version that is a number", R"({"latestVersion":1.3,"downloadURL":"https://a.example/"})", std::nullopt},
        {"notes of a wrong type", R"({"latestVersion":"1.3","downloadURL":"b","releaseNotesURL":5})", std::nullopt},
        {"nothing", "{}", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        server().reply("/", {{ok(c.body)}});
        EXPECT_EQ(fetchManifest(server().url("/")),
                  expected("update/manifest", c.manifest ? "accepted" : "malformedPayload", 200,
                           std::string_view{c.body}.size()));
        EXPECT_EQ(manifest, c.manifest);
    }
}

} // namespace
} // namespace quellon
