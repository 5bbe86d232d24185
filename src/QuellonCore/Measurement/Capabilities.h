#pragma once

#include "QuellonCore/Host/ProcessControl.h"
#include "QuellonCore/Measurement/AppEdition.h"

#include <optional>
#include <string_view>

namespace quellon {

/// What this process may do. Decided once, when the engine is made.
struct Capabilities {
    AppEdition edition = currentEdition;
    bool sandboxed = false;
    bool canSampleTraffic = true; ///< The tools that read traffic and processes may be run.
    /// Signals may be sent to other processes. Follows from the edition and the sandbox unless it is given.
    bool canEnforce = edition == AppEdition::pro && !sandboxed;

    /// The environment key whose presence, with any value, tells of the sandbox.
    static constexpr std::string_view sandboxEnvironmentKey = "APP_SANDBOX_CONTAINER_ID";

    /// What a process of this edition may do, by its environment. The App Store edition may do nothing anywhere.
    [[nodiscard]] static Capabilities detect(AppEdition edition, const ProcessControl& processes);

    /// Why no traffic is sampled, for people; absent when it can be.
    [[nodiscard]] std::optional<std::string_view> samplingBlockedReason() const;

    /// Why nothing is enforced, for people; absent when it can be, and for an unsandboxed `pro` in any case.
    [[nodiscard]] std::optional<std::string_view> enforcementBlockedReason() const;

    bool operator==(const Capabilities&) const = default;
};

} // namespace quellon
