#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/FormControls.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The settings window's page about the rules of the active plan.
struct RulesTabModel {
    /// One rule.
    struct Row {
        UUID rule;
        FormSwitch enabled;
        std::string windowLabel;
        FormNumber limit;
        std::string share; ///< Of the day's budget.
        FormChoice action;
        bool operator==(const Row&) const = default;
    };

    /// A sentence with one part in bold.
    struct Headline {
        std::string_view before = "Step in when ";
        std::string_view bold = "any";
        std::string_view after = " of these is exceeded";
        bool operator==(const Headline&) const = default;
    };

    /// The windows that a new rule can have.
    static constexpr std::array<Seconds, 4> windows{Seconds{60.0}, Seconds{300.0}, Seconds{900.0}, Seconds{3'600.0}};
    static constexpr std::string_view addTitle = "Add rule";

    Headline headline;
    std::optional<FormRemark> blocked; ///< Why the guard can't step in here.
    std::optional<FormRemark> risk;    ///< A dangerous combination of choices.
    std::vector<Row> rows;             ///< In the plan's order.
    std::vector<FormButton> add;       ///< What the menu `addTitle` offers.
    FormChoice steppingIn;

    [[nodiscard]] static RulesTabModel of(const GuardEngine& engine, const SettingsState& state);

    /// The length of a window: whole hours from one hour on ("1h"), otherwise whole minutes ("5min"), the rest cut off.
    [[nodiscard]] static std::string windowName(Seconds window);

    bool operator==(const RulesTabModel&) const = default;
};

} // namespace quellon
