#pragma once

#include "QuellonCore/Host/RunLoop.h"
#include "QuellonCore/Notifications/NotificationCenter.h"

#include <memory>

namespace quellon {

/// The user-notification service, for a program that runs from a bundle: outside of one the service ends the process.
/// Not run: written for macOS, never tried there.
class UserNotificationCenter final : public NotificationCenter {
public:
    /// The key of the applications in a notification's user information.
    static constexpr const char* appsKey = "quellon.apps";

    /// Becomes the service's delegate. `runLoop` must outlive it.
    explicit UserNotificationCenter(RunLoop& runLoop);
    ~UserNotificationCenter() override;

    void requestAuthorization(std::function<void(const Authorization&)> answer) override;
    void readSettings(std::function<void(const NotificationSettings&)> answer) override;
    void setCategories(const std::vector<NotificationCategory>& categories) override;
    void add(const NotificationRequest& request) override;

private:
    struct Delegate; ///< Holds the delegate, which the service itself does not.

    RunLoop& runLoop_;
    std::shared_ptr<UserNotificationCenter*> self_; ///< For answers that come when this is gone.
    std::unique_ptr<Delegate> delegate_;
};

} // namespace quellon
