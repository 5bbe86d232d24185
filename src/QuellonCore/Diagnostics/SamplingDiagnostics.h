#pragma once

#include "QuellonCore/Support/EnumTable.h"
#include "QuellonCore/Support/Time.h"

#include <cstdint>
#include <optional>

namespace quellon {

/// How the guard's own ticks are doing.
struct SamplingDiagnostics {
    enum class Verdict {
        unknown, ///< No tick has ended yet.
        healthy,
        slow,        ///< The last tick took `slowTick` or longer.
        overlapping, ///< The last tick took as long as the time to the next one, so that ticks are skipped.
    };

    /// A tick of this length or more is slow.
    static constexpr Seconds slowTick{1.0};

    std::optional<Seconds> lastDurationSeconds;
    Seconds maxDurationSeconds{0.0};
    std::int64_t completedTicks = 0;
    std::int64_t skippedTicks = 0;
    std::optional<Date> lastCompletedAt;
    std::optional<Date> lastSkippedAt;

    /// Notes a tick that ended `at` after `duration`.
    void recordCompleted(Seconds duration, Date at);

    /// Notes a tick that was dropped `at` because the one before still ran.
    void recordSkipped(Date at);

    /// Skipped ticks as a share of all ticks, 0 to 1; 0 before the first.
    [[nodiscard]] double skipRate() const;

    /// The judgement on the last tick that ended, with `sampleInterval` between ticks.
    [[nodiscard]] Verdict verdict(Seconds sampleInterval) const;

    bool operator==(const SamplingDiagnostics&) const = default;
};

inline constexpr EnumTable<SamplingDiagnostics::Verdict, 4> samplingVerdicts{{{
    {SamplingDiagnostics::Verdict::unknown, "unknown", "Not known yet"},
    {SamplingDiagnostics::Verdict::healthy, "healthy", "Healthy"},
    {SamplingDiagnostics::Verdict::slow, "slow", "Slow"},
    {SamplingDiagnostics::Verdict::overlapping, "overlapping", "Overlapping"},
}}};

constexpr const auto& enumTable(SamplingDiagnostics::Verdict /*type*/)
{
    return samplingVerdicts;
}

} // namespace quellon
