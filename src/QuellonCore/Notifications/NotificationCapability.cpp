#include "QuellonCore/Notifications/NotificationCapability.h"

namespace quellon {

std::optional<std::string_view> NotificationCapability::blockedReason() const
{
    if ((authorized && alertsEnabled) || inAppChannelAvailable) return std::nullopt;
    return "Warnings can't reach you right now, so automatic action stays disabled.";
}

std::optional<std::string_view> NotificationCapability::systemNotificationNote() const
{
    if (authorized && alertsEnabled) return std::nullopt;
    return "System notifications are off. Warnings still appear on screen.";
}

} // namespace quellon
