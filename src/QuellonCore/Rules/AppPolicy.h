#pragma once

#include "QuellonCore/Support/EnumTable.h"

#include <string_view>

namespace quellon {

/// The user's word on one application.
enum class AppPolicy {
    never,  ///< It is never touched.
    global, ///< The rules apply. Means the same as no word at all.
    always, ///< The guard asks as soon as it moves data on a hotspot.
};

inline constexpr EnumTable<AppPolicy, 3> appPolicies{{{
    {AppPolicy::never, "never", "Never limit"},
    {AppPolicy::global, "global", "Use global rules"},
    {AppPolicy::always, "always", "Always block on hotspot"},
}}};

constexpr const auto& enumTable(AppPolicy /*type*/)
{
    return appPolicies;
}

/// The label in one word: "Never", "Global" or "Block".
[[nodiscard]] constexpr std::string_view shortLabel(AppPolicy policy)
{
    switch (policy) {
    case AppPolicy::never:
        return "Never";
    case AppPolicy::always:
        return "Block";
    case AppPolicy::global:
        break;
    }
    return "Global";
}

} // namespace quellon
