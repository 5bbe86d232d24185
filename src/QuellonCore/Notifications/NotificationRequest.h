#pragma once

#include "QuellonCore/Notifications/NotificationStyle.h"

#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// A set of buttons that notifications share.
struct NotificationCategory {
    struct Button {
        std::string_view identifier; ///< The action's raw text.
        std::string_view title;
        bool destructive = false;
        bool operator==(const Button&) const = default;
    };

    std::string identifier;
    std::vector<Button> buttons; ///< In their order.

    bool operator==(const NotificationCategory&) const = default;
};

/// One notification for the system to show.
struct NotificationRequest {
    NotificationStyle style = NotificationStyle::transient;
    std::string title;
    std::string subtitle;
    std::string body;
    std::string category;          ///< Of its buttons; empty when it has none.
    std::vector<std::string> apps; ///< Comes back with the answer.

    bool operator==(const NotificationRequest&) const = default;
};

} // namespace quellon
