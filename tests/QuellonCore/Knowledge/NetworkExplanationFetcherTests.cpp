#include "QuellonCore/Knowledge/NetworkExplanationFetcher.h"

#include "QuellonCore/Knowledge/ExplainPolicy.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Kind = ExplainError::Kind;
using Result = ExplanationFetching::Result;

/// The service of a scripted world, asked about "Sync".
struct Service {
    ScriptedHost host;
    NetworkLog log;
    std::optional<Result> result;

    Result ask(ScriptedReply reply, const std::string& label = "Sync")
    {
        host.http().reply = std::move(reply);
        NetworkExplanationFetcher fetcher{host.host(), "Quellon/1.2.0 (macOS 14.5.0)",
                                          "https://lookup.example/v1/explain", log};
        fetcher.fetchExplanation(label, [this](const Result& each) { result = each; });
        EXPECT_FALSE(result) << "answers come in a later turn";
        host.advance(20s);
        return result.value_or(ExplainError{Kind::badStatus, -1});
    }
    Result ask(int status, std::string body) { return ask({HttpResponse{status, std::move(body)}, 0s}); }
};

TEST(NetworkExplanationFetcher, sendsTheNameAndNothingElse)
{
    Service service;
    service.ask(200, "{}");
    const HttpRequest expected{"POST",
                               "https://lookup.example/v1/explain",
                               {{"User-Agent", "Quellon/1.2.0 (macOS 14.5.0)"}, {"Content-Type", "application/json"}},
                               R"({"label":"Sync"})",
                               15s,
                               65'536};
    ASSERT_EQ(service.host.http().requests.size(), 1U);
    EXPECT_EQ(service.host.http().requests.front(), expected);
}

TEST(NetworkExplanationFetcher, aNameIsWrittenAsJSON)
{
    Service service;
    service.ask({HttpResponse{200, "{}"}, 0s}, "同步\"\n");
    EXPECT_EQ(service.host.http().requests.front().body, R"({"label":"同步\"\n"})");
}

TEST(NetworkExplanationFetcher, aNameThatIsNotUTF8IsNotSent)
{
    Service service;
    EXPECT_EQ(service.ask({HttpResponse{200, "{}"}, 0s}, "\xFF"), Result{ExplainError{Kind::transport}});
    EXPECT_TRUE(service.host.http().requests.empty());
    EXPECT_TRUE(service.log.snapshot().empty());
}

TEST(NetworkExplanationFetcher, acceptsAReply)
{
    Service service;
    const auto result = service.ask(200, R"({"recognized":true,"whatItIs":"x"})");
    const auto* explanation = std::get_if<AppExplanation>(&result);
    ASSERT_NE(explanation, nullptr);
    AppExplanation expected;
    expected.whatItIs = "x";
    expected.category = AppExplanation::Category::other;
    expected.limitAdvice = AppExplanation::LimitAdvice::caution;
    expected.confidence = AppExplanation::Confidence::generated;
    expected.source = AppExplanation::Source::cloud;
    EXPECT_EQ(*explanation, expected);
}

TEST(NetworkExplanationFetcher, takesEveryFieldButTheTwoThatAreItsOwn)
{
    Service service;
    const auto result = service.ask(
        200, R"({"recognized":true,"whatItIs":"x","whyTraffic":"y","category":"updater","vendor":"v",)"
             R"("limitAdvice":"safe","limitNote":"n","confidence":"reviewed","source":"pack","price":[5]})");
    const auto* explanation = std::get_if<AppExplanation>(&result);
    ASSERT_NE(explanation, nullptr);
    EXPECT_EQ(explanation->whyTraffic, "y");
    EXPECT_EQ(explanation->category, AppExplanation::Category::updater);
    EXPECT_EQ(explanation->vendor, "v");
    EXPECT_EQ(explanation->limitAdvice, AppExplanation::LimitAdvice::safe);
    EXPECT_EQ(explanation->limitNote, "n");
    EXPECT_EQ(explanation->confidence, AppExplanation::Confidence::generated);
    EXPECT_EQ(explanation->source, AppExplanation::Source::cloud);
}

/// A reply that is accepted, of so many bytes.
std::string replyOfSize(std::size_t size)
{
    std::string reply = R"({"recognized":true,"whatItIs":"x","more":")";
    return reply.append(size - reply.size() - 2, 'x') + "\"}";
}

