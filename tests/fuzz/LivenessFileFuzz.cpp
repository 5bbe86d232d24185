#include "QuellonCore/Presentation/LivenessStats.h"
#include "StateFile.h"

namespace {

using namespace quellon;

void useLiveness(const LivenessStats& read)
{
    FUZZ_CHECK(!read.guardedDurationText().empty());
    FUZZ_CHECK(!read.triggerSummary().empty());
    LivenessStats stats = read;
    for (const auto& peak : read.recentPeaks) {
        for (const Date now : {peak.at, peak.at + LivenessStats::peakAge, Date{}, Date{Seconds{1e300}}}) {
            const auto found = read.peak(peak.windowLabel, now);
            FUZZ_CHECK(!found || found->windowLabel == peak.windowLabel);
            stats.record("new", peak.bytes, peak.windowLabel, now);
        }
    }
    stats.recordTrigger(Date{});
    FUZZ_CHECK(stats.lastTriggerAt == Date{});
    FUZZ_CHECK(!stats.triggerSummary().empty());
    stats.recordGuardedTime(Date{}, Date{Seconds{5.0}});
    FUZZ_CHECK(stats.totalGuardedSeconds >= read.totalGuardedSeconds);
    FUZZ_CHECK(!stats.guardedDurationText().empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    quellon::fuzz::checkStateFile(data, size, quellon::fromJson<quellon::LivenessStats>, useLiveness);
    return 0;
}
