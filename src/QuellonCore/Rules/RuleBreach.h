#pragma once

#include "QuellonCore/Rules/GuardRule.h"

#include <cstdint>
#include <set>
#include <string>

namespace quellon {

/// One application over one rule.
struct RuleBreach {
    std::string app; ///< Its label.
    GuardRule rule;
    std::uint64_t bytes = 0;     ///< What the application used in the rule's window.
    std::set<std::int32_t> pids; ///< The processes that carried the bytes.

    [[nodiscard]] ActionLevel level() const { return rule.level; }

    bool operator==(const RuleBreach&) const = default;
};

} // namespace quellon
