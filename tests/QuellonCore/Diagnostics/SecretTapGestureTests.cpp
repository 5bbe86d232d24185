#include "QuellonCore/Diagnostics/SecretTapGesture.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using Outcome = SecretTapGesture::Outcome;

constexpr Date start{Seconds{795'261'600}};

TEST(SecretTapGesture, advance)
{
    struct Case {
        const char* name;
        int count;
        std::optional<Date> last;
        Date now;
        Outcome outcome;
    };
    constexpr Case cases[] = {
        {"the first tap", 0, std::nullopt, start, Outcome::counting(1)},
        {"a count without a tap", 6, std::nullopt, start, Outcome::counting(1)},
        {"the second", 1, start, start + Seconds{1.9}, Outcome::counting(2)},
        {"the sixth", 5, start, start + Seconds{1.9}, Outcome::counting(6)},
        {"the seventh", 6, start, start + Seconds{1.9}, Outcome::triggered()},
        {"just in time", 6, start, start + Seconds{1.999}, Outcome::triggered()},
        {"too late", 6, start, start + Seconds{2.0}, Outcome::counting(1)},
        {"much too late", 3, start, start + Seconds{3600.0}, Outcome::counting(1)},
        {"at the same moment", 6, start, start, Outcome::triggered()},
        {"a clock that went back", 2, start, start - Seconds{3600.0}, Outcome::counting(3)},
        {"more than ever can be", 100, start, start, Outcome::triggered()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(SecretTapGesture::advance(c.count, c.last, c.now), c.outcome);
    }
}

TEST(SecretTapCounter, sevenQuickTaps)
{
    SecretTapCounter counter;
    for (int round = 0; round < 2; ++round) {
        for (int tap = 1; tap < 7; ++tap) {
            const Date now = start + Seconds{1.9} * tap;
            EXPECT_FALSE(counter.registerTap(now)) << tap;
            EXPECT_EQ(counter, (SecretTapCounter{tap, now}));
        }
        EXPECT_TRUE(counter.registerTap(start + Seconds{1.9} * 7));
        EXPECT_EQ(counter, SecretTapCounter{}) << "the next series begins anew";
    }
}

TEST(SecretTapCounter, aPauseBeginsAnew)
{
    SecretTapCounter counter;
    for (int tap = 0; tap < 6; ++tap) EXPECT_FALSE(counter.registerTap(start + Seconds{1.0} * tap));
    EXPECT_FALSE(counter.registerTap(start + Seconds{7.0}));
    EXPECT_EQ(counter.count, 1);
    for (int tap = 1; tap < 6; ++tap) EXPECT_FALSE(counter.registerTap(start + Seconds{7.0 + tap}));
    EXPECT_TRUE(counter.registerTap(start + Seconds{13.0}));
}

} // namespace
} // namespace quellon
