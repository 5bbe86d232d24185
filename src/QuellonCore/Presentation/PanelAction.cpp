#include "QuellonCore/Presentation/PanelAction.h"

#include "QuellonCore/Notifications/DesktopNotices.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace quellon {

namespace {

using Kind = PanelAction::Kind;

template <typename... Arguments>
void call(const std::function<void(Arguments...)>& function, const std::common_type_t<Arguments>&... arguments)
{
    if (function) function(arguments...);
}

void openNetworkSettings(const Platform& platform, const PanelDesktop& desktop)
{
    if (!platform.networkSettingsURL.empty())
        call(desktop.openURL, platform.networkSettingsURL);
    else if (desktop.startFirst && !desktop.startFirst(platform.networkSettingsPrograms))
        call(desktop.tell, DesktopNotices::noNetworkSettings());
}

void dismissTetherHint(GuardEngine& engine)
{
    GuardSettings settings = engine.settings();
    settings.tetherHintDismissed = true;
    engine.setSettings(std::move(settings));
}

void resume(const std::string& id, GuardEngine& engine)
{
    const auto& paused = engine.suspended();
    const auto entry =
        std::find_if(paused.begin(), paused.end(), [&](const SuspendedApp& each) { return each.id() == id; });
    if (entry != paused.end()) engine.resume(*entry, 0);
}

/// What only the engine has to do with.
void performOnEngine(const PanelAction& action, GuardEngine& engine)
{
    switch (action.kind) {
    case Kind::start:
        engine.start();
        return;
    case Kind::stop:
        engine.stop();
        return;
    case Kind::dismissTetherHint:
        dismissTetherHint(engine);
        return;
    case Kind::allowUpdateChecks:
    case Kind::declineUpdateChecks:
        engine.answerUpdateCheckConsent(action.kind == Kind::allowUpdateChecks);
        return;
    case Kind::dismissUpdate:
        engine.dismissAvailableUpdate();
        return;
    case Kind::selectProfile:
        if (const auto id = UUID::parse(action.target)) engine.selectProfile(*id);
        return;
    case Kind::resume:
        resume(action.target, engine);
        return;
    case Kind::resumeAll:
        engine.resumeAll(false);
        return;
    default:
        return;
    }
}

} // namespace

void perform(const PanelAction& action, GuardEngine& engine, PanelState& state, const PanelDesktop& desktop)
{
    switch (action.kind) {
    case Kind::showTetherSteps:
        state.showSteps = true;
        return;
    case Kind::toggleRow:
        state.expandedApp = state.expandedApp == action.target ? std::nullopt : std::optional{action.target};
        return;
    case Kind::openNetworkSettings:
        openNetworkSettings(engine.host().platform, desktop);
        return;
    case Kind::openDownloadPage:
        call(desktop.openURL, action.target);
        return;
    case Kind::openDetails:
        engine.setDetailApp(action.target);
        call(desktop.openSettings);
        return;
    case Kind::openSettings:
        call(desktop.openSettings);
        return;
    case Kind::quit:
        call(desktop.quit);
        return;
    default:
        performOnEngine(action, engine);
        return;
    }
}

void settle(PanelState& state, const GuardEngine& engine)
{
    state.showSteps = state.showSteps && engine.showsTetherHint();
}

} // namespace quellon
