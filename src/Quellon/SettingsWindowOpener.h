#pragma once

#include "QuellonCore/Diagnostics/SecretTapGesture.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonCore/Presentation/SettingsAction.h"
#include "QuellonCore/Presentation/SettingsState.h"
#include "QuellonCore/Settings/Autostart.h"
#include "QuellonCore/Settings/WindowPlaces.h"
#include "QuellonUI/Settings/SettingsWindow.h"

#include <functional>
#include <memory>
#include <optional>

namespace quellon {

/// The one settings window: made by its first opening and kept for the life of the process, with the page that it
/// stood on and, from run to run, with its place. Main thread only.
class SettingsWindowOpener {
public:
    /// `dismissPanel` is called before the window comes up.
    SettingsWindowOpener(GuardEngine& engine, AboutModel::Build build, std::function<void()> dismissPanel);
    ~SettingsWindowOpener();
    SettingsWindowOpener(const SettingsWindowOpener&) = delete;
    SettingsWindowOpener& operator=(const SettingsWindowOpener&) = delete;

    std::function<void()> onClosed; ///< The window can no longer be seen.

    /// Brings the window forward, on this page if one is given.
    void open(std::optional<SettingsTab> selecting = {});
    /// Whether there is a window, be it closed or not.
    [[nodiscard]] bool isOpen() const { return window_ != nullptr; }
    /// Whether it can be seen.
    [[nodiscard]] bool isVisible() const { return window_ != nullptr && window_->isVisible(); }
    /// Shows what has changed; nothing while the window can't be seen.
    void refresh();

private:
    /// For how long the window must rest before its place is kept.
    static constexpr Seconds restTime{1.0};

    GuardEngine& engine_;
    Persistence persistence_;
    AboutModel::Build build_;
    std::function<void()> dismissPanel_;
    SettingsState state_;
    WindowPlaces places_;
    Autostart autostart_;
    std::unique_ptr<SettingsWindow> window_;
    RunLoop::Handle rest_;
    SecretTapCounter taps_; ///< On the version.

    void build();
    void place();
    void keepPlace();
    void readAutostart();
    void act(const SettingsAction& action);
};

} // namespace quellon
