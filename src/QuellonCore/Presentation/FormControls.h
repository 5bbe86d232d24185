#pragma once

#include "QuellonCore/Presentation/ActionButton.h"
#include "QuellonCore/Presentation/SettingsAction.h"
#include "QuellonCore/Presentation/SettingsState.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The controls of forms, as values: each text that stands in them, what a screen reader says, and what they do. A view
/// hands the action back.
namespace quellon {

using FormButton = ActionButton<SettingsAction>;

/// One of several.
struct FormChoice {
    struct Option {
        std::string title;
        SettingsAction action;
        bool operator==(const Option&) const = default;
    };
    std::string label; ///< Before the choice; empty where only a screen reader says what it is.
    std::string accessibilityLabel;
    std::vector<Option> options;
    std::optional<std::size_t> selected; ///< Absent when the present value is none that is offered.
    bool operator==(const FormChoice&) const = default;
};

/// On or off.
struct FormSwitch {
    std::string accessibilityLabel;
    bool on = false;
    SettingsAction action; ///< When it is pressed.
    bool operator==(const FormSwitch&) const = default;
};

/// A line of text; what it does with the text that is typed stands beside it in its model.
struct FormText {
    std::string label;
    std::string accessibilityLabel;
    std::string text;
    bool operator==(const FormText&) const = default;
};

/// A number. What is typed goes to `EditNumber`, the end of it to `CommitNumber`.
struct FormNumber {
    static constexpr int width = 70; ///< Of the field, in points.

    NumberField field;
    std::string label;
    std::string suffix;
    std::string accessibilityLabel;
    std::string prompt; ///< Stands in an empty field.
    std::string text;
    std::optional<std::string> refusal; ///< Why what was typed is not taken.
    bool operator==(const FormNumber&) const = default;

    /// Puts in what was typed, with the word why when it is refused, or else the present value.
    void fill(const SettingsState& state, std::optional<double> value);
};

/// A value with its name.
struct FormStat {
    std::string label;
    std::string value;
    bool operator==(const FormStat&) const = default;
};

/// A remark with a symbol.
struct FormRemark {
    std::string symbol;
    std::string text;
    bool operator==(const FormRemark&) const = default;
};

namespace FormControls {

/// The field for the size of the active plan.
[[nodiscard]] FormNumber planSize(double planGB, const SettingsState& state);
/// The field for the day on which its billing cycle starts.
[[nodiscard]] FormNumber startDay(std::int64_t day, const SettingsState& state);
/// "Mainly used for".
[[nodiscard]] FormChoice usageProfile(UsageProfile present);
/// The user's word on an application, in one word each.
[[nodiscard]] FormChoice policy(const std::string& app, AppPolicy present);
/// The small button that opens an application's details.
[[nodiscard]] FormButton details(const std::string& app);
/// "Daily budget 1.00 GB".
[[nodiscard]] std::string dailyBudget(std::uint64_t bytes);

} // namespace FormControls

} // namespace quellon
