#include "QuellonCore/Rules/GuardRule.h"

#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>

namespace quellon {

std::string windowLabel(Seconds window)
{
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 60 * minute;
    const std::int64_t seconds = nearestWhole(window.count());
    if (seconds % hour == 0) return fmt::format("{}h", seconds / hour);
    if (seconds % minute == 0) return fmt::format("{}min", seconds / minute);
    return fmt::format("{}s", seconds);
}

std::optional<GuardRule> GuardRule::fromJson(const Json& json)
{
    JsonFields fields{json};
    GuardRule rule;
    fields.required("id", rule.id);
    fields.required("windowSeconds", rule.windowSeconds);
    fields.required("thresholdBytes", rule.thresholdBytes);
    fields.required("level", rule.level);
    fields.required("enabled", rule.enabled);
    return fields.result(rule);
}

Json GuardRule::toJson() const
{
    Json json = Json::object();
    putField(json, "id", id);
    putField(json, "windowSeconds", windowSeconds);
    putField(json, "thresholdBytes", thresholdBytes);
    putField(json, "level", level);
    putField(json, "enabled", enabled);
    return json;
}

} // namespace quellon
