#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// What the breach of a rule calls for. Levels compare by their rank, `highlight` lowest.
enum class ActionLevel { highlight, notify, ask, enforce };

inline constexpr EnumTable<ActionLevel, 4> actionLevels{{{
    {ActionLevel::highlight, "highlight", "Highlight only"},
    {ActionLevel::notify, "notify", "Notify me"},
    {ActionLevel::ask, "ask", "Ask me"},
    {ActionLevel::enforce, "enforce", "Step in automatically"},
}}};

constexpr const auto& enumTable(ActionLevel /*type*/)
{
    return actionLevels;
}

/// 0 for `highlight` to 3 for `enforce`.
[[nodiscard]] constexpr int rank(ActionLevel level)
{
    return static_cast<int>(level);
}

} // namespace quellon
