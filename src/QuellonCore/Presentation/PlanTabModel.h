#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/FormControls.h"

#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// The settings window's page about the data plans.
struct PlanTabModel {
    /// How the present billing cycle goes, and the carrier's word on it.
    struct Cycle {
        FormStat used;
        FormStat left;
        std::string note;
        std::optional<std::string> gaps; ///< In orange: what could not be counted.
        FormNumber carrier;
        FormButton match;
        std::optional<FormButton> clear;
        std::optional<std::string> adjusted; ///< By how much the count is corrected.
        bool operator==(const Cycle&) const = default;
    };

    /// The question before rules are lost.
    struct Question {
        std::string title;
        std::vector<std::string> changes; ///< One per line.
        FormButton replace;
        FormButton keep; ///< Also what closing the question in any other way does.
        bool operator==(const Question&) const = default;
    };

    static constexpr std::string_view cycleHeading = "This cycle";

    UUID plan; ///< The active plan, which all but `profile` and `add` is about.
    FormChoice profile;
    FormText name; ///< What is typed goes to `RenameProfile`, with `plan`.
    FormButton add;
    std::optional<FormButton> remove;          ///< With two plans or more.
    std::optional<std::string> profilesFooter; ///< With two plans or more.
    FormNumber planSize;
    FormNumber startDay;
    FormChoice usageProfile;
    FormButton rederive;
    std::string dailyBudget;
    std::optional<Cycle> cycle;
    std::optional<Question> question;

    [[nodiscard]] static PlanTabModel of(const GuardEngine& engine, const SettingsState& state);

    bool operator==(const PlanTabModel&) const = default;
};

} // namespace quellon
