#pragma once

#include "QuellonCore/Support/Time.h"
#include "QuellonCore/UpdateCheck/UpdateCheckConsent.h"
#include "QuellonCore/UpdateCheck/UpdateCheckPolicy.h"
#include "QuellonCore/UpdateCheck/UpdateManifestFetching.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// How a check ended.
struct UpdateCheckResult {
    UpdateCheckOutcome outcome;
    std::optional<Date> checkedAt; ///< Absent when nothing was asked.

    /// Of a check that the policy did not allow.
    [[nodiscard]] static UpdateCheckResult skipped() { return {}; }

    bool operator==(const UpdateCheckResult&) const = default;
};

/// Asks one manifest whether there is a newer version.
struct UpdateChecker {
    using Done = std::function<void(const UpdateCheckResult& result)>;

    std::shared_ptr<UpdateManifestFetching> fetcher;
    std::string manifestURL;

    /// Calls `done` once: within the call when the policy does not allow the check, otherwise in a later turn, unless
    /// the program ends first. A fetch that failed counts as a check that found nothing.
    void check(UpdateCheckConsent consent, std::optional<Date> lastCheckedAt, std::string currentVersion,
               std::optional<std::string> systemVersion, Date now, Done done) const;

    /// The manifest for this version; `fallbackManifestURL` for a version that can't be read.
    [[nodiscard]] static std::string manifestURLFor(std::string_view currentVersion);
    [[nodiscard]] static std::string fallbackManifestURL();

    /// The agent text of the program's requests, such as "Quellon/1.2.0 (Linux 6.1.0)".
    [[nodiscard]] static std::string userAgent(std::string_view version, std::string_view systemName,
                                               std::string_view systemVersion);
};

/// A newer version, and where to get it.
struct AvailableUpdate {
    std::string version;
    std::string downloadURL; ///< An "https" address.

    bool operator==(const AvailableUpdate&) const = default;
};

/// What the engine needs to check for updates.
struct UpdateCheckContext {
    UpdateChecker checker;
    std::string currentVersion;
    std::string systemVersion;
};

} // namespace quellon
