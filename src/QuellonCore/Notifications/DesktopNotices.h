#pragma once

#include "QuellonCore/Notifications/NotificationPlan.h"
#include "QuellonCore/Support/Time.h"

/// What the program tells of itself on a desktop.
namespace quellon::DesktopNotices {

/// How long a desktop that is just starting is given to bring up its tray.
inline constexpr Seconds trayPatience{15.0};

/// Said once in a run on a desktop without a tray: how the panel is opened all the same. Nothing to answer, and about
/// no application.
[[nodiscard]] NotificationPlan noTray();

/// Said when the network settings were asked for and no program for them is installed. Nothing to answer, and about no
/// application.
[[nodiscard]] NotificationPlan noNetworkSettings();

} // namespace quellon::DesktopNotices
