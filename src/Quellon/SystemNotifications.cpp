#include "Quellon/SystemNotifications.h"

#ifdef __APPLE__
#include "QuellonHost/MacOS/UserNotificationCenter.h"
#else
#include "QuellonUI/Notifications/DesktopNotificationCenter.h"

#include <QDBusConnection>
#endif

namespace quellon::SystemNotifications {

#ifdef __APPLE__

std::unique_ptr<NotificationCenter> center(RunLoop& runLoop)
{
    return std::make_unique<UserNotificationCenter>(runLoop);
}

#else

std::unique_ptr<NotificationCenter> center(RunLoop& /*runLoop*/)
{
    return std::make_unique<DesktopNotificationCenter>(QDBusConnection::sessionBus());
}

#endif

} // namespace quellon::SystemNotifications
