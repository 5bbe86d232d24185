#pragma once

#include <cstdint>
#include <string_view>

/// Which of the program's windows is the open menu-bar panel.
namespace quellon::MenuBarPanelIdentity {

/// Stands in the class name of the windows that macOS makes for menu-bar panels.
inline constexpr std::string_view classNameMarker = "MenuBarExtraWindow";

/// The window level of pop-up menus on macOS.
inline constexpr std::int64_t popUpMenuLevel = 101;

/// True when the class name holds the marker or the level is that of pop-up menus: either proof is enough.
[[nodiscard]] constexpr bool isMenuBarPanel(std::string_view className, std::int64_t level)
{
    return level == popUpMenuLevel || className.find(classNameMarker) != std::string_view::npos;
}

} // namespace quellon::MenuBarPanelIdentity
