#pragma once

#include "QuellonCore/Presentation/OnboardingModel.h"
#include "QuellonCore/Presentation/SettingsModel.h"

#include <functional>
#include <vector>

namespace quellon {

/// The settings window at one moment.
struct SettingsMoment {
    const char* name;
    std::function<SettingsModel()> model;
};

/// Every page and sheet, in all states that look different.
[[nodiscard]] std::vector<SettingsMoment> settingsMoments();

/// The first-run window.
[[nodiscard]] OnboardingModel onboardingMoment();

} // namespace quellon
