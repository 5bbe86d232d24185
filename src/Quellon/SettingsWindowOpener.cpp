#include "Quellon/SettingsWindowOpener.h"

#include "QuellonCore/Diagnostics/DebugHooks.h"
#include "QuellonCore/Persistence/DebugStateGuard.h"
#include "QuellonCore/Presentation/SettingsModel.h"
#include "QuellonHost/SystemHost.h"
#include "QuellonUI/Kit/Appearance.h"
#include "QuellonUI/Kit/Centre.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

namespace quellon {

SettingsWindowOpener::SettingsWindowOpener(GuardEngine& engine, AboutModel::Build build,
                                           std::function<void()> dismissPanel)
    : engine_(engine),
      persistence_(engine.host()),
      build_(std::move(build)),
      dismissPanel_(std::move(dismissPanel)),
      places_(persistence_.load<WindowPlaces>(Persistence::windowsFile).value_or(WindowPlaces{})),
      autostart_(engine.host(), SystemHost::executable())
{
}

SettingsWindowOpener::~SettingsWindowOpener()
{
    // The window was moved just before the end.
    if (rest_) keepPlace();
}

void SettingsWindowOpener::open(std::optional<SettingsTab> selecting)
{
    if (selecting) static_cast<void>(perform(SettingsActions::SelectTab{*selecting}, engine_, state_));
    dismissPanel_();
    readAutostart();
    if (!window_) build();
    if (window_->isMinimized()) window_->showNormal();
    window_->show();
    refresh();
    window_->raise();
    window_->activateWindow();
}

void SettingsWindowOpener::build()
{
    Appearance::applyFonts();
    window_ = std::make_unique<SettingsWindow>();
    QObject::connect(window_.get(), &SettingsWindow::acted, window_.get(),
                     [this](const SettingsAction& action) { act(action); });
    QObject::connect(window_.get(), &SettingsWindow::openURL, window_.get(),
                     [](const QUrl& url) { QDesktopServices::openUrl(url); });
    QObject::connect(window_.get(), &SettingsWindow::versionTapped, window_.get(), [this] {
        if (taps_.registerTap(engine_.host().clock.now())) DebugHooks::open(engine_);
    });
    QObject::connect(window_.get(), &SettingsWindow::closed, window_.get(), [this] {
        static_cast<void>(perform(SettingsActions::CloseWindow{}, engine_, state_));
        if (onClosed) onClosed();
    });
    QObject::connect(window_.get(), &SettingsWindow::moved, window_.get(),
                     [this] { rest_ = engine_.host().runLoop.after(restTime, [this] { keepPlace(); }); });
    window_->setModel(SettingsModel::of(engine_, state_, build_, engine_.host().clock.now()));
    place();
}

void SettingsWindowOpener::place()
{
    window_->adjustSize();
    if (places_.settings) {
        for (const QScreen* const screen : QGuiApplication::screens()) {
            const QRect free = screen->availableGeometry();
            if (!WindowPlaces::isWithin(*places_.settings, {free.x(), free.y(), free.width(), free.height()})) continue;
            window_->move(places_.settings->x, places_.settings->y);
            return;
        }
    }
    centre(*window_, *QGuiApplication::primaryScreen());
}

void SettingsWindowOpener::keepPlace()
{
    rest_.reset();
    const QPoint corner = window_->pos();
    const WindowPlaces::Place place{corner.x(), corner.y()};
    if (places_.settings == place) return;
    places_.settings = place;
    persistence_.save(places_, Persistence::windowsFile);
}

void SettingsWindowOpener::refresh()
{
    if (!isVisible()) return;
    settle(engine_, state_);
    window_->setModel(SettingsModel::of(engine_, state_, build_, engine_.host().clock.now()));
}

/// What starts with the session is the user's real program, which a guard on isolated state leaves alone.
void SettingsWindowOpener::readAutostart()
{
    const bool isReal = !DebugStateGuard::current(engine_.host(), persistence_).allowsMutation();
    state_.startsAtLogin = isReal ? std::optional{autostart_.isOn()} : std::nullopt;
    state_.startRefusal.reset();
}

void SettingsWindowOpener::act(const SettingsAction& action)
{
    static_cast<void>(perform(action, engine_, state_));
    if (std::holds_alternative<SettingsActions::SelectTab>(action)) readAutostart();
    if (const auto* const start = std::get_if<SettingsActions::SetStartAtLogin>(&action)) {
        auto refusal = autostart_.setOn(start->on);
        readAutostart();
        state_.startRefusal = std::move(refusal);
    }
    refresh();
}

} // namespace quellon
