#include "QuellonCore/Notifications/NotificationRoute.h"

namespace quellon::NotificationRoute {

Destination destination(const std::vector<std::string>& apps)
{
    if (apps.size() != 1) return {};
    return {apps.front(), SettingsTab::apps};
}

} // namespace quellon::NotificationRoute