TEST(NetworkExplanationFetcher, failures)
{
    struct Case {
        const char* name;
        ScriptedReply reply;
        ExplainError error;
        std::optional<int> loggedStatus;
        std::size_t loggedBytes;
    };
    const auto says = [](int status, std::string body) { return ScriptedReply{HttpResponse{status, body}, 0s}; };
    const std::string good = R"({"recognized":true,"whatItIs":"x"})";
    const Case cases[] = {
        {"no reply", {std::nullopt, 0s}, {Kind::transport}, {}, 0},
        {"out of time", {HttpResponse{200, good}, 15001ms}, {Kind::transport}, {}, 0},
        {"busy", says(503, good), {Kind::unavailable}, 503, good.size()},
        {"asked too often", says(429, good), {Kind::unavailable}, 429, good.size()},
        {"broken", says(500, good), {Kind::badStatus, 500}, 500, good.size()},
        {"not found", says(404, "x"), {Kind::badStatus, 404}, 404, 1},
        {"no content", says(204, ""), {Kind::badStatus, 204}, 204, 0},
        {"too long", says(200, replyOfSize(65'537)), {Kind::malformedPayload}, 200, 65'537},
        {"far too long", says(200, replyOfSize(1'000'000)), {Kind::malformedPayload}, 200, 65'537},
        {"not JSON", says(200, "<html>"), {Kind::malformedPayload}, 200, 6},
        {"not an object", says(200, "[]"), {Kind::malformedPayload}, 200, 2},
        {"not UTF-8", says(200, "{\"recognized\":true,\"whatItIs\":\"\xFF\"}"), {Kind::malformedPayload}, 200, 34},
        {"empty", says(200, ""), {Kind::malformedPayload}, 200, 0},
        {"a flag that is no flag", says(200, R"({"recognized":1,"whatItIs":"x"})"), {Kind::malformedPayload}, 200, 31},
        {"a field of a wrong type",
         says(200, R"({"recognized":true,"whatItIs":5})"),
         {Kind::malformedPayload},
         200,
         32},
        {"recognized and not explained", says(200, R"({"recognized":true})"), {Kind::malformedPayload}, 200, 19},
        {"not recognized and not explained", says(200, R"({"recognized":false})"), {Kind::malformedPayload}, 200, 20},
        {"nothing at all", says(200, "{}"), {Kind::malformedPayload}, 200, 2},
        {"explained and not recognized",
         says(200, R"({"recognized":false,"whatItIs":"x"})"),
         {Kind::unrecognized},
         200,
         35},
        {"explained without the flag", says(200, R"({"whatItIs":"x"})"), {Kind::unrecognized}, 200, 16},
        {"not HTTP, and not JSON", says(0, "SSH-2.0"), {Kind::malformedPayload}, 0, 7},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Service service;
        EXPECT_EQ(service.ask(c.reply), Result{c.error});
        const auto entries = service.log.snapshot();
        ASSERT_EQ(entries.size(), 1U);
        EXPECT_EQ(entries.front().outcome.status, c.loggedStatus);
        EXPECT_EQ(entries.front().responseBytes, c.loggedBytes);
        EXPECT_EQ(entries.front().service, NetworkLogEntry::Service::explain);
        EXPECT_EQ(entries.front().action, NetworkLogEntry::Action::explain);
    }
}

TEST(NetworkExplanationFetcher, readsAReplyOfExactlyTheLimit)
{
    Service service;
    EXPECT_TRUE(std::holds_alternative<AppExplanation>(service.ask(200, replyOfSize(65'536))));
}

TEST(NetworkExplanationFetcher, aReplyThatIsNotHTTPIsReadAllTheSame)
{
    Service service;
    EXPECT_TRUE(std::holds_alternative<AppExplanation>(service.ask(0, R"({"recognized":true,"whatItIs":"x"})")));
    EXPECT_EQ(service.log.snapshot().front().outcome.status, 0);
}

TEST(NetworkExplanationFetcher, logsWhenAndHowLong)
{
    Service service;
    const Date began = service.host.now();
    service.ask({HttpResponse{200, "{}"}, 15s});
    ASSERT_EQ(service.log.snapshot().size(), 1U);
    EXPECT_EQ(service.log.snapshot().front().at, began + 15s);
    EXPECT_EQ(service.log.snapshot().front().durationSeconds, 15s);
}

TEST(ExplainError, messages)
{
    EXPECT_EQ(ExplainError{Kind::unavailable}.message(), "Lookup service is busy — try again later.");
    EXPECT_EQ(ExplainError{Kind::unrecognized}.message(), "The lookup service didn't recognize this name.");
    EXPECT_EQ((ExplainError{Kind::badStatus, 500}.message()), "Couldn't look this up right now.");
    EXPECT_EQ(ExplainError{Kind::transport}.message(), "Couldn't look this up right now.");
    EXPECT_EQ(ExplainError{Kind::malformedPayload}.message(), "Couldn't look this up right now.");
}

TEST(ExplainPolicy, shouldFetch)
{
    for (const auto& [consent, raw, label] : updateCheckConsents.rows) {
        for (const bool pack : {false, true}) {
            for (const bool cached : {false, true}) {
                for (const bool inFlight : {false, true}) {
                    SCOPED_TRACE(testing::Message() << raw << pack << cached << inFlight);
                    EXPECT_EQ(ExplainPolicy::shouldFetch(consent, pack, cached, inFlight),
                              consent == UpdateCheckConsent::granted && !(pack || cached || inFlight));
                }
            }
        }
    }
}

} // namespace
} // namespace quellon
