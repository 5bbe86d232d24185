#pragma once

#include "QuellonCore/Notifications/NotificationRequest.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What a server of the freedesktop.org notification service tells about itself.
struct NotificationServer {
    /// Why nothing is known of one that is there.
    static constexpr std::string_view noAnswer = "the notification server does not answer";

    std::string name; ///< Empty when it didn't say.
    std::vector<std::string> capabilities;
    bool inhibited = false; ///< The user has told it not to disturb.

    [[nodiscard]] bool can(std::string_view capability) const;

    /// Whether a notification shows with its buttons. A server without buttons can't take an answer.
    [[nodiscard]] bool showsAlerts() const { return !inhibited && can("actions"); }

    bool operator==(const NotificationServer&) const = default;
};

/// A notification in the terms of the freedesktop.org notification service (Desktop Notifications Specification 1.2).
struct DesktopNotification {
    /// The basename of the program's desktop file, and the name of its icon.
    static constexpr std::string_view desktopEntry = "org.quellon.Quellon";
    /// The title of the click on the notification itself, where a server shows it.
    static constexpr std::string_view defaultTitle = "Show details";

    /// Lifetimes, in milliseconds where they are greater than 0.
    static constexpr std::int32_t asServerChooses = -1;
    static constexpr std::int32_t untilAnswered = 0;

    enum class Urgency : std::uint8_t { low = 0, normal = 1, critical = 2 };

    struct Action {
        std::string_view key; ///< What an answer is reported as.
        std::string_view title;
        bool operator==(const Action&) const = default;
    };

    std::string summary;
    std::string body; ///< In the server's markup when it has one.
    std::vector<Action> actions;
    std::string category; ///< Empty for none.
    Urgency urgency = Urgency::normal;
    std::int32_t expireTimeout = asServerChooses;
    std::string_view soundName; ///< Of the freedesktop.org sound naming; empty for none.
    bool suppressSound = false;

    /// What `server` is to be told for a request whose category has these buttons.
    ///
    /// The click on the notification comes first. It is left out where there is no room for it: Xfce draws it as one
    /// more button, so there the button "Show details" does for both. A server that can't show buttons gets none, as
    /// some open a dialogue that takes the focus instead.
    ///
    /// A persistent notification stays until it is answered, with a sound, and is `critical`: a question is
    /// time-sensitive, and servers show that also to those who asked not to be disturbed. A transient one is `normal`,
    /// since servers show `low` without a banner or not at all.
    [[nodiscard]] static DesktopNotification of(const NotificationRequest& request,
                                                const std::vector<NotificationCategory::Button>& buttons,
                                                const NotificationServer& server);

    bool operator==(const DesktopNotification&) const = default;
};

} // namespace quellon
