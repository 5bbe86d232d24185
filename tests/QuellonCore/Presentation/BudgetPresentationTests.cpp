#include "QuellonCore/Presentation/BudgetPresentation.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using BudgetPresentation::Row;
using BudgetPresentation::Tint;

constexpr std::uint64_t mega = 1024 * 1024;
constexpr std::uint64_t giga = 1024 * mega;
/// 2026-03-01 00:00:00 UTC.
constexpr Date march = Date{} + std::chrono::hours{24 * 9190};

BudgetStatus status(std::uint64_t used, std::uint64_t plan)
{
    BudgetStatus result;
    result.usedBytes = used;
    result.planBytes = plan;
    result.cycleStart = march;
    result.cycleEnd = march + std::chrono::hours{24 * 31};
    result.daysRemaining = 12;
    return result;
}

TEST(BudgetPresentation, everythingAtOnce)
{
    BudgetStatus cycle = status(9 * giga + giga / 5, 10 * giga);
    cycle.projectedExhaustion = march + std::chrono::hours{24 * 19 + 10};
    cycle.unmeasuredGaps = 2;
    const Row row = BudgetPresentation::row(cycle, DailyBudgetStatus{400 * mega, 300 * mega}, Calendar{});
    EXPECT_EQ(row.amounts, "9.20 GB / 10.00 GB");
    EXPECT_NEAR(row.fraction, 0.92, 1e-6);
    EXPECT_EQ(row.tint, Tint::red);
    EXPECT_EQ(row.rest, "819.2 MB left · 12d to reset");
    EXPECT_EQ(row.runsOut, "runs out Mar 20");
    ASSERT_TRUE(row.today);
    EXPECT_EQ(*row.today, (BudgetPresentation::Today{"400.0 MB / 300.0 MB", "over today's pace", Tint::orange}));
    EXPECT_EQ(row.gaps, "at least — 2 gap(s) couldn't be measured");
}

TEST(BudgetPresentation, anUnusedPlan)
{
    const Row row = BudgetPresentation::row(status(0, 30 * giga), std::nullopt, Calendar{});
    EXPECT_EQ(row.amounts, "0.0 MB / 30.00 GB");
    EXPECT_EQ(row.fraction, 0.0);
    EXPECT_EQ(row.rest, "30.00 GB left · 12d to reset");
    EXPECT_EQ(row.runsOut, std::nullopt);
    EXPECT_EQ(row.today, std::nullopt);
    EXPECT_EQ(row.gaps, std::nullopt);
}

TEST(BudgetPresentation, cycleTint)
{
    struct Case {
        const char* name;
        std::uint64_t used, plan;
        std::optional<Seconds> exhaustion; ///< Before the end of the cycle.
        Tint tint;
    };
    const Case cases[] = {
        {"nothing used", 0, 1000, {}, Tint::green},
        {"below 0.7", 699, 1000, {}, Tint::green},
        {"exactly 0.7", 700, 1000, {}, Tint::yellow},
        {"below 0.9", 899, 1000, {}, Tint::yellow},
        {"exactly 0.9", 900, 1000, {}, Tint::red},
        {"all", 1000, 1000, {}, Tint::red},
        {"more than all", 5000, 1000, {}, Tint::red},
        {"a plan of nothing", 0, 0, {}, Tint::green},
        {"a plan of nothing, overrun", 5, 0, {}, Tint::green},
        {"a plan of nothing that runs out", 5, 0, 1s, Tint::red},
        {"runs out before the end", 1, 1000, 1s, Tint::red},
        {"runs out at the end", 1, 1000, 0s, Tint::green},
        {"runs out after the end", 1, 1000, -1s, Tint::green},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BudgetStatus cycle = status(c.used, c.plan);
        if (c.exhaustion) cycle.projectedExhaustion = cycle.cycleEnd - *c.exhaustion;
        const Row row = BudgetPresentation::row(cycle, std::nullopt, Calendar{});
        EXPECT_EQ(row.tint, c.tint);
        EXPECT_EQ(row.runsOut.has_value(), c.exhaustion == Seconds{1s});
    }
}

TEST(BudgetPresentation, today)
{
    struct Case {
        const char* name;
        std::uint64_t used, allowance;
        const char* rest;
        Tint tint;
    };
    constexpr Case cases[] = {
        {"nothing used", 0, 100 * mega, "100.0 MB left today", Tint::secondary},
        {"below 0.85", 84 * mega, 100 * mega, "16.0 MB left today", Tint::secondary},
        {"exactly 0.85", 85 * mega, 100 * mega, "15.0 MB left today", Tint::yellow},
        {"exactly all", 100 * mega, 100 * mega, "0.0 MB left today", Tint::yellow},
        {"one byte above", 100 * mega + 1, 100 * mega, "over today's pace", Tint::orange},
        {"no share, nothing used", 0, 0, "", Tint::secondary},
        {"no share, and used", 1, 0, "", Tint::yellow},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Row row = BudgetPresentation::row(status(0, giga), DailyBudgetStatus{c.used, c.allowance}, Calendar{});
        ASSERT_TRUE(row.today);
        EXPECT_EQ(row.today->rest, c.rest);
        EXPECT_EQ(row.today->tint, c.tint);
    }
}

TEST(BudgetPresentation, theDayIsTheUsersOwn)
{
    BudgetStatus cycle = status(1, 1000);
    cycle.projectedExhaustion = march - 1h;
    EXPECT_EQ(BudgetPresentation::row(cycle, std::nullopt, Calendar{}).runsOut, "runs out Feb 28");
    EXPECT_EQ(BudgetPresentation::row(cycle, std::nullopt, Calendar{"Asia/Tokyo"}).runsOut, "runs out Mar 1");
}

} // namespace
} // namespace quellon
