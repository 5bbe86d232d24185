#include "QuellonCore/Notifications/DesktopNotices.h"

namespace quellon::DesktopNotices {

NotificationPlan noTray()
{
    NotificationPlan plan;
    plan.style = NotificationStyle::transient;
    plan.title = "Quellon is running";
    plan.body = "This desktop shows no tray icons. To open Quellon's panel, start Quellon again.";
    return plan;
}

} // namespace quellon::DesktopNotices
