#pragma once

#include "QuellonCore/Presentation/SettingsTab.h"

#include <optional>
#include <string>
#include <vector>

/// Where "Show details" leads.
namespace quellon::NotificationRoute {

/// A page of the settings window, and the application whose details stand open on it.
struct Destination {
    std::optional<std::string> detailApp;
    SettingsTab tab = SettingsTab::log;
    bool operator==(const Destination&) const = default;
};

/// The application's details when the notification was about one, otherwise the activity log.
[[nodiscard]] Destination destination(const std::vector<std::string>& apps);

} // namespace quellon::NotificationRoute
