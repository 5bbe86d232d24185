#include "QuellonCore/Presentation/PlanTabModel.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>

namespace quellon {

namespace {

using MenuPresentation::format;

FormChoice profiles(const GuardSettings& settings)
{
    FormChoice choice;
    choice.label = "Plan profile";
    choice.accessibilityLabel = "Active plan profile";
    for (const PlanProfile& each : settings.profiles) {
        if (each.id == settings.activeProfileID) choice.selected = choice.options.size();
        choice.options.push_back({plainText(each.name), SettingsActions::SelectProfile{each.id}});
    }
    return choice;
}

std::string adjustment(std::int64_t offset)
{
    const auto bits = static_cast<std::uint64_t>(offset);
    return fmt::format("Adjusted by {}{} this cycle.", offset > 0 ? "+" : "−", format(offset > 0 ? bits : 0 - bits));
}

PlanTabModel::Cycle cycleModel(const BudgetStatus& status, std::int64_t offset, const SettingsState& state)
{
    PlanTabModel::Cycle cycle;
    cycle.used = {"Used",
                  fmt::format("{} ({}%)", format(status.usedBytes), nearestWhole(status.usedFraction() * 100.0))};
    cycle.left = {"Left", fmt::format("{} · {} days", format(status.remainingBytes()), status.daysRemaining)};
    cycle.note = "Measured at the network interface, so it includes protocol overhead and traffic from while the guard "
                 "wasn't running. Your carrier counts from their side, so expect a small difference either way.";
    if (status.unmeasuredGaps >= 1) {
        cycle.gaps = fmt::format("{} period(s) this cycle couldn't be measured (the hotspot interface was "
                                 "reconnected). Actual usage is higher than shown — calibrate below.",
                                 status.unmeasuredGaps);
    }
    cycle.carrier.field.kind = NumberField::Kind::carrierReading;
    cycle.carrier.label = "Carrier says";
    cycle.carrier.suffix = "GB";
    cycle.carrier.accessibilityLabel = "Usage your carrier shows, in gigabytes";
    cycle.carrier.prompt = "18.2";
    cycle.carrier.fill(state, std::nullopt);
    cycle.match = {"Match", "Match", SettingsActions::MatchCarrier{}};
    if (offset != 0) {
        cycle.clear = FormButton{"Clear", "Clear", SettingsActions::ClearCalibration{}};
        cycle.adjusted = adjustment(offset);
    }
    return cycle;
}

PlanTabModel::Question questionModel(const std::vector<RuleDerivation::PendingRuleChange>& changes)
{
    PlanTabModel::Question question;
    question.title = "Replace your limits with the derived defaults?";
    for (const auto& each : changes) question.changes.push_back(each.summary());
    question.replace = {"Replace", "Replace", SettingsActions::ReplaceRules{}};
    question.replace.destructive = true;
    question.keep = {"Keep mine", "Keep mine", SettingsActions::KeepRules{}};
    return question;
}

} // namespace

PlanTabModel PlanTabModel::of(const GuardEngine& engine, const SettingsState& state)
{
    const GuardSettings& settings = engine.settings();
    const PlanProfile& plan = settings.activeProfile();
    PlanTabModel model;
    model.plan = plan.id;
    model.profile = profiles(settings);
    model.name = {"Profile name", "Rename this profile", plainText(plan.name)};
    model.add = {"Add profile…", "Add a plan profile", SettingsActions::AddProfile{}};
    if (settings.profiles.size() >= 2) {
        model.remove =
            FormButton{"Delete this profile", "Delete the active profile", SettingsActions::DeleteProfile{plan.id}};
        model.remove->destructive = true;
        model.profilesFooter = "Each profile keeps its own monthly ledger. Switching remembers which profile you use "
                               "on which connection.";
    }
    model.planSize = FormControls::planSize(plan.planGB, state);
    model.startDay = FormControls::startDay(plan.billingCycleStartDay, state);
    model.usageProfile = FormControls::usageProfile(plan.usageProfile);
    model.rederive = {"Re-derive limits from plan", "Re-derive limits from plan", SettingsActions::RederiveRules{}};
    model.dailyBudget = FormControls::dailyBudget(settings.dailyBudgetBytes());
    if (const auto& status = engine.budgetStatus()) {
        model.cycle = cycleModel(*status, engine.budget().calibrationOffsetBytes, state);
    }
    if (!state.pendingRederive.empty()) model.question = questionModel(state.pendingRederive);
    return model;
}

} // namespace quellon
