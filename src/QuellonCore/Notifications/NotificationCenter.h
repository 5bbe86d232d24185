#pragma once

#include "QuellonCore/Notifications/NotificationRequest.h"
#include "QuellonCore/Notifications/NotificationSettings.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// Seam: the system's notification service. Main thread only; every answer comes in a later turn of the main thread, or
/// never. Nothing here waits.
class NotificationCenter {
public:
    /// What a click on the notification itself, beside its buttons, is reported as.
    static constexpr std::string_view defaultAction = "default";

    /// What came of the question for permission.
    struct Authorization {
        bool granted = false;
        std::optional<std::string> error; ///< Why there is no answer; absent when there is one.
        bool operator==(const Authorization&) const = default;
    };

    NotificationCenter() = default;
    virtual ~NotificationCenter() = default;
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    /// Asks for permission to show alerts with sound.
    virtual void requestAuthorization(std::function<void(const Authorization&)> answer) = 0;

    /// Reads the settings anew.
    virtual void readSettings(std::function<void(const NotificationSettings&)> answer) = 0;

    /// From now on these categories are known, and no others.
    virtual void setCategories(const std::vector<NotificationCategory>& categories) = 0;

    /// Shows a notification, each as one of its own. One that is refused is not shown, and nothing is told of it.
    virtual void add(const NotificationRequest& request) = 0;

    /// What the user answered, by a button's identifier or `defaultAction`, with the request's `apps`. May be empty.
    std::function<void(std::string_view action, const std::vector<std::string>& apps)> onResponse;

    /// The settings may have changed. May be empty.
    std::function<void()> onSettingsChange;
};

} // namespace quellon
