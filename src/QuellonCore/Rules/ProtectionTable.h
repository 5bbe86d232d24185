#pragma once

#include "QuellonCore/Rules/ExecutableNames.h"

#include <string>
#include <vector>

namespace quellon {

/// What is never touched on a system, whatever the rules say. docs/protection.md tells where each name comes from.
struct ProtectionTable {
    /// Programs that are protected with all that shares their process group, in the order of looking.
    ExecutableNames protectedNames;

    /// Of the names above, command-line tools that are also the names of ordinary applications: inside a bundle
    /// (".app") they are not protected.
    ExecutableNames cliOnlyNames;

    /// Shells of sessions: protected with their process group where they lead it. A shell that runs a script for some
    /// other program doesn't.
    ExecutableNames loginShells;

    /// Parts of the session that are protected alone: they share a process group with every application that they
    /// start.
    ExecutableNames machineryNames;

    /// Executables whose path begins with one of these are the system's.
    std::vector<std::string> systemPathPrefixes;

    [[nodiscard]] static ProtectionTable macOS();
    [[nodiscard]] static ProtectionTable linux();

    bool operator==(const ProtectionTable&) const = default;
};

} // namespace quellon
