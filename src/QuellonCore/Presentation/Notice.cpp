#include "QuellonCore/Presentation/Notice.h"

#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Text.h"

namespace quellon {

Notice Notice::of(const NotificationPlan& plan, std::uint64_t serial)
{
    Notice result;
    result.style = plan.style;
    result.serial = serial;
    result.title = plainText(plan.title);
    for (std::string_view rest : {std::string_view{plan.subtitle}, std::string_view{plan.body}}) {
        while (!rest.empty()) {
            const std::string_view line = takeLine(rest);
            if (!line.empty()) result.text.push_back(plainText(line));
        }
    }
    for (const NotificationAction action : plan.actions) {
        result.buttons.push_back({notificationActions.label(action), isDestructive(action)});
    }
    return result;
}

} // namespace quellon
