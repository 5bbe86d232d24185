#pragma once

#include "QuellonCore/Budget/BudgetStore.h"
#include "QuellonCore/Enforcement/EnforcementHistory.h"
#include "QuellonCore/Enforcement/SuspendedApp.h"
#include "QuellonCore/Knowledge/ExplanationCache.h"
#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Presentation/LivenessStats.h"
#include "QuellonCore/Settings/SettingsText.h"
#include "QuellonCore/Settings/WindowPlaces.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// A state file and what the program makes of a text in it: the text of the next save, or absent when it is not read.
struct StateRecord {
    std::string_view file;
    std::optional<std::string> (*reencode)(std::string_view);
};

template <typename T>
std::optional<std::string> reencode(std::string_view text)
{
    const auto value = decode<T>(text);
    return value ? std::optional{encode(*value)} : std::nullopt;
}

inline constexpr std::array<StateRecord, 8> stateRecords{{
    {Persistence::ledgerFile, reencode<UsageLedger::Snapshot>},
    {Persistence::settingsFile,
     [](std::string_view text) -> std::optional<std::string> {
         const auto settings = decodeSettings(text);
         return settings ? std::optional{encode(*settings)} : std::nullopt;
     }},
    {Persistence::budgetFile, reencode<BudgetStore>},
    {Persistence::suspendedFile, reencode<std::vector<SuspendedApp>>},
    {Persistence::enforcementHistoryFile, reencode<EnforcementHistory>},
    {Persistence::livenessFile, reencode<LivenessStats>},
    {Persistence::explanationsFile, reencode<ExplanationCache>},
    {Persistence::windowsFile, reencode<WindowPlaces>},
}};

} // namespace quellon
