#pragma once

#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What shows that the guard works although it mostly does nothing: how long it has guarded, the largest use of late,
/// and how often it has reacted.
struct LivenessStats {
    /// The largest use that was seen in a rule's window.
    struct Peak {
        std::string app;
        std::uint64_t bytes = 0;
        std::string windowLabel; ///< The rule's `windowLabel`.
        Date at;                 ///< When it was seen.

        /// All four keys are required.
        [[nodiscard]] static std::optional<Peak> fromJson(const Json& json);
        [[nodiscard]] Json toJson() const;

        bool operator==(const Peak&) const = default;
    };

    /// How long a peak counts: 7 days.
    static constexpr Seconds peakAge{604'800.0};
    /// From this long between two ticks on the time between them was not guarded: the machine slept, or the guard
    /// stood still.
    static constexpr Seconds shortestBreak{120.0};

    double totalGuardedSeconds = 0.0; ///< The time between ticks, summed up.
    std::vector<Peak> recentPeaks;    ///< One per window label, in the order in which the labels first appeared.
    std::int64_t triggerCount = 0;    ///< How often the guard has reacted, ever.
    std::optional<Date> lastTriggerAt;

    /// Adds the time since the tick before, when there was one and the time between was neither a break nor negative.
    void recordGuardedTime(std::optional<Date> lastTickAt, Date now);

    /// Counts a reaction of the guard.
    void recordTrigger(Date at);

    /// Makes this the peak of its window when it is larger than the one there, and forgets the peaks of more than 7
    /// days ago. 0 bytes do nothing.
    void record(std::string_view app, std::uint64_t bytes, std::string_view windowLabel, Date at);

    /// The peak of this window; absent when there is none, or when it is more than 7 days old.
    [[nodiscard]] std::optional<Peak> peak(std::string_view windowLabel, Date now) const;

    /// The guarded time in its two largest units: "2d 5h", "3h 12m" or "4m". Ends the program when it is no number, or
    /// does not fit a signed 64-bit number, which no file can bring about.
    [[nodiscard]] std::string guardedDurationText() const;

    /// "never triggered", or "3 times"; "1 times" for once.
    [[nodiscard]] std::string triggerSummary() const;

    /// A missing key leaves the default above. Absent also when `totalGuardedSeconds` has no `guardedDurationText`.
    [[nodiscard]] static std::optional<LivenessStats> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const LivenessStats&) const = default;
};

} // namespace quellon
