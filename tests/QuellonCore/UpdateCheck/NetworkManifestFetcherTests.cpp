#include "QuellonCore/UpdateCheck/NetworkManifestFetcher.h"

#include "QuellonCore/UpdateCheck/UpdateChecker.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Kind = UpdateCheckError::Kind;
using Result = UpdateManifestFetching::Result;

constexpr const char* url = "https://updates.example/quellon/appcast/1.2.0.json";
const std::string good = R"({"latestVersion":"1.3","downloadURL":"https://quellon.example/"})";

/// The update host of a scripted world.
struct UpdateHost {
    ScriptedHost host;
    NetworkLog log;
    std::shared_ptr<NetworkManifestFetcher> fetcher =
        std::make_shared<NetworkManifestFetcher>(host.host(), "Quellon/1.2.0 (Linux 6.1.0)", log);
    std::optional<Result> result;

    Result ask(ScriptedReply reply)
    {
        host.http().reply = std::move(reply);
        fetcher->fetchManifest(url, [this](const Result& each) { result = each; });
        EXPECT_FALSE(result) << "answers come in a later turn";
        host.advance(20s);
        return result.value_or(UpdateCheckError{Kind::badStatus, -1});
    }
};

TEST(NetworkManifestFetcher, sendsWhatItIsAndNothingElse)
{
    UpdateHost updates;
    updates.ask({HttpResponse{200, good}, 0s});
    const HttpRequest expected{"GET", url, {{"User-Agent", "Quellon/1.2.0 (Linux 6.1.0)"}}, "", 10s, 65'536};
    ASSERT_EQ(updates.host.http().requests.size(), 1U);
    EXPECT_EQ(updates.host.http().requests.front(), expected);
}

TEST(NetworkManifestFetcher, readsTheManifest)
{
    UpdateHost updates;
    const Date began = updates.host.now();
    EXPECT_EQ(updates.ask({HttpResponse{200, good}, 10s}),
              (Result{UpdateManifest{"1.3", "https://quellon.example/", {}, {}}}));
    const auto entries = updates.log.snapshot();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries.front().service, NetworkLogEntry::Service::update);
    EXPECT_EQ(entries.front().action, NetworkLogEntry::Action::manifest);
    EXPECT_EQ(entries.front().outcome.status, 200);
    EXPECT_EQ(entries.front().responseBytes, good.size());
    EXPECT_EQ(entries.front().at, began + 10s);
    EXPECT_EQ(entries.front().durationSeconds, 10s);
}

/// A manifest of so many bytes.
std::string manifestOfSize(std::size_t size)
{
    std::string text = R"({"latestVersion":"1.3","downloadURL":"https://quellon.example/","more":")";
    return text.append(size - text.size() - 2, 'x') + "\"}";
}

