#include "QuellonCore/Presentation/RulesTabModel.h"

#include "QuellonCore/Presentation/SettingsSymbols.h"
#include "QuellonCore/Rules/RuleDerivation.h"
#include "QuellonCore/Rules/RuleRiskNotice.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>

namespace quellon {

namespace {

FormChoice levels(const GuardRule& rule)
{
    FormChoice choice;
    choice.accessibilityLabel = fmt::format("Action for {} rule", rule.windowLabel());
    for (const auto& row : actionLevels.rows) {
        if (row.value == rule.level) choice.selected = choice.options.size();
        choice.options.push_back({std::string{row.label}, SettingsActions::SetRuleLevel{rule.id, row.value}});
    }
    return choice;
}

FormNumber limit(const GuardRule& rule, const SettingsState& state)
{
    constexpr double bytesPerMegabyte = 1024.0 * 1024.0;
    FormNumber number;
    number.field = {NumberField::Kind::ruleLimit, rule.id};
    number.suffix = "MB";
    number.accessibilityLabel = "Limit in megabytes";
    number.fill(state, static_cast<double>(rule.thresholdBytes) / bytesPerMegabyte);
    return number;
}

RulesTabModel::Row rowModel(const GuardRule& rule, double planGB, const SettingsState& state)
{
    RulesTabModel::Row row;
    row.rule = rule.id;
    row.windowLabel = rule.windowLabel();
    row.enabled = {fmt::format("Enable {} rule", row.windowLabel), rule.enabled,
                   SettingsActions::SetRuleEnabled{rule.id, !rule.enabled}};
    row.limit = limit(rule, state);
    row.share = fmt::format("≈ {:.1f}% of daily budget",
                            RuleDerivation::shareOfDailyBudget(rule.thresholdBytes, planGB) * 100.0);
    row.action = levels(rule);
    return row;
}

FormChoice steppingInModel(AppEdition edition, EnforcementAction present)
{
    FormChoice choice;
    choice.label = "When stepping in";
    choice.accessibilityLabel = choice.label;
    for (const EnforcementAction each : availableActions(edition)) {
        if (each == present) choice.selected = choice.options.size();
        choice.options.push_back(
            {std::string{enforcementActions.label(each)}, SettingsActions::SetEnforcementAction{each}});
    }
    return choice;
}

} // namespace

std::string RulesTabModel::windowName(Seconds window)
{
    constexpr double minute = 60.0;
    constexpr double hour = 3'600.0;
    if (window.count() >= hour) return fmt::format("{}h", nearestWhole(window.count() / hour));
    return fmt::format("{}min", nearestWhole(window.count() / minute));
}

RulesTabModel RulesTabModel::of(const GuardEngine& engine, const SettingsState& state)
{
    const GuardSettings& settings = engine.settings();
    const Capabilities& capabilities = engine.capabilities();
    RulesTabModel model;
    if (const auto reason = capabilities.enforcementBlockedReason()) {
        model.blocked = FormRemark{std::string{SettingsSymbols::enforcementBlocked}, std::string{*reason}};
    }
    if (const auto warning = RuleRiskNotice::forceQuitWarning(settings.rules(), settings.enforcementAction)) {
        model.risk = FormRemark{std::string{SettingsSymbols::risk}, std::string{*warning}};
    }
    for (const GuardRule& rule : settings.rules()) model.rows.push_back(rowModel(rule, settings.planGB(), state));
    for (const Seconds window : windows) {
        const std::string name = windowName(window);
        model.add.push_back({name, name, SettingsActions::AddRule{window}});
    }
    model.steppingIn = steppingInModel(capabilities.edition, settings.enforcementAction);
    return model;
}

} // namespace quellon
