#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Notifications/NotificationPlan.h"
#include "QuellonCore/Presentation/ActionButton.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// What a control of the menu panel does.
struct PanelAction {
    enum class Kind {
        start,
        stop,
        showTetherSteps,
        openNetworkSettings,
        dismissTetherHint,
        allowUpdateChecks,
        declineUpdateChecks,
        openDownloadPage,
        dismissUpdate,
        selectProfile,
        toggleRow,
        openDetails,
        resume,
        resumeAll,
        openSettings,
        quit,
    };
    Kind kind = Kind::openSettings;
    /// The text of a profile's id, an application's label, the `id` of a `SuspendedApp`, or the address of the download
    /// page; empty for what needs none.
    std::string target;

    bool operator==(const PanelAction&) const = default;
};

using PanelButton = ActionButton<PanelAction>;

/// What the panel remembers between two models. It begins anew with the panel.
struct PanelState {
    std::optional<std::string> expandedApp; ///< The one usage row that is open, by its application's label.
    bool showSteps = false;                 ///< Whether the tether hint tells what to do.
    bool operator==(const PanelState&) const = default;
};

/// What the panel asks of the desktop. Each may be empty.
struct PanelDesktop {
    /// Opens an address with the system's opener.
    std::function<void(const std::string& url)> openURL;
    /// Starts the first of these programs that is installed. False when none is.
    std::function<bool(const std::vector<Command>& programs)> startFirst;
    /// Tells the user something that nobody is to answer.
    std::function<void(const NotificationPlan& plan)> tell;
    /// Opens the settings window, on the page that it stands on.
    std::function<void()> openSettings;
    /// Ends the program the ordinary way.
    std::function<void()> quit;
};

/// Carries out what was pressed. What is no longer there (a resumed application, a deleted profile) is left alone. Main
/// thread only.
void perform(const PanelAction& action, GuardEngine& engine, PanelState& state, const PanelDesktop& desktop);

/// Forgets what the state holds for a row that is no longer shown; before each model.
void settle(PanelState& state, const GuardEngine& engine);

} // namespace quellon