TEST(NetworkManifestFetcher, replies)
{
    struct Case {
        const char* name;
        ScriptedReply reply;
        std::optional<UpdateCheckError> error; ///< Absent: the manifest is read.
        std::optional<int> loggedStatus;
        std::size_t loggedBytes;
    };
    const auto says = [](int status, std::string body) { return ScriptedReply{HttpResponse{status, body}, 0s}; };
    using Error = UpdateCheckError;
    const Case cases[] = {
        {"no reply", {std::nullopt, 0s}, Error{Kind::transport}, {}, 0},
        {"out of time", {HttpResponse{200, good}, 10001ms}, Error{Kind::transport}, {}, 0},
        {"not found", says(404, "x"), Error{Kind::badStatus, 404}, 404, 1},
        {"busy", says(503, good), Error{Kind::badStatus, 503}, 503, good.size()},
        {"not modified", says(304, ""), Error{Kind::badStatus, 304}, 304, 0},
        {"as long as it may be", says(200, manifestOfSize(65'536)), {}, 200, 65'536},
        {"too long", says(200, manifestOfSize(65'537)), Error{Kind::malformedPayload}, 200, 65'537},
        {"not JSON", says(200, "<html>"), Error{Kind::malformedPayload}, 200, 6},
        {"no version", says(200, "{}"), Error{Kind::malformedPayload}, 200, 2},
        {"not HTTP, but a manifest", says(0, good), {}, 0, good.size()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        UpdateHost updates;
        const auto result = updates.ask(c.reply);
        EXPECT_EQ(std::holds_alternative<UpdateManifest>(result), !c.error);
        if (c.error) { EXPECT_EQ(result, Result{*c.error}); }
        ASSERT_EQ(updates.log.snapshot().size(), 1U);
        EXPECT_EQ(updates.log.snapshot().front().outcome.status, c.loggedStatus);
        EXPECT_EQ(updates.log.snapshot().front().responseBytes, c.loggedBytes);
    }
}

/// The result of a check of version 1.2.0 with this consent, when the last one was `since` ago.
std::optional<UpdateCheckResult> check(UpdateHost& updates, UpdateCheckConsent consent, std::optional<Seconds> since,
                                       ScriptedReply reply)
{
    std::optional<UpdateCheckResult> result;
    const Date now = updates.host.now();
    updates.host.http().reply = std::move(reply);
    UpdateChecker{updates.fetcher, url}.check(consent, since ? std::optional{now - *since} : std::nullopt, "1.2.0",
                                              "6.1.0", now, [&](const UpdateCheckResult& each) { result = each; });
    updates.host.advance(20s);
    return result;
}

TEST(UpdateChecker, aCheckThatIsNotAllowedAsksNobody)
{
    for (const auto consent : {UpdateCheckConsent::unasked, UpdateCheckConsent::denied}) {
        UpdateHost updates;
        EXPECT_EQ(check(updates, consent, {}, {HttpResponse{200, good}, 0s}), UpdateCheckResult::skipped());
        EXPECT_TRUE(updates.host.http().requests.empty());
    }
    UpdateHost updates;
    EXPECT_EQ(check(updates, UpdateCheckConsent::granted, 86'399s, {HttpResponse{200, good}, 0s}),
              UpdateCheckResult::skipped());
    EXPECT_TRUE(updates.host.http().requests.empty());
}

TEST(UpdateChecker, skipped)
{
    EXPECT_EQ(UpdateCheckResult::skipped().outcome.kind, UpdateCheckOutcome::Kind::upToDate);
    EXPECT_EQ(UpdateCheckResult::skipped().checkedAt, std::nullopt);
}

TEST(UpdateChecker, tellsOfAnUpdate)
{
    UpdateHost updates;
    const Date now = updates.host.now();
    const UpdateCheckOutcome update{UpdateCheckOutcome::Kind::updateAvailable, "1.3", "https://quellon.example/"};
    EXPECT_EQ(check(updates, UpdateCheckConsent::granted, 86'400s, {HttpResponse{200, good}, 5s}),
              (UpdateCheckResult{update, now}));
    EXPECT_EQ(updates.host.http().requests.front().url, url);
}

TEST(UpdateChecker, everyFailureUsesUpTheDayInSilence)
{
    const ScriptedReply replies[] = {{std::nullopt, 0s}, {HttpResponse{404, ""}, 0s}, {HttpResponse{200, "x"}, 0s}};
    for (const auto& reply : replies) {
        UpdateHost updates;
        const Date now = updates.host.now();
        EXPECT_EQ(check(updates, UpdateCheckConsent::granted, {}, reply), (UpdateCheckResult{{}, now}));
    }
}

TEST(UpdateChecker, manifestURLs)
{
    EXPECT_EQ(UpdateChecker::manifestURLFor("1.2.0"), "https://updates.quellon.example/quellon/appcast/1.2.0.json");
    EXPECT_EQ(UpdateChecker::manifestURLFor(" 01.2\n"), "https://updates.quellon.example/quellon/appcast/1.2.json");
    EXPECT_EQ(UpdateChecker::manifestURLFor("dev"), "https://updates.quellon.example/quellon/appcast.json");
    EXPECT_EQ(UpdateChecker::fallbackManifestURL(), "https://updates.quellon.example/quellon/appcast.json");
}

TEST(UpdateChecker, userAgent)
{
    EXPECT_EQ(UpdateChecker::userAgent("1.2.0", "macOS", "14.5.0"), "Quellon/1.2.0 (macOS 14.5.0)");
    EXPECT_EQ(UpdateChecker::userAgent("1.2.0", "Linux", "6.1.0"), "Quellon/1.2.0 (Linux 6.1.0)");
}

} // namespace
} // namespace quellon
