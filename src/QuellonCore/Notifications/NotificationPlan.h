#pragma once

#include "QuellonCore/Notifications/NotificationAction.h"
#include "QuellonCore/Notifications/NotificationStyle.h"

#include <string>
#include <vector>

namespace quellon {

/// The words and buttons of one notification, whatever channel it goes out by.
struct NotificationPlan {
    NotificationStyle style = NotificationStyle::transient;
    std::string title; ///< Empty: nothing is to be shown.
    std::string subtitle;
    std::string body;
    std::vector<NotificationAction> actions; ///< The buttons in their order.
    std::vector<std::string> apps;           ///< The labels that the actions apply to.

    bool operator==(const NotificationPlan&) const = default;
};

} // namespace quellon
