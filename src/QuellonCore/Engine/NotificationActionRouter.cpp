#include "QuellonCore/Engine/NotificationActionRouter.h"

#include "QuellonCore/Notifications/NotificationRoute.h"

#include <utility>

namespace quellon::NotificationActionRouter {

namespace {

void allow(const std::string& app, GuardEngine& engine)
{
    GuardSettings settings = engine.settings();
    settings.setPolicy(AppPolicy::never, app);
    engine.setSettings(std::move(settings));
}

void view(const std::vector<std::string>& apps, GuardEngine& engine,
          const std::function<void(SettingsTab)>& openSettings)
{
    auto destination = NotificationRoute::destination(apps);
    engine.setDetailApp(std::move(destination.detailApp));
    if (openSettings) openSettings(destination.tab);
}

} // namespace

void perform(NotificationAction action, const std::vector<std::string>& apps, GuardEngine& engine,
             const std::function<void(SettingsTab)>& openSettings)
{
    switch (action) {
    case NotificationAction::snooze:
    case NotificationAction::snoozeAll:
        for (const std::string& app : apps) engine.snooze(app);
        return;
    case NotificationAction::suspend:
        engine.enforceNow(apps, EnforcementAction::suspend);
        return;
    case NotificationAction::terminate:
        engine.enforceNow(apps, EnforcementAction::terminate);
        return;
    case NotificationAction::allowlist:
        for (const std::string& app : apps) allow(app, engine);
        return;
    case NotificationAction::view:
        view(apps, engine, openSettings);
        return;
    case NotificationAction::allowOnce:
        for (const std::string& app : apps) engine.allowUntilTransferEnds(app, engine.host().clock.now());
        return;
    case NotificationAction::muteToday:
        for (const std::string& app : apps) engine.muteAsks(app, engine.host().clock.now());
        return;
    case NotificationAction::resume:
        engine.resumeApps(apps, 0);
        return;
    case NotificationAction::resumeAndSnooze:
        engine.resumeApps(apps);
        return;
    }
}

} // namespace quellon::NotificationActionRouter
