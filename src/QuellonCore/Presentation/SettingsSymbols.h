#pragma once

#include <array>
#include <string_view>

/// The names of the symbols that the settings window and what stands in it draw, beside those of the tabs.
namespace quellon::SettingsSymbols {

inline constexpr std::string_view enforcementBlocked = "lock.fill";
inline constexpr std::string_view risk = "exclamationmark.triangle.fill";
inline constexpr std::string_view details = "info.circle";
inline constexpr std::string_view remove = "minus.circle";
inline constexpr std::string_view noApps = "square.stack.3d.up.slash";
inline constexpr std::string_view opensMenu = "chevron.down";
inline constexpr std::string_view infoEvent = "info.circle";
inline constexpr std::string_view warningEvent = "exclamationmark.triangle";
inline constexpr std::string_view enforcedEvent = "hand.raised.fill";

/// Each of them once.
inline constexpr std::array all{enforcementBlocked, risk,         details,      remove, noApps,
                                opensMenu,          warningEvent, enforcedEvent};

} // namespace quellon::SettingsSymbols
