#pragma once

#include "QuellonCore/Rules/ActionLevel.h"
#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"
#include "QuellonCore/Support/UUID.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quellon {

/// A window's length in its largest whole unit: "1h", "2min" or "61s". A fraction of a second is cut off. Ends the
/// program when the window is not finite, which no file can hold.
[[nodiscard]] std::string windowLabel(Seconds window);

/// An application that uses `thresholdBytes` or more within `windowSeconds` gets this response.
struct GuardRule {
    UUID id;
    Seconds windowSeconds{60.0};      ///< Length of the sliding window.
    std::uint64_t thresholdBytes = 0; ///< At this or above an application is in breach.
    ActionLevel level = ActionLevel::notify;
    bool enabled = true; ///< A disabled rule is skipped by everything.

    /// The length of the rule's window.
    [[nodiscard]] std::string windowLabel() const { return quellon::windowLabel(windowSeconds); }

    /// All five keys are required.
    [[nodiscard]] static std::optional<GuardRule> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const GuardRule&) const = default;
};

} // namespace quellon
