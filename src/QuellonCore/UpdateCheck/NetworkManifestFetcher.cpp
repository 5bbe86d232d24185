#include "QuellonCore/UpdateCheck/NetworkManifestFetcher.h"

#include <string_view>
#include <utility>

namespace quellon {

namespace {

using Result = UpdateManifestFetching::Result;
using Kind = UpdateCheckError::Kind;

/// All that is read of a reply.
constexpr std::string_view members[] = {"latestVersion", "downloadURL", "releaseNotesURL", "minimumSystemVersion"};

Result read(const std::optional<HttpResponse>& response)
{
    constexpr int isNotHttp = 0;
    if (!response) return UpdateCheckError{Kind::transport};
    if (response->status != 200 && response->status != isNotHttp)
        return UpdateCheckError{Kind::badStatus, response->status};
    if (response->body.size() > NetworkManifestFetcher::maximumPayloadBytes)
        return UpdateCheckError{Kind::malformedPayload};
    const auto json = parseJsonMembers(response->body, members);
    auto manifest = json ? fromJson<UpdateManifest>(*json) : std::nullopt;
    if (!manifest) return UpdateCheckError{Kind::malformedPayload};
    return *std::move(manifest);
}

} // namespace

NetworkManifestFetcher::NetworkManifestFetcher(Host host, std::string userAgent, NetworkLog& log)
    : host_{std::move(host)}, userAgent_{std::move(userAgent)}, log_{log}
{
}

void NetworkManifestFetcher::fetchManifest(const std::string& url, Done done)
{
    const Date startedAt = host_.clock.now();
    const HttpRequest request{"GET", url, {{"User-Agent", userAgent_}}, {}, timeoutSeconds, maximumPayloadBytes};
    host_.http.send(request, [host = host_, &log = log_, startedAt,
                              done = std::move(done)](const std::optional<HttpResponse>& response) {
        log.record(NetworkLogEntry::make(host.identifiers.next(), NetworkLogEntry::Service::update,
                                         NetworkLogEntry::Action::manifest, response, startedAt, host.clock.now()));
        done(read(response));
    });
}

} // namespace quellon
