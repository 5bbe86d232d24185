#pragma once

#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Support/EnumTable.h"

#include <array>
#include <span>
#include <string_view>

namespace quellon {

/// The flavour of a build. The label of the table is the name that people see.
enum class AppEdition { pro, appStore };

inline constexpr EnumTable<AppEdition, 2> appEditions{{{
    {AppEdition::pro, "pro", "Quellon Pro"},
    {AppEdition::appStore, "appStore", "Quellon"},
}}};

constexpr const auto& enumTable(AppEdition /*type*/)
{
    return appEditions;
}

/// The edition of this build.
inline constexpr AppEdition currentEdition = AppEdition::pro;

/// The name that people see.
[[nodiscard]] constexpr std::string_view displayName(AppEdition edition)
{
    return appEditions.label(edition);
}

/// Whether the edition may signal other processes.
[[nodiscard]] constexpr bool allowsEnforcement(AppEdition edition)
{
    return edition == AppEdition::pro;
}

/// Whether the edition may run the system's tools.
[[nodiscard]] constexpr bool allowsSystemCommands(AppEdition edition)
{
    return allowsEnforcement(edition);
}

/// The ways to step in, mildest first.
inline constexpr std::array<EnforcementAction, 4> interventions{EnforcementAction::warn, EnforcementAction::suspend,
                                                                EnforcementAction::terminate, EnforcementAction::kill};

/// The ways to step in that the edition offers, in the order in which they are shown.
[[nodiscard]] constexpr std::span<const EnforcementAction> availableActions(AppEdition edition)
{
    return std::span{interventions}.first(allowsEnforcement(edition) ? interventions.size() : 1);
}

} // namespace quellon
