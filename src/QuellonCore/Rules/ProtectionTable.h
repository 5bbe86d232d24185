#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quellon {

/// What is never touched on a system, whatever the rules say. Names are those of executables and are compared without
/// regard to case. docs/protection.md tells where each comes from.
struct ProtectionTable {
    /// Programs that are protected with all that shares their process group, in the order of looking.
    std::vector<std::string> protectedNames;

    /// Of the names above, command-line tools that are also the names of ordinary applications: inside a bundle
    /// (".app") they are not protected.
    std::vector<std::string> cliOnlyNames;

    /// Shells of sessions: protected with their process group where they lead it. A shell that runs a script for some
    /// other program doesn't.
    std::vector<std::string> loginShells;

    /// Parts of the session that are protected alone: they share a process group with every application that they
    /// start.
    std::vector<std::string> machineryNames;

    /// Executables whose path begins with one of these are the system's.
    std::vector<std::string> systemPathPrefixes;

    /// A command without a slash is the kernel's name of the process, which ends after so many bytes; 0 where commands
    /// are never cut.
    std::size_t kernelNameLength = 0;

    [[nodiscard]] static ProtectionTable macOS();
    [[nodiscard]] static ProtectionTable linux();

    bool operator==(const ProtectionTable&) const = default;
};

} // namespace quellon
