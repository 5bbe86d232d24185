#include "QuellonCore/Presentation/LivenessStats.h"

#include "QuellonCore/Support/Fatal.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace quellon {

namespace {

/// Whether `seconds` can be cut to a signed 64-bit number. False for what is no number.
bool isCountable(double seconds)
{
    constexpr double firstTooLarge = 9'223'372'036'854'775'808.0; // 2^63
    return seconds >= -firstTooLarge && seconds < firstTooLarge;
}

} // namespace

void LivenessStats::recordGuardedTime(std::optional<Date> lastTickAt, Date now)
{
    if (!lastTickAt) return;
    const Seconds elapsed = now - *lastTickAt;
    if (elapsed > Seconds{0.0} && elapsed < shortestBreak) totalGuardedSeconds += elapsed.count();
}

void LivenessStats::recordTrigger(Date at)
{
    if (triggerCount < std::numeric_limits<std::int64_t>::max()) ++triggerCount;
    lastTriggerAt = at;
}

void LivenessStats::record(std::string_view app, std::uint64_t bytes, std::string_view windowLabel, Date at)
{
    if (bytes == 0) return;
    std::erase_if(recentPeaks, [at](const Peak& each) { return each.at < at - peakAge; });

    const auto former = std::find_if(recentPeaks.begin(), recentPeaks.end(),
                                     [windowLabel](const Peak& each) { return each.windowLabel == windowLabel; });
    if (former == recentPeaks.end())
        recentPeaks.push_back({std::string{app}, bytes, std::string{windowLabel}, at});
    else if (bytes > former->bytes)
        *former = {std::string{app}, bytes, std::string{windowLabel}, at};
}

std::optional<LivenessStats::Peak> LivenessStats::peak(std::string_view windowLabel, Date now) const
{
    const auto found = std::find_if(recentPeaks.begin(), recentPeaks.end(), [windowLabel, now](const Peak& each) {
        return each.windowLabel == windowLabel && each.at >= now - peakAge;
    });
    return found != recentPeaks.end() ? std::optional{*found} : std::nullopt;
}

std::string LivenessStats::guardedDurationText() const
{
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 60 * minute;
    constexpr std::int64_t day = 24 * hour;
    if (!isCountable(totalGuardedSeconds)) fatal("guarded time is no number of seconds");
    const auto seconds = static_cast<std::int64_t>(totalGuardedSeconds);
    if (seconds >= day) return fmt::format("{}d {}h", seconds / day, seconds % day / hour);
    if (seconds >= hour) return fmt::format("{}h {}m", seconds / hour, seconds % hour / minute);
    return fmt::format("{}m", seconds / minute);
}

std::string LivenessStats::triggerSummary() const
{
    return triggerCount == 0 ? "never triggered" : fmt::format("{} times", triggerCount);
}

std::optional<LivenessStats::Peak> LivenessStats::Peak::fromJson(const Json& json)
{
    JsonFields fields{json};
    Peak peak;
    fields.required("app", peak.app);
    fields.required("bytes", peak.bytes);
    fields.required("windowLabel", peak.windowLabel);
    fields.required("at", peak.at);
    return fields.result(std::move(peak));
}

Json LivenessStats::Peak::toJson() const
{
    Json json = Json::object();
    putField(json, "app", app);
    putField(json, "bytes", bytes);
    putField(json, "windowLabel", windowLabel);
    putField(json, "at", at);
    return json;
}

std::optional<LivenessStats> LivenessStats::fromJson(const Json& json)
{
    JsonFields fields{json};
    LivenessStats stats;
    fields.defaulted("totalGuardedSeconds", stats.totalGuardedSeconds);
    fields.defaulted("recentPeaks", stats.recentPeaks);
    fields.defaulted("triggerCount", stats.triggerCount);
    fields.defaulted("lastTriggerAt", stats.lastTriggerAt);
    fields.require(isCountable(stats.totalGuardedSeconds));
    return fields.result(std::move(stats));
}

Json LivenessStats::toJson() const
{
    Json json = Json::object();
    putField(json, "totalGuardedSeconds", totalGuardedSeconds);
    putField(json, "recentPeaks", recentPeaks);
    putField(json, "triggerCount", triggerCount);
    putField(json, "lastTriggerAt", lastTriggerAt);
    return json;
}

} // namespace quellon
