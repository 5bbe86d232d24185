#pragma once

#include "Quellon/DebugPanelOpener.h"
#include "Quellon/Notifier.h"
#include "Quellon/SettingsWindowOpener.h"
#include "QuellonCore/Diagnostics/NotificationLog.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationCenter.h"
#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonCore/Presentation/DateTexts.h"
#include "QuellonCore/Presentation/PanelAction.h"
#include "QuellonCore/Presentation/ToastPresenter.h"
#include "QuellonCore/Presentation/TrayModel.h"
#include "QuellonUI/Onboarding/OnboardingWindow.h"
#include "QuellonUI/Panel/MenuPanel.h"
#include "QuellonUI/Toasts/ToastScreen.h"
#include "QuellonUI/Tray/TrayItem.h"

#include <QPoint>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// The engine on a desktop: the tray item with its panel, the windows, the toasts and the system's notifications. It
/// fetches models when the engine tells of a change, and hands what the user does to the models' own functions. Main
/// thread only.
class Desktop {
public:
    /// `quit` ends the program the ordinary way. Queues what is to happen once the program is up: a first run opens the
    /// first-run window, a later one no window at all.
    Desktop(GuardEngine& engine, NotificationFeed& notifications, const AboutModel::Build& build,
            std::function<void()> quit);
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    /// Brings the panel up where the tray item was clicked last; before that, in the corner where trays are.
    void showPanel();

private:
    GuardEngine& engine_;
    std::function<void()> quit_;
    DateTexts dates_;
    PanelState panelState_;
    SettingsState onboardingState_;
    TrayItem tray_;
    std::unique_ptr<MenuPanel> panel_;             ///< Made by its first opening.
    std::unique_ptr<OnboardingWindow> onboarding_; ///< While it is open.
    SettingsWindowOpener settings_;
    DebugPanelOpener debug_;
    ToastScreen toastScreen_;
    ToastPresenter toasts_;
    NotificationLog notificationLog_;
    std::unique_ptr<NotificationCenter> notificationCenter_;
    Notifier notifier_;
    // Toasts first, then the system's notifications, for every plan.
    NotificationFeed::Subscription toToasts_;
    NotificationFeed::Subscription toNotifier_;
    GuardEngine::Observation observation_;
    NotificationFeed& notifications_;
    RunLoop::Handle launch_;
    RunLoop::Handle trayPatience_; ///< While it stands, the tray may still come.
    bool toldOfAbsentTray_ = false;
    std::optional<QPoint> lastAnchor_;
    RunLoop::Handle trayChange_; ///< When the tray item changes by itself.
    RunLoop::Handle times_;      ///< While something is on the screen that tells how long ago something was.

    [[nodiscard]] Date now() const { return engine_.host().clock.now(); }
    [[nodiscard]] RunLoop& runLoop() const { return engine_.host().runLoop; }
    void connect();
    void launch();
    void refresh();
    void refreshTray();
    void refreshPanel();
    void refreshTimes();

    void presentOnboarding();
    void refreshOnboarding();
    void closeOnboarding();

    void togglePanel(const QPoint& anchor);
    void openPanel(const QPoint& anchor);
    void dismissPanel();
    void act(const PanelAction& action);
    void choose(TrayCommand command);
    void answer(NotificationAction action, const std::vector<std::string>& apps);
    void showToasts();
    void tellOfAbsentTray();
};

} // namespace quellon
