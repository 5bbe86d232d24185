#include "QuellonCore/UpdateCheck/UpdateChecker.h"

#include "QuellonCore/Support/Endpoints.h"
#include "QuellonCore/UpdateCheck/AppVersion.h"

#include <fmt/format.h>

#include <utility>

namespace quellon {

void UpdateChecker::check(UpdateCheckConsent consent, std::optional<Date> lastCheckedAt, std::string currentVersion,
                          std::optional<std::string> systemVersion, Date now, Done done) const
{
    if (!UpdateCheckPolicy::shouldCheck(consent, lastCheckedAt, now)) {
        done(UpdateCheckResult::skipped());
        return;
    }
    fetcher->fetchManifest(manifestURL, [currentVersion = std::move(currentVersion),
                                         systemVersion = std::move(systemVersion), now,
                                         done = std::move(done)](const UpdateManifestFetching::Result& result) {
        const auto* manifest = std::get_if<UpdateManifest>(&result);
        done({manifest != nullptr ? UpdateCheckPolicy::outcome(currentVersion, *manifest, systemVersion)
                                  : UpdateCheckOutcome{},
              now});
    });
}

std::string UpdateChecker::manifestURLFor(std::string_view currentVersion)
{
    const auto version = AppVersion::parse(currentVersion);
    return version ? fmt::format("{}/quellon/appcast/{}.json", Endpoints::updates, version->text())
                   : fallbackManifestURL();
}

std::string UpdateChecker::fallbackManifestURL()
{
    return fmt::format("{}/quellon/appcast.json", Endpoints::updates);
}

std::string UpdateChecker::userAgent(std::string_view version, std::string_view systemName,
                                     std::string_view systemVersion)
{
    return fmt::format("Quellon/{} ({} {})", version, systemName, systemVersion);
}

} // namespace quellon
