#include "QuellonCore/Notifications/NotificationGate.h"

namespace quellon::NotificationGate {

ActionLevel effectiveLevel(ActionLevel level, const NotificationCapability& capability)
{
    return level == ActionLevel::enforce && capability.blockedReason() ? ActionLevel::ask : level;
}

} // namespace quellon::NotificationGate
