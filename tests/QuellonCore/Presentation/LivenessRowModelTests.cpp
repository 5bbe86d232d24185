#include "QuellonCore/Presentation/LivenessRowModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using Text = LivenessRowModel::Text;
using testing::ElementsAre;

constexpr Date now = Date{} + Seconds{8e8};

LivenessStats stats(std::int64_t triggers, double guardedSeconds)
{
    LivenessStats result;
    result.triggerCount = triggers;
    result.totalGuardedSeconds = guardedSeconds;
    return result;
}

TEST(LivenessRowModel, withAPeak)
{
    LivenessStats withPeak = stats(3, 100.0);
    withPeak.record("evil\nname", 32U << 20U, "1min", now);
    const auto row = LivenessRowModel::of(withPeak, "1min", 10U << 20U, now);
    EXPECT_EQ(row.symbol, "");
    EXPECT_THAT(row.texts, ElementsAre(Text{"Peak this week", Tint::secondary},
                                       Text{"evil�name 32.0 MB", Tint::primary}, Text{"of 10.0 MB", Tint::secondary}));
    EXPECT_EQ(LivenessRowModel::of(withPeak, "1min", 0, now).texts.back().text, "of 0.0 MB") << "without a rule";
}

TEST(LivenessRowModel, withoutAPeak)
{
    struct Case {
        const char* name;
        std::int64_t triggers;
        double guarded;
        const char* symbol;
        const char* summary;
        const char* duration;
    };
    constexpr Case cases[] = {
        {"a fresh start", 0, 0.0, "checkmark.seal", "never triggered", "guarding for 0m"},
        {"never", 0, 11'520.0, "checkmark.seal", "never triggered", "guarding for 3h 12m"},
        {"once", 1, 60.0, "bell.badge", "1 times", "guarding for 1m"},
        {"often", 12, 190'800.0, "bell.badge", "12 times", "guarding for 2d 5h"},
        {"a count below 0, from a file", -1, 0.0, "bell.badge", "-1 times", "guarding for 0m"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto row = LivenessRowModel::of(stats(c.triggers, c.guarded), "1min", 1, now);
        EXPECT_EQ(row.symbol, c.symbol);
        EXPECT_THAT(row.texts, ElementsAre(Text{c.summary}, Text{"·"}, Text{c.duration}));
    }
}

TEST(LivenessRowModel, onlyThePeakOfTheWindowAndOfTheWeek)
{
    LivenessStats peaks = stats(0, 0.0);
    peaks.record("A", 1, "5min", now);
    EXPECT_EQ(LivenessRowModel::of(peaks, "1min", 1, now).symbol, "checkmark.seal") << "of another window";
    EXPECT_EQ(LivenessRowModel::of(peaks, "5min", 1, now).symbol, "");
    EXPECT_EQ(LivenessRowModel::of(peaks, "5min", 1, now + LivenessStats::peakAge).symbol, "") << "just a week old";
    EXPECT_EQ(LivenessRowModel::of(peaks, "5min", 1, now + LivenessStats::peakAge + Seconds{1}).symbol,
              "checkmark.seal");
}

} // namespace
} // namespace quellon
