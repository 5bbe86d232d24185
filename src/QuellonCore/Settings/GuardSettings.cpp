#include "QuellonCore/Settings/GuardSettings.h"

#include "QuellonCore/Rules/DevToolPresets.h"
#include "QuellonCore/Rules/RuleDerivation.h"
#include "QuellonCore/Support/Fatal.h"

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

constexpr Seconds defaultWindow{60.0};

auto planWith(auto& profiles, const UUID& id)
{
    return std::find_if(profiles.begin(), profiles.end(), [&id](const PlanProfile& plan) { return plan.id == id; });
}

auto& activePlan(auto& settings)
{
    if (settings.profiles.empty()) fatal("settings without a plan");
    const auto active = planWith(settings.profiles, settings.activeProfileID);
    return active != settings.profiles.end() ? *active : settings.profiles.front();
}

std::optional<std::vector<PlanProfile>> readPlans(const Json& json, IdentifierSource& ids)
{
    if (!json.is_array()) return std::nullopt;
    std::vector<PlanProfile> plans;
    for (const Json& each : json) {
        auto plan = PlanProfile::fromJson(each, ids);
        if (!plan) return std::nullopt;
        plans.push_back(*std::move(plan));
    }
    return plans;
}

/// The plan of a file that knows only one; absent when it can't be read.
std::optional<PlanProfile> readSinglePlan(JsonFields& fields, IdentifierSource& ids)
{
    PlanProfile plan;
    std::optional<std::vector<GuardRule>> rules;
    fields.defaulted("planGB", plan.planGB);
    fields.defaulted("billingCycleStartDay", plan.billingCycleStartDay);
    fields.defaulted("profile", plan.usageProfile);
    fields.defaulted("rules", rules);
    fields.require(PlanProfile::canHold(plan.planGB));
    const auto readable = fields.result(plan);
    if (!readable) return std::nullopt;
    return PlanProfile::makeDefault(plan.name, plan.planGB, plan.billingCycleStartDay, plan.usageProfile,
                                    std::move(rules), ids);
}

/// False when they can't be read.
bool takePlans(JsonFields& fields, GuardSettings& settings, IdentifierSource& ids)
{
    fields.defaulted("profiles", settings.profiles, [&ids](const Json& json) { return readPlans(json, ids); });
    if (settings.profiles.empty()) {
        auto plan = readSinglePlan(fields, ids);
        if (!plan) return false;
        settings.profiles.push_back(*std::move(plan));
        settings.activeProfileID = settings.profiles.front().id;
        settings.migratedFromLegacyPlan = true;
    } else {
        settings.activeProfileID = settings.profiles.front().id;
        fields.defaulted("activeProfileID", settings.activeProfileID);
        fields.defaulted("lastProfileByInterface", settings.lastProfileByInterface);
    }
    return true;
}

/// For files that don't tell where policies came from: the presets, when every one of them is in force.
std::set<std::string, std::less<>> seededPresets(const AppPolicyTable& policies)
{
    const auto& names = DevToolPresets::names;
    const bool isSeeded = std::all_of(names.begin(), names.end(), [&policies](std::string_view name) {
        return policies.policy(name) == AppPolicy::always;
    });
    if (!isSeeded) return {};
    return {names.begin(), names.end()};
}

/// What the older list protects is never limited, unless a policy says something else.
void foldProtectedExtra(GuardSettings& settings)
{
    for (const std::string& app : settings.protectedExtra) {
        if (settings.appPolicies.policy(app) == AppPolicy::global) settings.appPolicies.set(AppPolicy::never, app);
    }
}

} // namespace

GuardSettings GuardSettings::defaults(IdentifierSource& ids)
{
    GuardSettings settings;
    settings.normalize(ids);
    return settings;
}

std::optional<GuardSettings> GuardSettings::fromJson(const Json& json, IdentifierSource& ids)
{
    JsonFields fields{json};
    GuardSettings settings;
    if (!takePlans(fields, settings, ids)) return std::nullopt;
    fields.defaulted("sampleInterval", settings.sampleInterval);
    fields.defaulted("direction", settings.direction);
    fields.defaulted("meteredOnly", settings.meteredOnly);
    fields.defaulted("notify", settings.notify);
    fields.defaulted("enforcementAction", settings.enforcementAction);
    fields.defaulted("snoozeMinutes", settings.snoozeMinutes);
    fields.defaulted("protectedExtra", settings.protectedExtra);
    fields.defaulted("onboarded", settings.onboarded);
    fields.defaulted("tetherHintDismissed", settings.tetherHintDismissed);
    fields.defaulted("updateCheckConsent", settings.updateCheckConsent);
    fields.defaulted("updateLastCheckedAt", settings.updateLastCheckedAt);
    fields.defaulted("explainConsent", settings.explainConsent);
    fields.defaulted("appPolicies", settings.appPolicies);
    fields.defaulted("mutedAsksUntil", settings.mutedAsksUntil);
    settings.presetSeededApps = seededPresets(settings.appPolicies);
    fields.defaulted("presetSeededApps", settings.presetSeededApps);
    auto result = fields.result(std::move(settings));
    if (!result) return std::nullopt;
    foldProtectedExtra(*result);
    result->normalize(ids);
    return result;
}

