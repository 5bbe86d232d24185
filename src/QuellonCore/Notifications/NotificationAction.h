#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// What a notification's button does.
enum class NotificationAction {
    snooze,
    suspend,
    allowlist,
    view,
    terminate,
    allowOnce,
    muteToday,
    resume,
    resumeAndSnooze,
    snoozeAll,
};

/// The labels are the titles of the buttons. That of `snooze` says 15 whatever the setting holds.
inline constexpr EnumTable<NotificationAction, 10> notificationActions{{{
    {NotificationAction::snooze, "snooze", "Snooze 15 min"},
    {NotificationAction::suspend, "suspend", "Pause"},
    {NotificationAction::allowlist, "allowlist", "Never limit"},
    {NotificationAction::view, "view", "Show details"},
    {NotificationAction::terminate, "terminate", "Stop it"},
    {NotificationAction::allowOnce, "allowOnce", "Allow until done"},
    {NotificationAction::muteToday, "muteToday", "Stop asking today"},
    {NotificationAction::resume, "resume", "Resume"},
    {NotificationAction::resumeAndSnooze, "resumeAndSnooze", "Resume + snooze"},
    {NotificationAction::snoozeAll, "snoozeAll", "Snooze all"},
}}};

constexpr const auto& enumTable(NotificationAction /*type*/)
{
    return notificationActions;
}

/// True for what stops an application from working.
[[nodiscard]] constexpr bool isDestructive(NotificationAction action)
{
    return action == NotificationAction::suspend || action == NotificationAction::terminate;
}

} // namespace quellon
