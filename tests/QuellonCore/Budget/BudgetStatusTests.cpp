#include "QuellonCore/Budget/BudgetStatus.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>

namespace quellon {
namespace {

constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();

TEST(BudgetStatus, remainingBytesAndUsedFraction)
{
    struct Case {
        const char* name;
        std::uint64_t used;
        std::uint64_t plan;
        std::uint64_t remaining;
        double fraction;
    };
    constexpr Case cases[] = {
        {"nothing of nothing", 0, 0, 0, 0.0}, {"something of nothing", 5, 0, 0, 0.0},   {"nothing used", 0, 8, 8, 0.0},
        {"a quarter", 2, 8, 6, 0.25},         {"all but a byte", 7, 8, 1, 0.875},       {"all", 8, 8, 0, 1.0},
        {"more than all", 9, 8, 0, 1.0},      {"the largest plan", 0, most, most, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BudgetStatus status;
        status.usedBytes = c.used;
        status.planBytes = c.plan;
        EXPECT_EQ(status.remainingBytes(), c.remaining);
        EXPECT_EQ(status.usedFraction(), c.fraction);
    }
}

TEST(BudgetStatus, willOverrun)
{
    struct Case {
        const char* name;
        std::optional<Date> exhaustion;
        bool willOverrun;
    };
    constexpr Date end{Seconds{1'000.0}};
    const Case cases[] = {
        {"no forecast", std::nullopt, false},
        {"a moment before the end", end - Seconds{0.5}, true},
        {"at the end, which is the next cycle's", end, false},
        {"after the end", end + Seconds{0.5}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BudgetStatus status;
        status.cycleEnd = end;
        status.projectedExhaustion = c.exhaustion;
        EXPECT_EQ(status.willOverrun(), c.willOverrun);
    }
}

TEST(DailyBudgetStatus, whatFollowsFromIt)
{
    struct Case {
        const char* name;
        std::uint64_t used;
        std::uint64_t allowance;
        std::uint64_t remaining;
        bool isOver;
        double fraction;
    };
    constexpr Case cases[] = {
        {"nothing of nothing", 0, 0, 0, false, 0.0},
        {"an allowance of 0 is never exceeded", 5, 0, 0, false, 1.0},
        {"nothing used", 0, 8, 8, false, 0.0},
        {"a quarter", 2, 8, 6, false, 0.25},
        {"all is not over", 8, 8, 0, false, 1.0},
        {"a byte over", 9, 8, 0, true, 1.0},
        {"the largest numbers", most, most, 0, false, 1.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const DailyBudgetStatus status{c.used, c.allowance};
        EXPECT_EQ(status.remainingTodayBytes(), c.remaining);
        EXPECT_EQ(status.isOverToday(), c.isOver);
        EXPECT_EQ(status.usedFraction(), c.fraction);
    }
}

} // namespace
} // namespace quellon
