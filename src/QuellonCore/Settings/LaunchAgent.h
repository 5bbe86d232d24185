#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// The property list in `~/Library/LaunchAgents` that has macOS start a program when the user logs in.
namespace quellon::LaunchAgent {

inline constexpr std::string_view fileName = "org.quellon.Quellon.plist";

/// The list that starts `executable`. Absent for a path that it can't hold: a relative one, one with a control
/// character in it, one that is not UTF-8. What the program leaves behind, its watchdogs, is let alone when it ends.
[[nodiscard]] std::optional<std::string> text(const std::filesystem::path& executable);

/// True for a list that macOS acts on: one with a program that is not disabled.
[[nodiscard]] bool isOn(std::string_view list);

/// True when it is `executable`, written as in `text`, that the list starts, whatever options follow.
[[nodiscard]] bool starts(std::string_view list, const std::filesystem::path& executable);

} // namespace quellon::LaunchAgent
