#pragma once

namespace quellon {

/// Whether notifications may be shown. The numbers are those of macOS's user-notification service.
enum class NotificationAuthorization {
    notDetermined = 0, ///< Linux: the server can't be made out; it does not answer, or not in the agreed form.
    denied = 1,        ///< Linux: there is no server, and none that could be started.
    authorized = 2,    ///< Linux: a server is there and has told what it can.
    provisional = 3,   ///< Linux: no server runs, but the first notification starts one.
};

/// Whether notifications appear on the screen. Numbers as above.
enum class NotificationAlerts {
    notSupported = 0, ///< Linux: not known, as no server has told.
    disabled = 1,     ///< Linux: the server shows no buttons, or the user has told it not to disturb.
    enabled = 2,
};

/// What a notification service tells about itself.
struct NotificationSettings {
    NotificationAuthorization authorization = NotificationAuthorization::notDetermined;
    NotificationAlerts alerts = NotificationAlerts::notSupported;

    /// Whether a notification is taken. The system that asks later counts as one that does.
    [[nodiscard]] constexpr bool isAuthorized() const
    {
        return authorization == NotificationAuthorization::authorized ||
               authorization == NotificationAuthorization::provisional;
    }

    bool operator==(const NotificationSettings&) const = default;
};

} // namespace quellon
