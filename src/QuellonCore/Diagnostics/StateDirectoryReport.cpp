#include "QuellonCore/Diagnostics/StateDirectoryReport.h"

#include "QuellonCore/Persistence/Persistence.h"

#include <algorithm>
#include <array>

namespace quellon::StateDirectoryReport {

namespace {

constexpr std::array<std::string_view, 8> knownNames{
    Persistence::settingsFile,     Persistence::ledgerFile,   Persistence::budgetFile,
    Persistence::suspendedFile,    Persistence::livenessFile, Persistence::enforcementHistoryFile,
    Persistence::explanationsFile, Persistence::windowsFile,
};

} // namespace

StateFileKind classify(std::string_view fileName)
{
    if (fileName.ends_with(".tmp")) return StateFileKind::temporary;
    if (std::ranges::find(knownNames, fileName) != knownNames.end()) return StateFileKind::known;
    if (fileName.starts_with("budget-") && fileName.ends_with(".json")) return StateFileKind::profileBudget;
    return fileName.ends_with(".log") ? StateFileKind::log : StateFileKind::unknown;
}

std::vector<StateFileEntry> scan(const FileStore& files, const std::filesystem::path& directory)
{
    std::vector<StateFileEntry> result;
    for (FileFacts& file : files.regularFiles(directory)) {
        const StateFileKind kind = classify(file.name);
        result.push_back({std::move(file.name), file.byteCount, file.modifiedAt, kind});
    }
    return result;
}

} // namespace quellon::StateDirectoryReport
