#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// What the user does with the plan; how much of a day's budget one application may take follows from it.
enum class UsageProfile { light, developer, heavy };

inline constexpr EnumTable<UsageProfile, 3> usageProfiles{{{
    {UsageProfile::light, "light", "Light — mail, docs, browsing"},
    {UsageProfile::developer, "developer", "Development — code, dependencies, builds"},
    {UsageProfile::heavy, "heavy", "Heavy — video calls, streaming"},
}}};

constexpr const auto& enumTable(UsageProfile /*type*/)
{
    return usageProfiles;
}

} // namespace quellon
