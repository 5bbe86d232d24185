#pragma once

#include "QuellonCore/Host/RunLoop.h"
#include "QuellonCore/Notifications/NotificationCenter.h"

#include <memory>

namespace quellon::SystemNotifications {

/// The notification service of the system that this build is for. `runLoop` must outlive it.
[[nodiscard]] std::unique_ptr<NotificationCenter> center(RunLoop& runLoop);

} // namespace quellon::SystemNotifications
