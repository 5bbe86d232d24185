#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/FormControls.h"
#include "QuellonCore/Presentation/Tint.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The question whether applications may be looked up online.
struct ExplainConsentRow {
    std::string title;
    std::string text;
    FormButton allow;
    FormButton decline;

    /// Asked in the details of `app`. `machine` is what the machine is called.
    [[nodiscard]] static ExplainConsentRow of(const std::string& app, std::string_view machine);

    bool operator==(const ExplainConsentRow&) const = default;
};

/// One application: what it is, and what the guard has done to it.
struct AppDetailModel {
    /// What is known of it.
    struct Identity {
        std::string whatItIs;
        std::string whyTraffic;
        Tint adviceTint = Tint::secondary; ///< Of the dot before the advice.
        std::string advice;
        std::optional<std::string> limitNote;
        std::string provenance; ///< In small secondary text.
        bool operator==(const Identity&) const = default;
    };

    /// What stands there when nothing is known of it; of the middle three there is one at most.
    struct Unknown {
        std::string text;
        std::optional<std::string> lookingUp; ///< Beside a progress indicator.
        std::optional<ExplainConsentRow> consent;
        std::optional<FormButton> explain;
        std::optional<std::string> failure; ///< In orange.
        bool operator==(const Unknown&) const = default;
    };

    static constexpr std::string_view usageHeading = "Usage";
    static constexpr std::string_view actionsHeading = "Guard actions";

    std::string app;                     ///< Its name, fit for a line.
    std::optional<std::string> subtitle; ///< Its category and its maker, as far as they are known.
    FormChoice policy;
    std::optional<Identity> identity; ///< Either this,
    std::optional<Unknown> unknown;   ///< or this.
    FormStat lastHour;
    std::optional<std::string> chronic; ///< Told of one that is slow but steady.
    std::vector<std::string> actions;   ///< What the guard has done, in sentences.
    std::vector<FormButton> pauseControls;
    FormButton close;

    /// The model of `app`, a label as the engine has it. `askingConsent`: whether its details ask for the consent to
    /// lookups.
    [[nodiscard]] static AppDetailModel of(const GuardEngine& engine, const std::string& app, bool askingConsent,
                                           Date now);

    bool operator==(const AppDetailModel&) const = default;
};

} // namespace quellon
