#include "QuellonCore/Notifications/NotificationBatcher.h"

#include <algorithm>
#include <utility>

namespace quellon {

std::optional<std::vector<RuleBreach>> NotificationBatcher::offer(std::vector<RuleBreach> breaches, Date now)
{
    if (!breaches.empty() && !firstSeenAt_) firstSeenAt_ = now;
    for (RuleBreach& breach : breaches) add(std::move(breach));
    if (!firstSeenAt_ || now - *firstSeenAt_ < window_) return std::nullopt;
    return flush(); // never empty: what opened the batch is in it
}

std::vector<RuleBreach> NotificationBatcher::flush()
{
    firstSeenAt_.reset();
    return std::exchange(pending_, {});
}

void NotificationBatcher::add(RuleBreach&& breach)
{
    const auto held = std::ranges::find(pending_, breach.app, &RuleBreach::app);
    if (held == pending_.end())
        pending_.push_back(std::move(breach));
    else if (held->level() < breach.level())
        *held = std::move(breach);
}

} // namespace quellon
