#pragma once

#include "QuellonCore/Host/FileStore.h"
#include "QuellonCore/Support/EnumTable.h"
#include "QuellonCore/Support/Time.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What a file of the state folder is, by its name.
enum class StateFileKind {
    known,         ///< One of the files that every guard has.
    profileBudget, ///< The budget of a plan that was added.
    temporary,     ///< Left over by a save that failed.
    log,
    unknown,
};

inline constexpr EnumTable<StateFileKind, 5> stateFileKinds{{{
    {StateFileKind::known, "known", "State"},
    {StateFileKind::profileBudget, "profileBudget", "Budget of a plan"},
    {StateFileKind::temporary, "temporary", "Left over"},
    {StateFileKind::log, "log", "Log"},
    {StateFileKind::unknown, "unknown", "Unknown"},
}}};

constexpr const auto& enumTable(StateFileKind /*type*/)
{
    return stateFileKinds;
}

/// A file of the state folder.
struct StateFileEntry {
    std::string name;
    std::uint64_t byteCount = 0;
    std::optional<Date> modifiedAt;
    StateFileKind kind = StateFileKind::unknown;
    bool operator==(const StateFileEntry&) const = default;
};

/// What lies in the state folder.
namespace StateDirectoryReport {

/// The kind of a file with this name. What ends in ".tmp" is temporary, whatever it begins with.
[[nodiscard]] StateFileKind classify(std::string_view fileName);

/// The regular files of the folder, by name; none for a folder that can't be listed.
[[nodiscard]] std::vector<StateFileEntry> scan(const FileStore& files, const std::filesystem::path& directory);

} // namespace StateDirectoryReport

} // namespace quellon
