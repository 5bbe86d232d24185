#include "QuellonCore/UpdateCheck/UpdateCheckPolicy.h"

#include "QuellonCore/Support/WebAddress.h"
#include "QuellonCore/UpdateCheck/AppVersion.h"

namespace quellon::UpdateCheckPolicy {

namespace {

bool isSafeToOpen(std::string_view downloadURL)
{
    const auto address = WebAddress::parse(downloadURL);
    return address && address->scheme == "https" && !address->host.empty();
}

bool isTooOld(const std::optional<std::string>& systemVersion, const std::optional<std::string>& minimum)
{
    if (!systemVersion || !minimum) return false;
    const auto system = AppVersion::parse(*systemVersion);
    const auto least = AppVersion::parse(*minimum);
    return system && least && *system < *least;
}

} // namespace

bool shouldCheck(UpdateCheckConsent consent, std::optional<Date> lastCheckedAt, Date now)
{
    if (consent != UpdateCheckConsent::granted) return false;
    if (!lastCheckedAt) return true;
    const Seconds since = now - *lastCheckedAt;
    return since < Seconds{0.0} || since >= interval;
}

UpdateCheckOutcome outcome(std::string_view currentVersion, const UpdateManifest& manifest,
                           const std::optional<std::string>& systemVersion)
{
    using Kind = UpdateCheckOutcome::Kind;
    const auto current = AppVersion::parse(currentVersion);
    if (!current) return {Kind::upToDate};
    const auto latest = AppVersion::parse(manifest.latestVersion);
    if (!latest || !isSafeToOpen(manifest.downloadURL)) return {Kind::manifestUnreadable};
    if (*current >= *latest || isTooOld(systemVersion, manifest.minimumSystemVersion)) return {Kind::upToDate};
    return {Kind::updateAvailable, manifest.latestVersion, manifest.downloadURL};
}

} // namespace quellon::UpdateCheckPolicy
