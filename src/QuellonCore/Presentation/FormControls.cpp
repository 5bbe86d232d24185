#include "QuellonCore/Presentation/FormControls.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Presentation/SettingsSymbols.h"
#include "QuellonCore/Support/Text.h"

#include <fmt/format.h>

namespace quellon {

void FormNumber::fill(const SettingsState& state, std::optional<double> value)
{
    const auto draft = state.drafts.find(field);
    if (draft == state.drafts.end()) {
        if (value) text = NumberField::text(*value);
        return;
    }
    text = draft->second;
    if (field.kind == NumberField::Kind::carrierReading && stripped(text).empty()) return;
    const auto reading = NumberField::read(field.kind, draft->second);
    if (!reading.value) refusal = reading.refusal;
}

namespace FormControls {

FormNumber planSize(double planGB, const SettingsState& state)
{
    FormNumber number;
    number.field.kind = NumberField::Kind::planSize;
    number.label = "Monthly plan";
    number.suffix = "GB";
    number.accessibilityLabel = "Monthly plan in gigabytes";
    number.fill(state, planGB);
    return number;
}

FormNumber startDay(std::int64_t day, const SettingsState& state)
{
    FormNumber number;
    number.field.kind = NumberField::Kind::startDay;
    number.label = "Billing starts on";
    number.suffix = "of each month";
    number.accessibilityLabel = "Billing cycle start day";
    number.fill(state, static_cast<double>(day));
    return number;
}

FormChoice usageProfile(UsageProfile present)
{
    FormChoice choice;
    choice.label = "Mainly used for";
    choice.accessibilityLabel = choice.label;
    for (const auto& row : usageProfiles.rows) {
        if (row.value == present) choice.selected = choice.options.size();
        choice.options.push_back({std::string{row.label}, SettingsActions::SetUsageProfile{row.value}});
    }
    return choice;
}

FormChoice policy(const std::string& app, AppPolicy present)
{
    FormChoice choice;
    choice.accessibilityLabel = fmt::format("Policy for {}", plainText(app));
    for (const auto& row : appPolicies.rows) {
        if (row.value == present) choice.selected = choice.options.size();
        choice.options.push_back({std::string{shortLabel(row.value)}, SettingsActions::SetPolicy{app, row.value}});
    }
    return choice;
}

FormButton details(const std::string& app)
{
    FormButton button;
    button.accessibilityLabel = fmt::format("Details for {}", plainText(app));
    button.action = SettingsActions::OpenDetails{app};
    button.symbol = SettingsSymbols::details;
    return button;
}

std::string dailyBudget(std::uint64_t bytes)
{
    return fmt::format("Daily budget {}", MenuPresentation::format(bytes));
}

} // namespace FormControls

} // namespace quellon
