#include "QuellonCore/Budget/PlanProfile.h"

#include "QuellonCore/Budget/PlanSize.h"
#include "QuellonCore/Rules/RuleDerivation.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>

#include <utility>

namespace quellon {

namespace {

std::string ownBudgetFile(const UUID& id)
{
    return fmt::format("budget-{}.json", id.text());
}

} // namespace

PlanProfile PlanProfile::makeDefault(std::string name, double planGB, std::int64_t billingCycleStartDay,
                                     UsageProfile usageProfile, std::optional<std::vector<GuardRule>> rules,
                                     IdentifierSource& ids)
{
    PlanProfile plan;
    plan.id = ids.next();
    plan.name = std::move(name);
    plan.planGB = planGB;
    plan.billingCycleStartDay = billingCycleStartDay;
    plan.usageProfile = usageProfile;
    plan.rules = rules ? *std::move(rules) : RuleDerivation::defaultRules(planGB, usageProfile, ids);
    return plan;
}

PlanProfile PlanProfile::makeAdditional(std::string name, IdentifierSource& ids)
{
    const PlanProfile defaults;
    PlanProfile plan = makeDefault(std::move(name), defaults.planGB, defaults.billingCycleStartDay,
                                   defaults.usageProfile, std::nullopt, ids);
    plan.budgetFile = ownBudgetFile(plan.id);
    return plan;
}

bool PlanProfile::canHold(double planGB)
{
    return fitsWhole(planBytes(planGB));
}

std::optional<PlanProfile> PlanProfile::fromJson(const Json& json, IdentifierSource& ids)
{
    JsonFields fields{json};
    PlanProfile plan;
    std::optional<UUID> id;
    std::optional<std::vector<GuardRule>> rules;
    fields.defaulted("id", id);
    fields.defaulted("name", plan.name);
    fields.defaulted("planGB", plan.planGB);
    fields.defaulted("billingCycleStartDay", plan.billingCycleStartDay);
    fields.defaulted("usageProfile", plan.usageProfile);
    fields.defaulted("rules", rules);
    fields.defaulted("budgetFile", plan.budgetFile);
    fields.require(canHold(plan.planGB));
    auto result = fields.result(std::move(plan));
    if (!result) return std::nullopt;
    result->id = id ? *id : ids.next();
    if (!Persistence::isFreeForBudgets(result->budgetFile)) result->budgetFile = ownBudgetFile(result->id);
    result->rules = rules ? *std::move(rules) : RuleDerivation::defaultRules(result->planGB, result->usageProfile, ids);
    return result;
}

Json PlanProfile::toJson() const
{
    Json json = Json::object();
    putField(json, "id", id);
    putField(json, "name", name);
    putField(json, "planGB", planGB);
    putField(json, "billingCycleStartDay", billingCycleStartDay);
    putField(json, "usageProfile", usageProfile);
    putField(json, "rules", rules);
    putField(json, "budgetFile", budgetFile);
    return json;
}

} // namespace quellon
