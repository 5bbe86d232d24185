#include "QuellonCore/Engine/NotificationRouting.h"

#include <utility>

namespace quellon::NotificationRouting {

namespace {

void allow(const std::string& app, GuardEngine& engine)
{
    GuardSettings settings = engine.settings();
    settings.setPolicy(AppPolicy::never, app);
    engine.setSettings(std::move(settings));
}

} // namespace

void perform(NotificationAction action, const std::vector<std::string>& apps, GuardEngine& engine,
             const std::function<void(const std::vector<std::string>&)>& show)
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
        if (show) show(apps);
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

} // namespace quellon::NotificationRouting
