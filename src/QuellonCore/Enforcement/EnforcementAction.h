#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// How the guard steps in.
enum class EnforcementAction {
    warn,      ///< No signal: it only tells.
    suspend,   ///< SIGSTOP, which can be undone.
    terminate, ///< SIGTERM, and SIGKILL when that was not heeded.
    kill,      ///< SIGKILL.
};

inline constexpr EnumTable<EnforcementAction, 4> enforcementActions{{{
    {EnforcementAction::warn, "warn", "仅提醒"},
    {EnforcementAction::suspend, "suspend", "暂停（可恢复）"},
    {EnforcementAction::terminate, "terminate", "退出"},
    {EnforcementAction::kill, "kill", "强制结束"},
}}};

constexpr const auto& enumTable(EnforcementAction /*type*/)
{
    return enforcementActions;
}

} // namespace quellon
