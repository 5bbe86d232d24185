#pragma once

#include "QuellonCore/Support/Time.h"

#include <cstdint>
#include <optional>

namespace quellon {

/// Where a plan's billing cycle stands.
struct BudgetStatus {
    std::uint64_t usedBytes = 0;
    std::uint64_t planBytes = 0;
    Date cycleStart;
    Date cycleEnd;                           ///< The first moment of the next cycle.
    int daysRemaining = 0;                   ///< Whole days to `cycleEnd`, by the calendar; never negative.
    std::optional<Date> projectedExhaustion; ///< When the plan will be used up; absent when that is not in sight.
    std::int64_t unmeasuredGaps = 0;         ///< How often in this cycle traffic could not be counted.

    /// What the plan still holds; 0 when more was used.
    [[nodiscard]] std::uint64_t remainingBytes() const { return planBytes > usedBytes ? planBytes - usedBytes : 0; }

    /// 0.0 for a plan of 0 bytes, otherwise used / plan, at most 1.0.
    [[nodiscard]] double usedFraction() const;

    /// True when the forecast lies before the end of the cycle.
    [[nodiscard]] bool willOverrun() const { return projectedExhaustion && *projectedExhaustion < cycleEnd; }

    bool operator==(const BudgetStatus&) const = default;
};

/// Today's share of what is left of a cycle.
struct DailyBudgetStatus {
    std::uint64_t usedTodayBytes = 0;
    std::uint64_t allowanceBytes = 0; ///< Stays the same in the course of a day.

    /// What today's share still holds; 0 when more was used.
    [[nodiscard]] std::uint64_t remainingTodayBytes() const
    {
        return allowanceBytes > usedTodayBytes ? allowanceBytes - usedTodayBytes : 0;
    }

    /// True when more than the allowance was used; never with an allowance of 0.
    [[nodiscard]] bool isOverToday() const { return allowanceBytes != 0 && usedTodayBytes > allowanceBytes; }

    /// Used / allowance, at most 1.0; with an allowance of 0, 1.0 if anything was used and 0.0 if not.
    [[nodiscard]] double usedFraction() const;

    bool operator==(const DailyBudgetStatus&) const = default;
};

} // namespace quellon
