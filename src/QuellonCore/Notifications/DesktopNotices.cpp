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

NotificationPlan noNetworkSettings()
{
    NotificationPlan plan;
    plan.style = NotificationStyle::transient;
    plan.title = "No network settings found";
    plan.body = "Quellon knows no program for network settings on this desktop. Open the desktop's own and follow the "
                "steps in Quellon's panel.";
    return plan;
}

} // namespace quellon::DesktopNotices
