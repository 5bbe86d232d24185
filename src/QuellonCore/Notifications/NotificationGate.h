#pragma once

#include "QuellonCore/Notifications/NotificationCapability.h"
#include "QuellonCore/Rules/ActionLevel.h"

/// The guard never steps in by itself when it could not tell the user.
namespace quellon::NotificationGate {

/// `ask` in place of `enforce` when no warning can reach the user; otherwise `level` as it is.
[[nodiscard]] ActionLevel effectiveLevel(ActionLevel level, const NotificationCapability& capability);

} // namespace quellon::NotificationGate
