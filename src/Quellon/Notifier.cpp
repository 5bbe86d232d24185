#include "Quellon/Notifier.h"

#include "QuellonCore/Presentation/PlainText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>

namespace quellon {

Notifier::Notifier(NotificationCenter& center, std::function<void(std::string_view)> diag)
    : center_{center}, diag_{std::move(diag)}, self_{std::make_shared<Notifier*>(this)}
{
    center_.onResponse = [this](std::string_view action, const auto& apps) { respond(action, apps); };
    center_.onSettingsChange = [this] { readSettings(false); };
}

Notifier::~Notifier()
{
    center_.onResponse = nullptr;
    center_.onSettingsChange = nullptr;
}

void Notifier::requestAuthorization()
{
    center_.requestAuthorization([weak = std::weak_ptr{self_}](const NotificationCenter::Authorization& authorization) {
        const auto self = weak.lock();
        if (!self) return;
        (*self)->diag_(authorization.error ? "authorization failed: " + plainText(*authorization.error)
                                           : fmt::format("authorization granted={}", authorization.granted));
        (*self)->refreshCapability();
    });
}

void Notifier::refreshCapability()
{
    readSettings(true);
}

void Notifier::readSettings(bool notesUnchanged)
{
    center_.readSettings([weak = std::weak_ptr{self_}, notesUnchanged](const NotificationSettings& settings) {
        if (const auto self = weak.lock()) (*self)->take(settings, notesUnchanged);
    });
}

void Notifier::take(const NotificationSettings& settings, bool notesUnchanged)
{
    // A service that comes and goes by itself would fill the log with what it says already.
    if (notesUnchanged || settings != noted_) {
        diag_(fmt::format("notification settings: authStatus={} alert={} canNotify=true\n",
                          static_cast<int>(settings.authorization), static_cast<int>(settings.alerts)));
        noted_ = settings;
    }
    if (!onCapabilityChange) return;
    onCapabilityChange({.authorized = settings.isAuthorized(),
                        .alertsEnabled = settings.alerts != NotificationAlerts::disabled,
                        .inAppChannelAvailable = true});
}

std::string Notifier::categoryIdentifier(const std::vector<NotificationAction>& actions)
{
    std::vector<std::string_view> raws;
    raws.reserve(actions.size());
    for (const NotificationAction action : actions) raws.push_back(notificationActions.raw(action));
    return fmt::format("ql.{}", fmt::join(raws, "."));
}

void Notifier::registerCategoryIfNeeded(const std::string& id, const std::vector<NotificationAction>& actions)
{
    if (!registered_.insert(id).second) return;
    NotificationCategory category{id, {}};
    for (const NotificationAction action : actions) {
        category.buttons.push_back(
            {notificationActions.raw(action), notificationActions.label(action), isDestructive(action)});
    }
    allCategories_.push_back(std::move(category));
    center_.setCategories(allCategories_);
}

void Notifier::deliver(const NotificationPlan& plan)
{
    if (plan.title.empty()) return;
    NotificationRequest request{plan.style, plan.title, plan.subtitle, plan.body, {}, plan.apps};
    if (!plan.actions.empty()) {
        request.category = categoryIdentifier(plan.actions);
        registerCategoryIfNeeded(request.category, plan.actions);
    }
    center_.add(request);
}

void Notifier::respond(std::string_view action, const std::vector<std::string>& apps) const
{
    auto meant = notificationActions.parse(action);
    if (action == NotificationCenter::defaultAction) meant = NotificationAction::view;
    if (meant && onAction) onAction(*meant, apps);
}

} // namespace quellon
