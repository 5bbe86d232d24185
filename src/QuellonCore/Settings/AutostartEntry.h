#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// The file in a Linux desktop's autostart folder that has the desktop start a program with the session, in the format
/// of desktop entries.
namespace quellon::AutostartEntry {

inline constexpr std::string_view fileName = "org.quellon.Quellon.desktop";

/// The entry that starts `executable`. Absent for a path that the format can't hold: a relative one, one with a control
/// character or an equals sign in it, one that is not UTF-8.
[[nodiscard]] std::optional<std::string> text(const std::filesystem::path& executable);

/// True for an entry that the desktop acts on: one with a command that is neither hidden nor switched off by a
/// desktop's own settings. An absent key is as if it said false.
[[nodiscard]] bool isOn(std::string_view entry);

/// True when it is `executable`, written as in `text`, that the entry starts, whatever options follow.
[[nodiscard]] bool starts(std::string_view entry, const std::filesystem::path& executable);

} // namespace quellon::AutostartEntry
