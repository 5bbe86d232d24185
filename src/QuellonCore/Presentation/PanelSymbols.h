#pragma once

#include <array>
#include <string_view>

/// The names of the symbols that the menu panel draws.
namespace quellon::PanelSymbols {

inline constexpr std::string_view tether = "cable.connector";
inline constexpr std::string_view updateConsent = "arrow.triangle.2.circlepath";
inline constexpr std::string_view updateAvailable = "arrow.down.circle";
inline constexpr std::string_view profile = "simcard";
inline constexpr std::string_view profileMenu = "chevron.up.chevron.down";
inline constexpr std::string_view activeProfile = "checkmark";
inline constexpr std::string_view warning = "exclamationmark.triangle.fill";
inline constexpr std::string_view expanded = "chevron.down";
inline constexpr std::string_view collapsed = "chevron.right";
inline constexpr std::string_view paused = "pause.circle.fill";
inline constexpr std::string_view triggered = "bell.badge";
inline constexpr std::string_view neverTriggered = "checkmark.seal";

/// Each of them once.
inline constexpr std::array all{
    tether,  updateConsent, updateAvailable, profile, profileMenu, activeProfile,
    warning, expanded,      collapsed,       paused,  triggered,   neverTriggered,
};

} // namespace quellon::PanelSymbols
