#include "Quellon/Desktop.h"

#include "Quellon/LocaleTexts.h"
#include "Quellon/SystemNotifications.h"
#include "QuellonCore/Engine/NotificationActionRouter.h"
#include "QuellonCore/Notifications/DesktopNotices.h"
#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "QuellonCore/Presentation/OnboardingModel.h"
#include "QuellonUI/Kit/Appearance.h"

#include <QApplication>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace quellon {

namespace {

/// How often what tells of times is drawn anew although nothing happens.
constexpr Seconds timesInterval{30.0};

void openURL(const std::string& url)
{
    QDesktopServices::openUrl(QUrl{QString::fromStdString(url)});
}

bool startFirst(const std::vector<Command>& programs)
{
    for (const Command& each : programs) {
        const QString program = QStandardPaths::findExecutable(QString::fromStdString(each.path));
        if (program.isEmpty()) continue;
        QStringList arguments;
        for (const std::string& argument : each.arguments) arguments << QString::fromStdString(argument);
        if (QProcess::startDetached(program, arguments)) return true;
    }
    return false;
}

QRect freeAreaAt(const QPoint& point)
{
    const QScreen* const screen = QGuiApplication::screenAt(point);
    return (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
}

} // namespace

Desktop::Desktop(GuardEngine& engine, NotificationFeed& notifications, const AboutModel::Build& build,
                 std::function<void()> quit)
    : engine_(engine),
      quit_(std::move(quit)),
      dates_(LocaleTexts::dates(QLocale::system())),
      settings_(engine, build, [this] { dismissPanel(); }),
      debug_(build, notifications, [this] { notifier_.refreshCapability(); }),
      toasts_(
          engine.host().runLoop,
          [this](NotificationAction action, const std::vector<std::string>& apps) { answer(action, apps); },
          [this] { showToasts(); }),
      notificationLog_(engine.host()),
      notificationCenter_(SystemNotifications::center(engine.host().runLoop)),
      notifier_(*notificationCenter_, [this](std::string_view text) { notificationLog_.diag(text); }),
      toToasts_(notifications, [this](const NotificationPlan& plan) { toasts_.show(plan); }),
      toNotifier_(notifications, [this](const NotificationPlan& plan) { notifier_.deliver(plan); }),
      observation_(engine, [this] { refresh(); }),
      notifications_(notifications)
{
    connect();
    // Where toasts can't be shown, nothing is known to reach the user before the notification service was asked.
    if (!ToastScreen::canShow()) engine_.setNotificationCapability({false, false, false});
    launch_ = runLoop().after(Seconds{0.0}, [this] { launch(); });
    trayPatience_ = runLoop().after(DesktopNotices::trayPatience, [this] {
        trayPatience_.reset();
        tellOfAbsentTray();
    });
    refresh();
}

void Desktop::connect()
{
    QObject::connect(&tray_, &TrayItem::activated, &tray_, [this](const QPoint& anchor) { togglePanel(anchor); });
    QObject::connect(&tray_, &TrayItem::chosen, &tray_, [this](TrayCommand command) { choose(command); });
    QObject::connect(&tray_, &TrayItem::availabilityChanged, &tray_, [this] { tellOfAbsentTray(); });
    QObject::connect(&toastScreen_, &ToastScreen::pressed, &toastScreen_,
                     [this](std::uint64_t id, std::size_t button) { toasts_.press(id, button); });
    QObject::connect(&toastScreen_, &ToastScreen::closed, &toastScreen_,
                     [this](std::uint64_t id) { toasts_.close(id); });
    // The notification service has it, too; what is on the screen asks for attention without taking the focus.
    QObject::connect(&toastScreen_, &ToastScreen::missed, &toastScreen_, [] {
        for (QWidget* const window : QApplication::topLevelWidgets()) QApplication::alert(window);
    });
    settings_.onClosed = [this] { refreshTimes(); };
    notifier_.onCapabilityChange = [this](NotificationCapability capability) {
        // Where toasts can't be shown they are no channel, and nothing is to be done that the user isn't told of.
        capability.inAppChannelAvailable = capability.inAppChannelAvailable && ToastScreen::canShow();
        engine_.setNotificationCapability(capability);
    };
    notifier_.onAction = [this](NotificationAction action, const std::vector<std::string>& apps) {
        answer(action, apps);
    };
}

void Desktop::launch()
{
    if (engine_.settings().onboarded)
        notifier_.refreshCapability();
    else
        presentOnboarding();
}

void Desktop::presentOnboarding()
{
    dismissPanel();
    onboardingState_ = {};
    Appearance::applyFonts();
    onboarding_ = std::make_unique<OnboardingWindow>();
    QObject::connect(onboarding_.get(), &OnboardingWindow::acted, onboarding_.get(),
                     [this](const SettingsAction& action) {
                         if (perform(action, engine_, onboardingState_)) {
                             // The permission is asked for only now, when the user knows what for.
                             notifier_.requestAuthorization();
                             closeOnboarding();
                         } else {
                             refreshOnboarding();
                         }
                     });
    QObject::connect(onboarding_.get(), &OnboardingWindow::closed, onboarding_.get(), [this] { closeOnboarding(); });
    refreshOnboarding();
    onboarding_->show();
    onboarding_->raise();
    onboarding_->activateWindow();
}

void Desktop::refreshOnboarding()
{
    if (!onboarding_) return;
    settle(engine_, onboardingState_);
    onboarding_->setModel(OnboardingModel::of(engine_, onboardingState_));
}

void Desktop::closeOnboarding()
{
    // It is the window's own button that was pressed.
    if (onboarding_) onboarding_.release()->deleteLater();
}

void Desktop::refresh()
{
    refreshTray();
    refreshPanel();
    refreshOnboarding();
    settings_.refresh();
    refreshTimes();
}

void Desktop::refreshTray()
{
    const Date at = now();
    tray_.setModel(TrayModel::of(engine_, at));
    const auto next = TrayModel::nextChange(engine_, at);
    trayChange_ = next ? runLoop().after(*next - at, [this] { refreshTray(); }) : nullptr;
}

void Desktop::refreshPanel()
{
    if (!panel_ || !panel_->isVisible()) return;
    settle(panelState_, engine_);
    panel_->setModel(MenuPanelModel::of(engine_, now(), panelState_, dates_));
}

void Desktop::refreshTimes()
{
    const bool wanted = (panel_ && panel_->isVisible()) || settings_.isVisible();
    if (wanted == (times_ != nullptr)) return;
    times_ = wanted ? runLoop().every(timesInterval, [this] { refresh(); }) : nullptr;
}

void Desktop::showPanel()
{
    const bool isThere = lastAnchor_ && QGuiApplication::screenAt(*lastAnchor_) != nullptr;
    openPanel(isThere ? *lastAnchor_ : QGuiApplication::primaryScreen()->availableGeometry().topRight());
}

void Desktop::togglePanel(const QPoint& anchor)
{
    lastAnchor_ = anchor;
    if (panel_ && panel_->isVisible())
        dismissPanel();
    else if (!panel_ || !panel_->closedJustNow())
        openPanel(anchor);
}

void Desktop::openPanel(const QPoint& anchor)
{
    if (!panel_) {
        Appearance::applyFonts();
        panel_ = std::make_unique<MenuPanel>();
        QObject::connect(panel_.get(), &MenuPanel::acted, panel_.get(),
                         [this](const PanelAction& action) { act(action); });
        QObject::connect(panel_.get(), &MenuPanel::opened, panel_.get(), [this] { engine_.markAlertsSeen(); });
        QObject::connect(panel_.get(), &MenuPanel::closed, panel_.get(), [this] { refreshTimes(); });
    }
    if (!panel_->isVisible()) {
        panelState_ = {};
        panel_->setModel(MenuPanelModel::of(engine_, now(), panelState_, dates_));
    }
    panel_->openAt(anchor, freeAreaAt(anchor));
    refreshTimes();
}

void Desktop::dismissPanel()
{
    if (panel_) panel_->dismiss();
}

void Desktop::act(const PanelAction& action)
{
    perform(action, engine_, panelState_,
            {.openURL = openURL,
             .startFirst = startFirst,
             .tell = [this](const NotificationPlan& plan) { notifications_.deliver(plan); },
             .openSettings = [this] { settings_.open(); },
             .quit = quit_});
    refresh();
}

void Desktop::choose(TrayCommand command)
{
    perform(command, engine_,
            {.openPanel = [this] { showPanel(); }, .openSettings = [this] { settings_.open(); }, .quit = quit_});
    refresh();
}

void Desktop::answer(NotificationAction action, const std::vector<std::string>& apps)
{
    NotificationActionRouter::perform(action, apps, engine_, [this](SettingsTab tab) { settings_.open(tab); });
    refresh();
}

void Desktop::showToasts()
{
    if (!toasts_.toasts().empty()) Appearance::applyFonts();
    toastScreen_.setToasts(toasts_.toasts());
}

void Desktop::tellOfAbsentTray()
{
    if (trayPatience_ || toldOfAbsentTray_ || tray_.availability() != TrayItem::Availability::none) return;
    toldOfAbsentTray_ = true;
    notifications_.deliver(DesktopNotices::noTray());
}

} // namespace quellon
