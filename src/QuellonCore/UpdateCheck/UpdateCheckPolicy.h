#pragma once

#include "QuellonCore/Support/Time.h"
#include "QuellonCore/UpdateCheck/UpdateCheckConsent.h"
#include "QuellonCore/UpdateCheck/UpdateManifest.h"

#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// What a check found.
struct UpdateCheckOutcome {
    enum class Kind { updateAvailable, upToDate, manifestUnreadable };

    Kind kind = Kind::upToDate;
    std::string version{};     ///< Of an available update, as the manifest writes it.
    std::string downloadURL{}; ///< Of an available update; an "https" address.

    bool operator==(const UpdateCheckOutcome&) const = default;
};

/// When to look for a newer version, and what to make of the answer.
namespace UpdateCheckPolicy {

/// A check that reached for the network is followed by none for so long.
inline constexpr Seconds interval{86'400.0};

/// Whether to ask now: only with consent, and once per `interval`. A last check in the future counts as long ago, since
/// the clock was set back.
[[nodiscard]] bool shouldCheck(UpdateCheckConsent consent, std::optional<Date> lastCheckedAt, Date now);

/// What the manifest means for this version on this system. Silent (`upToDate`) when the own version can't be read and
/// when the system is too old for the newer one; a system version that can't be read does not stand in the way. A
/// download address that is not "https" with a host makes the manifest unreadable.
[[nodiscard]] UpdateCheckOutcome outcome(std::string_view currentVersion, const UpdateManifest& manifest,
                                         const std::optional<std::string>& systemVersion);

} // namespace UpdateCheckPolicy

} // namespace quellon
