#pragma once

#include "QuellonCore/Enforcement/EnforcementHistory.h"
#include "QuellonCore/Rules/AppPolicy.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// What the guard has done to one application lately, and what it will do next.
struct AppActionSummary {
    std::size_t enforcementCount = 0;                     ///< How often it stepped in within the window of the history.
    std::uint64_t wastedBytesFloor = 0;                   ///< The bytes of these records: the least that was spent.
    std::size_t askCount = 0;                             ///< How often it asked within the same window.
    std::uint64_t askedBytesFloor = 0;                    ///< The bytes of these records.
    std::optional<EnforcementHistory::Record> lastRecord; ///< The last one of stepping in.
    bool loopBreakerActive = false;                       ///< It stepped in more than once.
    std::optional<std::string> protectedReason;           ///< Why the application may not be touched.
    AppPolicy policy = AppPolicy::global;
    bool isChronic = false; ///< Slow but steady.
    std::optional<Date> snoozedUntil;
    bool isSuspended = false; ///< The guard holds it frozen now.
    bool allowedUntilTransferEnds = false;
    std::optional<Date> mutedUntil; ///< No asking before.

    /// What the history tells of the application with this label; the other fields are as above, for the caller to
    /// fill.
    [[nodiscard]] static AppActionSummary of(std::string_view app, const EnforcementHistory& history, Date now);

    bool operator==(const AppActionSummary&) const = default;
};

} // namespace quellon