Json GuardSettings::toJson() const
{
    const PlanProfile& active = activeProfile();
    Json json = Json::object();
    putField(json, "profiles", profiles);
    putField(json, "activeProfileID", activeProfileID);
    putField(json, "lastProfileByInterface", lastProfileByInterface);
    putField(json, "planGB", active.planGB);
    putField(json, "billingCycleStartDay", active.billingCycleStartDay);
    putField(json, "profile", active.usageProfile);
    putField(json, "rules", active.rules);
    putField(json, "sampleInterval", sampleInterval);
    putField(json, "direction", direction);
    putField(json, "meteredOnly", meteredOnly);
    putField(json, "notify", notify);
    putField(json, "enforcementAction", enforcementAction);
    putField(json, "snoozeMinutes", snoozeMinutes);
    putField(json, "appPolicies", appPolicies);
    putField(json, "protectedExtra", protectedExtra);
    putField(json, "onboarded", onboarded);
    putField(json, "tetherHintDismissed", tetherHintDismissed);
    putField(json, "updateCheckConsent", updateCheckConsent);
    putField(json, "updateLastCheckedAt", updateLastCheckedAt);
    putField(json, "explainConsent", explainConsent);
    putField(json, "mutedAsksUntil", mutedAsksUntil);
    putField(json, "presetSeededApps", presetSeededApps);
    return json;
}

void GuardSettings::normalize(IdentifierSource& ids)
{
    if (profiles.empty()) {
        const PlanProfile plan;
        profiles.push_back(PlanProfile::makeDefault(plan.name, plan.planGB, plan.billingCycleStartDay,
                                                    plan.usageProfile, std::nullopt, ids));
    }
    if (planWith(profiles, activeProfileID) == profiles.end()) activeProfileID = profiles.front().id;
    std::erase_if(lastProfileByInterface,
                  [this](const auto& entry) { return planWith(profiles, entry.second) == profiles.end(); });
}

PlanProfile& GuardSettings::activeProfile()
{
    return activePlan(*this);
}

const PlanProfile& GuardSettings::activeProfile() const
{
    return activePlan(*this);
}

const GuardRule* GuardSettings::primaryRule() const
{
    const GuardRule* primary = nullptr;
    for (const GuardRule& rule : rules()) {
        if (rule.enabled && (primary == nullptr || rule.windowSeconds < primary->windowSeconds)) primary = &rule;
    }
    return primary;
}

Seconds GuardSettings::primaryWindow() const
{
    const GuardRule* rule = primaryRule();
    return rule != nullptr ? rule->windowSeconds : defaultWindow;
}

Seconds GuardSettings::requiredRetention() const
{
    Seconds longest = leastRetention;
    for (const GuardRule& rule : rules()) {
        if (rule.enabled) longest = std::max(longest, rule.windowSeconds);
    }
    return longest;
}

std::size_t GuardSettings::enabledRuleCount() const
{
    return static_cast<std::size_t>(
        std::count_if(rules().begin(), rules().end(), [](const GuardRule& rule) { return rule.enabled; }));
}

std::uint64_t GuardSettings::dailyBudgetBytes() const
{
    return RuleDerivation::dailyBudgetBytes(planGB());
}

void GuardSettings::rederiveRules(IdentifierSource& ids)
{
    rules() = RuleDerivation::defaultRules(planGB(), profile(), ids);
}

void GuardSettings::setPolicy(AppPolicy policy, std::string_view app)
{
    appPolicies.set(policy, app);
    if (const auto seeded = presetSeededApps.find(app); seeded != presetSeededApps.end()) {
        presetSeededApps.erase(seeded);
    }
}

void GuardSettings::addDevToolPresets()
{
    for (std::string& app : appPolicies.addDevToolPresets()) presetSeededApps.insert(std::move(app));
}

bool GuardSettings::wasSeededByPreset(std::string_view app) const
{
    return presetSeededApps.contains(app) && appPolicies.policy(app) == AppPolicy::always;
}

} // namespace quellon
