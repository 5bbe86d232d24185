#include "Exchange.h"
#include "QuellonCore/Knowledge/ExplanationCache.h"
#include "QuellonCore/Knowledge/NetworkExplanationFetcher.h"

#include <variant>

namespace {

using namespace quellon;
using Result = ExplanationFetching::Result;
using Kind = ExplainError::Kind;

Result fetch(int status, std::string_view body)
{
    static fuzz::Exchange exchange;
    static NetworkExplanationFetcher fetcher{exchange.host, "Fuzz/1", NetworkExplanationFetcher::endpoint(),
                                             exchange.log};
    return exchange.run<Result>(status, body, NetworkExplanationFetcher::maximumPayloadBytes,
                                [](auto done) { fetcher.fetchExplanation("Sync", std::move(done)); });
}

/// What was accepted says so, vouches for nothing, and comes back from the file that it is kept in.
void useExplanation(const AppExplanation& explanation, std::string_view body)
{
    FUZZ_CHECK(fuzz::contains(body, "recognized"));
    FUZZ_CHECK(!explanation.whatItIs.empty());
    FUZZ_CHECK(explanation.confidence == AppExplanation::Confidence::generated);
    FUZZ_CHECK(explanation.source == AppExplanation::Source::cloud);
    ExplanationCache cache;
    cache.store(explanation, "Sync", Date{Seconds{795'261'600.25}});
    const auto saved = encodeJson(cache);
    FUZZ_CHECK(saved.has_value());
    FUZZ_CHECK(decodeJson<ExplanationCache>(*saved) == cache);
    FUZZ_CHECK(cache.explanation("Sync") == explanation);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto body = fuzz::text(data, size);
    const Result result = fetch(200, body);
    if (const auto* explanation = std::get_if<AppExplanation>(&result)) {
        useExplanation(*explanation, body);
    } else {
        const auto kind = std::get<ExplainError>(result).kind;
        FUZZ_CHECK(kind == Kind::malformedPayload || kind == Kind::unrecognized);
    }
    FUZZ_CHECK(fetch(0, body) == result);
    FUZZ_CHECK(fetch(503, body) == Result{ExplainError{Kind::unavailable}});
    FUZZ_CHECK((fetch(500, body) == Result{ExplainError{Kind::badStatus, 500}}));
    return 0;
}
