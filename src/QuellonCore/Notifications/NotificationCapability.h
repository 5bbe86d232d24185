#pragma once

#include <optional>
#include <string_view>

namespace quellon {

/// Whether warnings can reach the user.
struct NotificationCapability {
    bool authorized = true;            ///< The user allowed notifications.
    bool alertsEnabled = true;         ///< Alerts are in fact shown for this program.
    bool inAppChannelAvailable = true; ///< The program can show warnings of its own on the screen.

    /// Why nothing is done automatically, for people; absent when a warning can reach the user by some channel.
    [[nodiscard]] std::optional<std::string_view> blockedReason() const;

    /// What is to be said about the system's notifications, for people; absent when they work.
    [[nodiscard]] std::optional<std::string_view> systemNotificationNote() const;

    bool operator==(const NotificationCapability&) const = default;
};

} // namespace quellon
