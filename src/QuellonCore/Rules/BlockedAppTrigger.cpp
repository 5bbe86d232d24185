#include "QuellonCore/Rules/BlockedAppTrigger.h"

#include <fmt/format.h>

namespace quellon::BlockedAppTrigger {

std::string floorDescription()
{
    return fmt::format("{} KB", floorBytes / 1024);
}

std::uint64_t usage(std::string_view of, const UsageLedger& in, Date at)
{
    return in.total(of, windowSeconds, at);
}

Date muteDeadline(Date after, const Calendar& calendar)
{
    constexpr Seconds day{86'400.0};
    const Date start = calendar.startOfDay(after);
    // A day that begins at one o'clock, for want of a midnight, is followed by one that begins at midnight.
    const auto next = calendar.addingDays(start, 1);
    return next ? calendar.startOfDay(*next) : start + day;
}

void TransferWatcher::allow(std::string_view app, Date at)
{
    allowances_.insert_or_assign(std::string{app}, Allowance{std::nullopt, at});
}

void TransferWatcher::cancel(std::string_view app)
{
    if (const auto found = allowances_.find(app); found != allowances_.end()) allowances_.erase(found);
}

bool TransferWatcher::isAllowing(std::string_view app) const
{
    return allowances_.contains(app);
}

bool TransferWatcher::stillAllowed(std::string_view app, std::uint64_t movingBytes, Date at)
{
    const auto found = allowances_.find(app);
    if (found == allowances_.end()) return false;

    Allowance& allowance = found->second;
    bool hasEnded = at - allowance.lastObservedAt > quietSeconds;
    allowance.lastObservedAt = at;
    if (isTriggered(movingBytes))
        allowance.quietSince.reset();
    else if (!allowance.quietSince)
        allowance.quietSince = at;
    else
        hasEnded = hasEnded || at - *allowance.quietSince >= quietSeconds;

    if (hasEnded) allowances_.erase(found);
    return !hasEnded;
}

} // namespace quellon::BlockedAppTrigger
