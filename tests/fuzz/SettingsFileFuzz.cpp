#include "QuellonCore/Rules/RuleDerivation.h"
#include "QuellonCore/Settings/GuardSettings.h"
#include "StateFile.h"

#include <algorithm>

namespace {

using namespace quellon;

/// `migratedFromLegacyPlan` is left out: it is never saved.
std::optional<GuardSettings> readSettings(const Json& json)
{
    fuzz::CountedIdentifiers ids;
    auto settings = GuardSettings::fromJson(json, ids);
    if (settings) settings->migratedFromLegacyPlan = false;
    return settings;
}

void useActivePlan(GuardSettings& settings, IdentifierSource& ids)
{
    FUZZ_CHECK(settings.requiredRetention() >= GuardSettings::leastRetention);
    FUZZ_CHECK(settings.primaryWindow() <= settings.requiredRetention());
    FUZZ_CHECK(settings.enabledRuleCount() <= settings.rules().size());
    FUZZ_CHECK(settings.dailyBudgetBytes() == RuleDerivation::dailyBudgetBytes(settings.planGB()));
    const auto rules = settings.rules();
    for (const GuardRule& rule : rules) FUZZ_CHECK(!rule.windowLabel().empty());
    settings.rederiveRules(ids);
    for (const auto& change : RuleDerivation::pendingChanges(rules, settings.rules())) {
        FUZZ_CHECK(change.summary().starts_with(change.windowLabel));
    }
}

void useSettings(const GuardSettings& read)
{
    fuzz::CountedIdentifiers ids;
    GuardSettings settings = read;
    settings.normalize(ids);
    FUZZ_CHECK(settings == read);
    FUZZ_CHECK(settings.activeProfile().id == settings.activeProfileID);
    for (const std::string& app : settings.protectedExtra) {
        FUZZ_CHECK(settings.appPolicies.policy(app) != AppPolicy::global);
    }
    for (const PlanProfile& plan : read.profiles) {
        settings.activeProfileID = plan.id;
        useActivePlan(settings, ids);
    }
    settings.addDevToolPresets();
    for (const std::string& app : read.presetSeededApps) {
        settings.setPolicy(AppPolicy::always, app);
        FUZZ_CHECK(!settings.wasSeededByPreset(app));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    quellon::fuzz::checkStateFile(data, size, readSettings, useSettings);
    return 0;
}
