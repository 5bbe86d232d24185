#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationAction.h"
#include "QuellonCore/Presentation/SettingsTab.h"

#include <functional>
#include <string>
#include <vector>

/// What the answer to a notification does.
namespace quellon::NotificationActionRouter {

/// Carries out what the user answered for these applications, by their labels and in their order; whatever is snoozed,
/// is so for the minutes of the settings. `view` names the application whose details are asked for and calls
/// `openSettings`, which may be empty, with the page that it stands on. Main thread only; `suspend` and `terminate`
/// read the process table and block for it.
void perform(NotificationAction action, const std::vector<std::string>& apps, GuardEngine& engine,
             const std::function<void(SettingsTab)>& openSettings);

} // namespace quellon::NotificationActionRouter
