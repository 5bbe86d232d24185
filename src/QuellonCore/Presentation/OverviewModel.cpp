#include "QuellonCore/Presentation/OverviewModel.h"

#include "QuellonCore/Presentation/EngineNotices.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Rules/GuardRule.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

namespace quellon {

namespace {

constexpr Seconds minute{60.0};

std::string shareText(double share)
{
    const double percent = std::round(share * 100.0);
    if (share > 0.0 && percent < 1.0) return "<1%";
    return fmt::format("{:.0f}%", percent);
}

std::optional<std::string> counters(const GuardEngine& engine)
{
    const auto& reading = engine.interfaceCounter();
    if (!reading) return std::nullopt;
    return fmt::format("↓ {}  ↑ {}", MenuPresentation::format(reading->inBytes),
                       MenuPresentation::format(reading->outBytes));
}

std::optional<std::string> warning(const GuardEngine& engine, const Calendar& calendar)
{
    const auto failedAt = EngineNotices::sampleFailure(engine);
    if (!failedAt) return std::nullopt;
    return fmt::format("Couldn't read per-app traffic at {} — retrying", calendar.clockTime(*failedAt));
}

std::string emptyText(const GuardEngine& engine)
{
    if (const auto reason = engine.capabilities().samplingBlockedReason()) return std::string{*reason};
    return std::string{EngineNotices::emptyText(engine)};
}

std::unordered_map<std::string, std::uint64_t> lastMinute(const GuardEngine& engine, Date now)
{
    // Where the tables show the last minute anyway, both columns come from the one list, so that they can't differ by
    // the moments between the tick and now.
    const auto totals =
        engine.settings().primaryWindow() == minute ? engine.usage() : engine.ledger().totals(minute, now);
    std::unordered_map<std::string, std::uint64_t> result;
    for (const AppUsage& each : totals) result.emplace(each.app, each.bytes);
    return result;
}

std::vector<OverviewModel::Row> rows(const GuardEngine& engine, Date now)
{
    double sum = 0.0;
    for (const AppUsage& each : engine.usage()) sum += static_cast<double>(each.bytes);
    const auto recent = lastMinute(engine, now);
    std::vector<OverviewModel::Row> result;
    result.reserve(engine.usage().size());
    for (const AppUsage& each : engine.usage()) {
        const double share = sum > 0.0 ? static_cast<double>(each.bytes) / sum : 0.0;
        const auto found = recent.find(each.app);
        result.push_back({plainText(each.app), MenuPresentation::format(each.bytes),
                          MenuPresentation::format(found == recent.end() ? 0 : found->second), share,
                          shareText(share)});
    }
    return result;
}

} // namespace

OverviewModel OverviewModel::of(const GuardEngine& engine, Date now)
{
    const Calendar calendar = engine.host().clock.calendar();
    const bool isRunning = engine.isRunning();
    const bool isMetered = engine.status().isMetered;
    const bool meteredOnly = engine.settings().meteredOnly;
    return {
        .tone = MenuPresentation::tone(isRunning, isMetered, meteredOnly),
        .title = std::string{MenuPresentation::statusTitle(isRunning, isMetered, meteredOnly)},
        .detail = plainText(engine.status().detail),
        .interface = EngineNotices::displayName(engine, engine.status().interface),
        .counters = quellon::counters(engine),
        .warning = quellon::warning(engine, calendar),
        .hint = EngineNotices::tetherSentence(engine),
        .windowHeading = fmt::format("{} window", windowLabel(engine.settings().primaryWindow())),
        .emptyText = quellon::emptyText(engine),
        .rows = quellon::rows(engine, now),
        .log = logOf(engine),
    };
}

std::vector<OverviewModel::LogLine> OverviewModel::logOf(const GuardEngine& engine)
{
    const Calendar calendar = engine.host().clock.calendar();
    std::vector<LogLine> result;
    result.reserve(engine.events().size());
    for (const GuardEvent& each : engine.events()) {
        result.push_back({each.id, calendar.clockTime(each.at), each.kind, plainText(each.message)});
    }
    return result;
}

} // namespace quellon
