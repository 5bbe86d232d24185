#include "QuellonCore/Notifications/DesktopNotification.h"

#include "QuellonCore/Notifications/NotificationAction.h"
#include "QuellonCore/Notifications/NotificationCenter.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Text.h"

#include <algorithm>

namespace quellon {

namespace {

static_assert(notificationActions.label(NotificationAction::view) == DesktopNotification::defaultTitle);

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char each : text) {
        switch (each) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        default:
            result += each;
        }
    }
    return result;
}

/// Subtitle and body, line by line, without empty lines.
std::string bodyOf(const NotificationRequest& request, bool markup)
{
    std::string result;
    for (std::string_view rest : {std::string_view{request.subtitle}, std::string_view{request.body}}) {
        while (!rest.empty()) {
            const std::string line = plainText(takeLine(rest));
            if (line.empty()) continue;
            if (!result.empty()) result += '\n';
            result += markup ? escaped(line) : line;
        }
    }
    return result;
}

std::vector<DesktopNotification::Action> actionsOf(const std::vector<NotificationCategory::Button>& buttons,
                                                   const NotificationServer& server)
{
    if (!server.can("actions")) return {};
    std::vector<DesktopNotification::Action> result;
    const bool drawsDefault = server.name == "Xfce Notify Daemon";
    const bool hasView = std::ranges::find(buttons, DesktopNotification::defaultTitle,
                                           &NotificationCategory::Button::title) != buttons.end();
    if (!drawsDefault || !hasView)
        result.push_back({NotificationCenter::defaultAction, DesktopNotification::defaultTitle});
    for (const auto& button : buttons) result.push_back({button.identifier, button.title});
    return result;
}

} // namespace

bool NotificationServer::can(std::string_view capability) const
{
    return std::ranges::find(capabilities, capability) != capabilities.end();
}

DesktopNotification DesktopNotification::of(const NotificationRequest& request,
                                            const std::vector<NotificationCategory::Button>& buttons,
                                            const NotificationServer& server)
{
    const bool persistent = request.style == NotificationStyle::persistent;
    DesktopNotification result;
    result.summary = plainText(request.title);
    result.body = bodyOf(request, server.can("body-markup"));
    result.actions = actionsOf(buttons, server);
    result.category = request.category;
    result.urgency = persistent ? Urgency::critical : Urgency::normal;
    result.expireTimeout = persistent ? untilAnswered : asServerChooses;
    if (persistent && server.can("sound")) result.soundName = "message-new-instant";
    result.suppressSound = !persistent;
    return result;
}

} // namespace quellon
