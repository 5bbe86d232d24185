#include "QuellonCore/Diagnostics/SamplingDiagnostics.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using Verdict = SamplingDiagnostics::Verdict;
using namespace std::chrono_literals;

TEST(SamplingDiagnostics, verdict)
{
    struct Case {
        const char* name;
        std::optional<Seconds> lastDuration;
        Seconds interval;
        Verdict verdict;
    };
    constexpr Case cases[] = {
        {"fresh", std::nullopt, 5s, Verdict::unknown},
        {"fresh, with no time between ticks", std::nullopt, 0s, Verdict::unknown},
        {"as long as the interval", 5s, 5s, Verdict::overlapping},
        {"longer than the interval", 6s, 5s, Verdict::overlapping},
        {"just below the interval", Seconds{4.99}, 5s, Verdict::slow},
        {"one second", 1s, 5s, Verdict::slow},
        {"just below one second", Seconds{0.99}, 5s, Verdict::healthy},
        {"short, but as long as a short interval", Seconds{0.5}, Seconds{0.5}, Verdict::overlapping},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SamplingDiagnostics sampling;
        if (c.lastDuration) sampling.recordCompleted(*c.lastDuration, Date{});
        EXPECT_EQ(sampling.verdict(c.interval), c.verdict);
    }
}

TEST(SamplingDiagnostics, theMaximumStaysAndTheVerdictFollowsTheLast)
{
    SamplingDiagnostics sampling;
    sampling.recordCompleted(6s, Date{10s});
    sampling.recordCompleted(Seconds{0.25}, Date{20s});
    const SamplingDiagnostics expected{Seconds{0.25}, 6s, 2, 0, Date{20s}, std::nullopt};
    EXPECT_EQ(sampling, expected);
    EXPECT_EQ(sampling.verdict(5s), Verdict::healthy);
}

TEST(SamplingDiagnostics, aSkippedTickLeavesTheDurationsAlone)
{
    SamplingDiagnostics sampling;
    sampling.recordCompleted(2s, Date{10s});
    sampling.recordSkipped(Date{15s});
    const SamplingDiagnostics expected{Seconds{2}, 2s, 1, 1, Date{10s}, Date{15s}};
    EXPECT_EQ(sampling, expected);
}

TEST(SamplingDiagnostics, skipRate)
{
    SamplingDiagnostics sampling;
    EXPECT_EQ(sampling.skipRate(), 0.0);
    sampling.recordSkipped(Date{});
    EXPECT_EQ(sampling.skipRate(), 1.0);
    for (int i = 0; i < 3; ++i) sampling.recordCompleted(1s, Date{});
    EXPECT_EQ(sampling.skipRate(), 0.25);
}

} // namespace
} // namespace quellon
