#pragma once

#include "QuellonCore/Host/FileStore.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Support/EnumTable.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// Whether this process works on the user's real state or on a copy, for diagnostics.
namespace quellon::DebugStateGuard {

/// What the state folder of a process is.
struct Isolation {
    enum class Reason {
        explicitOverride, ///< The environment names the folder.
        transientSandbox, ///< A throw-away folder of this process.
    };

    std::optional<Reason> reason; ///< Why the state is isolated; absent for the user's real state.

    [[nodiscard]] static constexpr Isolation isolated(Reason reason) { return {reason}; }
    [[nodiscard]] static constexpr Isolation realState() { return {std::nullopt}; }

    /// Whether operations that change state on purpose are allowed: never on the user's real files.
    [[nodiscard]] constexpr bool allowsMutation() const { return reason.has_value(); }

    bool operator==(const Isolation&) const = default;
};

inline constexpr EnumTable<Isolation::Reason, 2> isolationReasons{{{
    {Isolation::Reason::explicitOverride, "explicitOverride", "Chosen by QUELLON_STATE_DIR"},
    {Isolation::Reason::transientSandbox, "transientSandbox", "A throw-away folder"},
}}};

constexpr const auto& enumTable(Isolation::Reason /*type*/)
{
    return isolationReasons;
}

/// The per-user folder for application data; the home folder where the platform names none.
[[nodiscard]] std::filesystem::path applicationSupport(const FileStore& files);

/// The folder that the real application uses, whatever this process is.
[[nodiscard]] std::filesystem::path realStateDirectory(const FileStore& files);

/// The isolation of this process, whose state `persistence` keeps.
[[nodiscard]] Isolation current(const Host& host, const Persistence& persistence);

/// The isolation of the state folder `resolved`, paths compared in their canonical form: an override that leads to the
/// real folder isolates nothing.
[[nodiscard]] Isolation isolation(const FileStore& files, const std::filesystem::path& resolved,
                                  const std::filesystem::path& realState, const std::optional<std::string>& override);

/// A shell command that starts the program on a state folder of its own. Only the executable's path is quoted.
[[nodiscard]] std::string relaunchCommand(std::string_view executablePath, std::string_view stateDirectory);

} // namespace quellon::DebugStateGuard
