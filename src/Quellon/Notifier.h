#pragma once

#include "QuellonCore/Notifications/NotificationAction.h"
#include "QuellonCore/Notifications/NotificationCapability.h"
#include "QuellonCore/Notifications/NotificationCenter.h"
#include "QuellonCore/Notifications/NotificationPlan.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// Hands notifications to the system's notification service, and reports what the user answered and whether the
/// service reaches the user. Main thread only.
class Notifier {
public:
    /// Takes over the handlers of `center`, which must outlive it. `diag` writes a line to the log of notifications.
    Notifier(NotificationCenter& center, std::function<void(std::string_view text)> diag);
    ~Notifier();
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

    /// Receives each answer. May be empty.
    std::function<void(NotificationAction action, const std::vector<std::string>& apps)> onAction;
    /// Receives each reading of what the service can do. May be empty.
    std::function<void(const NotificationCapability&)> onCapabilityChange;

    /// Asks the user for permission, where the system has such a question, notes the answer, and reads the capability.
    void requestAuthorization();
    /// Reads the capability anew and notes it. It is also read by itself when the service changes.
    void refreshCapability();
    /// Shows a notification; nothing for a plan without a title.
    void deliver(const NotificationPlan& plan);

    /// The name for these buttons in this order: "ql." and their raw texts joined by dots.
    [[nodiscard]] static std::string categoryIdentifier(const std::vector<NotificationAction>& actions);

private:
    NotificationCenter& center_;
    std::function<void(std::string_view text)> diag_;
    std::set<std::string> registered_;
    std::vector<NotificationCategory> allCategories_;
    std::optional<NotificationSettings> noted_; ///< What the log says last.
    std::shared_ptr<Notifier*> self_;           ///< For answers that come when this is gone.

    void registerCategoryIfNeeded(const std::string& id, const std::vector<NotificationAction>& actions);
    void readSettings(bool notesUnchanged);
    void take(const NotificationSettings& settings, bool notesUnchanged);
    void respond(std::string_view action, const std::vector<std::string>& apps) const;
};

} // namespace quellon
