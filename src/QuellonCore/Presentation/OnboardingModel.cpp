#include "QuellonCore/Presentation/OnboardingModel.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Rules/RuleDerivation.h"

#include <fmt/format.h>

namespace quellon {

namespace {

/// For rules that are only looked at.
struct NoIdentifiers final : IdentifierSource {
    UUID next() override { return {}; }
};

/// The plan's size as it stands in its field.
double shownPlanSize(const FormNumber& field, double present)
{
    const auto typed = NumberField::read(field.field.kind, field.text).value;
    // What was not typed is only shown rounded.
    return typed && field.text != NumberField::text(present) ? *typed : present;
}

} // namespace

OnboardingModel OnboardingModel::of(const GuardEngine& engine, const SettingsState& state)
{
    const PlanProfile& plan = engine.settings().activeProfile();
    OnboardingModel model;
    model.planSize = FormControls::planSize(plan.planGB, state);
    model.planSize.label = "My plan";
    model.planSize.suffix = "GB / month";
    model.startDay = FormControls::startDay(plan.billingCycleStartDay, state);
    model.usageProfile = FormControls::usageProfile(plan.usageProfile);
    const double planGB = shownPlanSize(model.planSize, plan.planGB);
    model.dailyBudget = FormControls::dailyBudget(RuleDerivation::dailyBudgetBytes(planGB));
    NoIdentifiers none;
    for (const GuardRule& rule : RuleDerivation::defaultRules(planGB, plan.usageProfile, none)) {
        model.limits.push_back({fmt::format("Over {}", MenuPresentation::format(rule.thresholdBytes)),
                                fmt::format("in {}", rule.windowLabel()), std::string{actionLevels.label(rule.level)}});
    }
    model.start = {"Start guarding", "Start guarding", SettingsActions::StartGuarding{}};
    model.start.enabled = !model.planSize.refusal && !model.startDay.refusal;
    return model;
}

} // namespace quellon
