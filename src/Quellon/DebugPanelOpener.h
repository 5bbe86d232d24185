#pragma once

#include "QuellonCore/Diagnostics/DebugSnapshot.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonCore/Presentation/DebugPanelModel.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quellon {

class DebugPanel;

/// The one debug panel: attached to `DebugHooks` for as long as this lives, made by its first opening. Main thread
/// only; the outlines of state files are made on another.
class DebugPanelOpener {
public:
    /// `feed` shows the notifications that are for trying out; `refreshCapability` asks anew whether the system shows
    /// any.
    DebugPanelOpener(const AboutModel::Build& build, NotificationFeed& feed, std::function<void()> refreshCapability);
    ~DebugPanelOpener();
    DebugPanelOpener(const DebugPanelOpener&) = delete;
    DebugPanelOpener& operator=(const DebugPanelOpener&) = delete;

private:
    std::string version_;
    std::string systemVersion_;
    NotificationFeed& feed_;
    GuardEngine* engine_ = nullptr; ///< Since the first opening.
    DebugSnapshot snapshot_;
    std::vector<NetworkLogEntry> network_;
    DebugPanelState state_;
    std::unique_ptr<DebugPanel> panel_;
    std::shared_ptr<DebugPanelOpener*> self_; ///< For outlines that come when this is gone.

    void open(GuardEngine& engine);
    void read();
    void show();
    void outline();
    void act(const DebugAction& action);
};

} // namespace quellon
