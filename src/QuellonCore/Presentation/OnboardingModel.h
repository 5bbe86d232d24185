#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/FormControls.h"

#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The first-run window: what the user's plan is, and the limits that follow from it.
struct OnboardingModel {
    /// One of the limits.
    struct Limit {
        std::string over;
        std::string window;
        std::string level;
        bool operator==(const Limit&) const = default;
    };

    static constexpr std::string_view windowTitle = "Welcome to Quellon";
    static constexpr std::string_view title = "Quellon";
    static constexpr std::string_view text = "Stops apps from quietly burning your hotspot data.";
    static constexpr std::string_view previewHeading = "Will be set up as";
    static constexpr std::string_view note =
        "Warnings are delivered on screen. Allowing notifications adds a second way to reach you.";

    FormNumber planSize;
    FormNumber startDay;
    FormChoice usageProfile;
    std::string dailyBudget;
    std::vector<Limit> limits;
    FormButton start; ///< Can't be pressed while what was typed is refused.

    /// The preview is of the plan as it stands in the fields, or where that is refused, of the plan as it is.
    [[nodiscard]] static OnboardingModel of(const GuardEngine& engine, const SettingsState& state);

    bool operator==(const OnboardingModel&) const = default;
};

} // namespace quellon
