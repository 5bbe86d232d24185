#include "QuellonCore/Diagnostics/SamplingDiagnostics.h"

#include <algorithm>

namespace quellon {

void SamplingDiagnostics::recordCompleted(Seconds duration, Date at)
{
    lastDurationSeconds = duration;
    maxDurationSeconds = std::max(maxDurationSeconds, duration);
    ++completedTicks;
    lastCompletedAt = at;
}

void SamplingDiagnostics::recordSkipped(Date at)
{
    ++skippedTicks;
    lastSkippedAt = at;
}

double SamplingDiagnostics::skipRate() const
{
    const std::int64_t ticks = completedTicks + skippedTicks;
    return ticks < 1 ? 0.0 : static_cast<double>(skippedTicks) / static_cast<double>(ticks);
}

SamplingDiagnostics::Verdict SamplingDiagnostics::verdict(Seconds sampleInterval) const
{
    if (!lastDurationSeconds) return Verdict::unknown;
    if (*lastDurationSeconds >= sampleInterval) return Verdict::overlapping;
    return *lastDurationSeconds >= slowTick ? Verdict::slow : Verdict::healthy;
}

} // namespace quellon
