#include "ReplayVerbs.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace quellon::ReplayVerbs {

namespace {

/// One key of the settings' file: where it goes. `fields` holds that key and no other.
struct Key {
    const char* name;
    void (*take)(JsonFields& fields, const char* name, GuardSettings& settings, IdentifierSource& ids);
};

/// A key that is a field of the settings.
template <auto field>
constexpr auto plain = [](JsonFields& fields, const char* name, GuardSettings& settings, IdentifierSource& /*ids*/) {
    fields.defaulted(name, settings.*field);
};

/// A key that is a field of the active plan.
template <auto field>
constexpr auto ofPlan = [](JsonFields& fields, const char* name, GuardSettings& settings, IdentifierSource& /*ids*/) {
    fields.defaulted(name, settings.activeProfile().*field);
};

void takePlans(JsonFields& fields, const char* name, GuardSettings& settings, IdentifierSource& ids)
{
    const auto read = [&ids](const Json& json) -> std::optional<std::vector<PlanProfile>> {
        std::vector<PlanProfile> plans;
        if (!json.is_array()) return std::nullopt;
        for (const Json& each : json) {
            auto plan = PlanProfile::fromJson(each, ids);
            if (!plan) return std::nullopt;
            plans.push_back(*std::move(plan));
        }
        return plans;
    };
    fields.defaulted(name, settings.profiles, read);
    fields.require(!settings.profiles.empty());
}

void takePlanSize(JsonFields& fields, const char* name, GuardSettings& settings, IdentifierSource& /*ids*/)
{
    double size = settings.planGB();
    fields.defaulted(name, size);
    fields.require(PlanProfile::canHold(size));
    if (PlanProfile::canHold(size)) settings.planGB() = size;
}

/// In the order in which they take effect: which plan is the active one comes before what it holds.
constexpr std::array<Key, 22> keys{{
    {"profiles", takePlans},
    {"activeProfileID", plain<&GuardSettings::activeProfileID>},
    {"lastProfileByInterface", plain<&GuardSettings::lastProfileByInterface>},
    {"planGB", takePlanSize},
    {"billingCycleStartDay", ofPlan<&PlanProfile::billingCycleStartDay>},
    {"profile", ofPlan<&PlanProfile::usageProfile>},
    {"rules", ofPlan<&PlanProfile::rules>},
    {"sampleInterval", plain<&GuardSettings::sampleInterval>},
    {"direction", plain<&GuardSettings::direction>},
    {"meteredOnly", plain<&GuardSettings::meteredOnly>},
    {"notify", plain<&GuardSettings::notify>},
    {"enforcementAction", plain<&GuardSettings::enforcementAction>},
    {"snoozeMinutes", plain<&GuardSettings::snoozeMinutes>},
    {"appPolicies", plain<&GuardSettings::appPolicies>},
    {"mutedAsksUntil", plain<&GuardSettings::mutedAsksUntil>},
    {"presetSeededApps", plain<&GuardSettings::presetSeededApps>},
    {"protectedExtra", plain<&GuardSettings::protectedExtra>},
    {"onboarded", plain<&GuardSettings::onboarded>},
    {"tetherHintDismissed", plain<&GuardSettings::tetherHintDismissed>},
    {"updateCheckConsent", plain<&GuardSettings::updateCheckConsent>},
    {"updateLastCheckedAt", plain<&GuardSettings::updateLastCheckedAt>},
    {"explainConsent", plain<&GuardSettings::explainConsent>},
}};

bool isKnown(std::string_view name)
{
    return std::any_of(keys.begin(), keys.end(), [name](const Key& key) { return key.name == name; });
}

} // namespace

void assignSettings(const Json& json, GuardSettings& settings, IdentifierSource& ids)
{
    if (!json.is_object()) throw ReplayError{"settings: not an object"};
    for (const auto& [name, value] : json.items()) {
        if (!isKnown(name)) throw ReplayError{"settings: \"" + name + "\" is no key of the settings' file"};
    }
    for (const Key& key : keys) {
        if (!json.contains(key.name)) continue;
        const Json alone = {{key.name, json.at(key.name)}};
        JsonFields fields{alone};
        key.take(fields, key.name, settings, ids);
        if (!fields.result(true)) {
            throw ReplayError{std::string{"settings: \""} + key.name + "\" has a value that the file could not hold"};
        }
    }
}

} // namespace quellon::ReplayVerbs
