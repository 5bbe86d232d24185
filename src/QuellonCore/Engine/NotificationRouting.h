#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationAction.h"

#include <functional>
#include <string>
#include <vector>

/// What the answer to a notification does.
namespace quellon::NotificationRouting {

/// Carries out what the user answered for these applications, by their labels and in their order; whatever is snoozed,
/// is so for the minutes of the settings. `view` is left to the caller: it goes to `show`, which may be empty. Main
/// thread only; `suspend` and `terminate` read the process table and block for it.
void perform(NotificationAction action, const std::vector<std::string>& apps, GuardEngine& engine,
             const std::function<void(const std::vector<std::string>&)>& show);

} // namespace quellon::NotificationRouting
