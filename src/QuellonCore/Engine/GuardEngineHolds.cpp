#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Rules/UserHold.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

std::optional<Date> entry(const GuardEngine::Dates& dates, std::string_view app)
{
    const auto found = dates.find(app);
    return found != dates.end() ? std::optional{found->second} : std::nullopt;
}

} // namespace

bool GuardEngine::isHeldByUser(std::string_view app, Date now) const
{
    return UserHold::isHeld(entry(snoozedUntil_, app), entry(settings_.mutedAsksUntil, app),
                            transferWatcher_.isAllowing(app), now);
}

void GuardEngine::allowUntilTransferEnds(std::string_view app, Date now)
{
    transferWatcher_.allow(app, now);
    append(GuardEvent::Kind::info, fmt::format("{} allowed until this transfer finishes", app));
}

void GuardEngine::resumeWatching(std::string_view app)
{
    if (!transferWatcher_.isAllowing(app)) return;
    transferWatcher_.cancel(app);
    append(GuardEvent::Kind::info, fmt::format("{} is being watched again", app));
}

Date GuardEngine::muteAsks(std::string_view app, Date now)
{
    const Date deadline = BlockedAppTrigger::muteDeadline(now, host_.clock.calendar());
    GuardSettings settings = settings_;
    settings.mutedAsksUntil.insert_or_assign(std::string{app}, deadline);
    setSettings(std::move(settings));
    append(GuardEvent::Kind::info, fmt::format("{} muted until midnight — its policy is unchanged", app));
    return deadline;
}

void GuardEngine::unmuteAsks(std::string_view app)
{
    GuardSettings settings = settings_;
    const auto mute = settings.mutedAsksUntil.find(app);
    const bool wasMuted = mute != settings.mutedAsksUntil.end();
    if (wasMuted) settings.mutedAsksUntil.erase(mute);
    setSettings(std::move(settings));
    if (wasMuted) append(GuardEvent::Kind::info, fmt::format("{} will be asked about again", app));
}

std::optional<Date> GuardEngine::muteDeadline(std::string_view app, Date now) const
{
    const auto deadline = entry(settings_.mutedAsksUntil, app);
    return deadline && *deadline > now ? deadline : std::nullopt;
}

void GuardEngine::expireMutes(Date now)
{
    const auto isOver = [now](const auto& each) { return !(each.second > now); };
    if (std::none_of(settings_.mutedAsksUntil.begin(), settings_.mutedAsksUntil.end(), isOver)) return;
    GuardSettings settings = settings_;
    std::erase_if(settings.mutedAsksUntil, isOver);
    setSettings(std::move(settings));
}

std::vector<AppUsage> GuardEngine::recentlySeenApps(std::size_t limit) const
{
    auto apps = ledger_.totals(ledger_.retentionSeconds(), host_.clock.now());
    if (apps.size() > limit) apps.resize(limit);
    return apps;
}

std::uint64_t GuardEngine::totalBytes(std::string_view app, Seconds window, Date at) const
{
    return ledger_.total(app, window, at);
}

AppActionSummary GuardEngine::actionSummary(std::string_view app, Date now) const
{
    auto summary = AppActionSummary::of(app, enforcementHistory_, now);
    summary.policy = settings_.appPolicies.policy(app);
    summary.isChronic = chronic_.contains(std::string{app});
    summary.snoozedUntil = entry(snoozedUntil_, app);
    summary.isSuspended =
        std::any_of(suspended_.begin(), suspended_.end(), [app](const SuspendedApp& each) { return each.app == app; });
    if (const auto reason = protectedReasons_.find(app); reason != protectedReasons_.end()) {
        summary.protectedReason = reason->second;
    }
    summary.allowedUntilTransferEnds = transferWatcher_.isAllowing(app);
    summary.mutedUntil = muteDeadline(app, now);
    return summary;
}

} // namespace quellon
