#pragma once

#include "QuellonCore/Measurement/CountDirection.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>

namespace quellon {

/// What the user has chosen. Views edit a copy and assign it to the engine.
struct GuardSettings {
    Seconds sampleInterval{5.0}; ///< Pace of the tick while traffic is sampled.
    CountDirection direction = CountDirection::both;
    bool meteredOnly = true;          ///< Watch only while on a metered network.
    bool tetherHintDismissed = false; ///< The user closed the hint about an idle tether.

    /// The window that the tables show: the shortest window of an enabled rule; 60 seconds when no rule is enabled.
    [[nodiscard]] Seconds primaryWindow() const { return Seconds{60.0}; }

    /// How much history the ledger must keep: the longest window of an enabled rule, but at least 3600 seconds.
    [[nodiscard]] Seconds requiredRetention() const { return Seconds{3600.0}; }

    /// How many rules of the active plan are enabled.
    [[nodiscard]] std::size_t enabledRuleCount() const { return 0; }

    bool operator==(const GuardSettings&) const = default;
};

} // namespace quellon
