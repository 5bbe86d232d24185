#include "Exchange.h"
#include "QuellonCore/UpdateCheck/AppVersion.h"
#include "QuellonCore/UpdateCheck/NetworkManifestFetcher.h"
#include "QuellonCore/UpdateCheck/UpdateCheckPolicy.h"

#include <algorithm>
#include <variant>

namespace {

using namespace quellon;
using Result = UpdateManifestFetching::Result;
using Kind = UpdateCheckOutcome::Kind;

Result fetch(int status, std::string_view body)
{
    static fuzz::Exchange exchange;
    static NetworkManifestFetcher fetcher{exchange.host, "Fuzz/1", exchange.log};
    return exchange.run<Result>(status, body, NetworkManifestFetcher::maximumPayloadBytes, [](auto done) {
        fetcher.fetchManifest("https://updates.quellon.example/quellon/appcast.json", std::move(done));
    });
}

/// A link that the user is shown leads to "https", and holds nothing that could be taken for something else.
void checkLink(std::string_view url)
{
    std::string scheme{url.substr(0, 8)};
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](char each) { return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each; });
    FUZZ_CHECK(scheme == "https://");
    FUZZ_CHECK(url.size() > 8 && !fuzz::contains("/?#", url.substr(8, 1)));
    for (const char each : url) FUZZ_CHECK(each > ' ' && each != '\x7F');
}

void useManifest(const UpdateManifest& manifest)
{
    const auto latest = AppVersion::parse(manifest.latestVersion);
    if (latest) { FUZZ_CHECK(AppVersion::parse(latest->text()) == latest); }
    const auto& least = manifest.minimumSystemVersion;
    for (const char* current : {"0", "1.2.0", "9223372036854775807", "none"}) {
        const auto outcome = UpdateCheckPolicy::outcome(current, manifest, std::nullopt);
        FUZZ_CHECK(UpdateCheckPolicy::outcome(current, manifest, "none") == outcome);
        const auto onOldSystem = UpdateCheckPolicy::outcome(current, manifest, "0");
        FUZZ_CHECK(onOldSystem == outcome || (onOldSystem == UpdateCheckOutcome{} && least));
        if (outcome.kind != Kind::updateAvailable) continue;
        FUZZ_CHECK(latest && AppVersion::parse(current) < latest);
        FUZZ_CHECK(outcome.version == manifest.latestVersion && outcome.downloadURL == manifest.downloadURL);
        checkLink(outcome.downloadURL);
    }
    FUZZ_CHECK(UpdateCheckPolicy::outcome("none", manifest, "1").kind == Kind::upToDate);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto body = fuzz::text(data, size);
    const Result result = fetch(200, body);
    if (const auto* manifest = std::get_if<UpdateManifest>(&result)) {
        FUZZ_CHECK(fuzz::contains(body, "{"));
        useManifest(*manifest);
    } else {
        FUZZ_CHECK(result == Result{UpdateCheckError{UpdateCheckError::Kind::malformedPayload}});
    }
    FUZZ_CHECK(fetch(0, body) == result);
    FUZZ_CHECK((fetch(404, body) == Result{UpdateCheckError{UpdateCheckError::Kind::badStatus, 404}}));
    return 0;
}
