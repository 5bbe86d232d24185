#pragma once

#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Rules/ProtectionTable.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What the system is asked for through a command's text.
enum class ToolRole {
    nettop,       ///< Cumulative byte counters per process and connection.
    ps,           ///< The process table.
    route,        ///< The default route.
    ifconfig,     ///< The flags of one interface; takes its name.
    netstat,      ///< The byte counters of one interface; takes its name.
    networksetup, ///< Device names with their port names.
    startTime,    ///< A text that is fixed for the life of one process; takes its id.
    parent,       ///< The parent's process id; takes a process id.
};
inline constexpr std::size_t toolRoleCount = 8;

/// What the user's session starts programs by.
enum class SessionStart {
    desktopEntry, ///< A desktop entry in the autostart folder.
    launchAgent,  ///< A property list for launchd.
};

/// The facts in which the systems differ, as data: either record can be driven anywhere.
struct Platform {
    std::string name; ///< The word for the system, such as "Linux".

    /// The command of a role, complete but for the role's own argument.
    std::array<Command, toolRoleCount> tools;

    ProtectionTable protection; ///< What the guard never touches here.

    /// How the hint about a phone that is tethered but not used begins.
    std::string tetherTitle;
    /// What the user can do about it, line by line.
    std::string tetherSteps;
    /// What opens the system's network settings: an address for the system's opener, or where it is empty, programs of
    /// which the first that is installed is the one, named without a folder.
    std::string networkSettingsURL;
    std::vector<Command> networkSettingsPrograms;

    /// What a machine with this system is called: "Mac".
    std::string machine = "computer";

    /// What it means that the system does not tell what a process weighs, in a few words.
    std::string vitalsFailure = "/proc/self/status can't be read";

    SessionStart sessionStart = SessionStart::desktopEntry;

    /// The command that answers `role`, with `arguments` appended.
    [[nodiscard]] Command tool(ToolRole role, const std::vector<std::string>& arguments = {}) const;

    /// The system's own tools, by their absolute paths.
    [[nodiscard]] static Platform macOS();
    /// Every role answered by the resident helper `quellon-probe`, named without a folder: the host knows where it is.
    [[nodiscard]] static Platform linux();
    /// The system that this build is for.
    [[nodiscard]] static Platform current();

    bool operator==(const Platform&) const = default;
};

/// The helper's name in the tool table of Linux.
inline constexpr std::string_view probeName = "quellon-probe";

} // namespace quellon
