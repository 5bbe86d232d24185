#include "QuellonCore/Knowledge/NetworkExplanationFetcher.h"

#include "QuellonCore/Support/Endpoints.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

namespace quellon {

namespace {

using Result = ExplanationFetching::Result;
using Kind = ExplainError::Kind;

std::optional<ExplainError> statusError(int status)
{
    constexpr int isNotHttp = 0;
    if (status == 200 || status == isNotHttp) return std::nullopt;
    if (status == 429 || status == 503) return ExplainError{Kind::unavailable};
    return ExplainError{Kind::badStatus, status};
}

/// All that is read of a reply.
constexpr std::string_view members[] = {"recognized",  "whatItIs",  "whyTraffic", "category", "vendor",
                                        "limitAdvice", "limitNote", "confidence", "source"};

Result read(const std::optional<HttpResponse>& response)
{
    if (!response) return ExplainError{Kind::transport};
    if (const auto error = statusError(response->status)) return *error;
    if (response->body.size() > NetworkExplanationFetcher::maximumPayloadBytes)
        return ExplainError{Kind::malformedPayload};
    const auto json = parseJsonMembers(response->body, members);
    const auto flag = json ? fromJson<NetworkExplanationFetcher::RecognitionFlag>(*json) : std::nullopt;
    auto explanation = flag ? fromJson<AppExplanation>(*json) : std::nullopt;
    if (!explanation || explanation->whatItIs.empty()) return ExplainError{Kind::malformedPayload};
    if (!flag->recognized.value_or(false)) return ExplainError{Kind::unrecognized};
    explanation->confidence = AppExplanation::Confidence::generated;
    explanation->source = AppExplanation::Source::cloud;
    return *std::move(explanation);
}

} // namespace

std::optional<NetworkExplanationFetcher::RecognitionFlag>
NetworkExplanationFetcher::RecognitionFlag::fromJson(const Json& json)
{
    JsonFields fields{json};
    RecognitionFlag flag;
    fields.defaulted("recognized", flag.recognized);
    return fields.result(flag);
}

std::string NetworkExplanationFetcher::endpoint()
{
    return fmt::format("{}/v1/explain", Endpoints::lookup);
}

NetworkExplanationFetcher::NetworkExplanationFetcher(Host host, std::string userAgent, std::string endpoint,
                                                     NetworkLog& log)
    : host_{std::move(host)}, userAgent_{std::move(userAgent)}, endpoint_{std::move(endpoint)}, log_{log}
{
}

void NetworkExplanationFetcher::fetchExplanation(const std::string& label, Done done)
{
    auto body = dumpJson(Json{{"label", label}});
    if (!body) {
        host_.runLoop.post([done = std::move(done)] { done(ExplainError{Kind::transport}); });
        return;
    }
    const Date startedAt = host_.clock.now();
    HttpRequest request{
        "POST",           endpoint_,      {{"User-Agent", userAgent_}, {"Content-Type", "application/json"}},
        *std::move(body), timeoutSeconds, maximumPayloadBytes};
    host_.http.send(std::move(request), [host = host_, &log = log_, startedAt,
                                         done = std::move(done)](const std::optional<HttpResponse>& response) {
        log.record(NetworkLogEntry::make(host.identifiers.next(), NetworkLogEntry::Service::explain,
                                         NetworkLogEntry::Action::explain, response, startedAt, host.clock.now()));
        done(read(response));
    });
}

} // namespace quellon
