#include "QuellonCore/Measurement/UsageSums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace quellon {
namespace {

using Pids = UsageSums::Pids;
using Usages = std::vector<AppUsage>;

constexpr std::uint64_t half = std::uint64_t{1} << 63;

Date at(double seconds)
{
    return Date{Seconds{seconds}};
}

Usages since(const UsageSums& sums, double cutoff)
{
    Usages usages = sums.since(at(cutoff));
    std::sort(usages.begin(), usages.end(), [](const AppUsage& a, const AppUsage& b) { return a.app < b.app; });
    return usages;
}

TEST(UsageSums, chargesInAnyOrderAreFoundByDate)
{
    struct Case {
        const char* name;
        std::vector<double> dates; ///< Each date is charged its own number of bytes, by a process of that number.
    };
    const Case cases[] = {
        {"ascending", {1, 2, 4, 8}},
        {"descending", {8, 4, 2, 1}},
        {"mixed", {4, 1, 8, 2}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        UsageSums sums;
        for (const double date : c.dates) {
            sums.add("app", at(date), static_cast<std::uint64_t>(date), {static_cast<std::int32_t>(date)});
        }
        EXPECT_EQ(since(sums, 0), (Usages{{"app", 15, {1, 2, 4, 8}}}));
        EXPECT_EQ(since(sums, 2), (Usages{{"app", 14, {2, 4, 8}}})) << "the edge is inside";
        EXPECT_EQ(since(sums, 2.5), (Usages{{"app", 12, {4, 8}}}));
        EXPECT_EQ(since(sums, 8), (Usages{{"app", 8, {8}}}));
        EXPECT_EQ(since(sums, 8.5), Usages{});
        EXPECT_EQ(sums.bytesSince(at(2.5), "app"), 12U);
        EXPECT_EQ(sums.bytesSince(at(9), "app"), 0U);
        EXPECT_EQ(sums.bytesSince(at(0), "nobody"), 0U);

        sums.dropBefore(at(2), "app", {1});
        EXPECT_EQ(since(sums, 0), (Usages{{"app", 14, {2, 4, 8}}}));
        sums.dropBefore(at(2), "nobody", {1});
        sums.dropBefore(at(9), "app", {2, 4, 8});
        EXPECT_EQ(since(sums, 0), Usages{});
    }
}

TEST(UsageSums, chargesOfOneDateStayTogether)
{
    UsageSums sums;
    sums.add("app", at(5), 1, {1});
    sums.add("app", at(5), 2, {2});
    sums.add("app", at(4), 4, {3});
    sums.add("app", at(5), 8, {});
    EXPECT_EQ(since(sums, 5), (Usages{{"app", 11, {1, 2}}}));
    sums.dropBefore(at(5), "app", {3});
    EXPECT_EQ(since(sums, 0), (Usages{{"app", 11, {1, 2}}}));
}

TEST(UsageSums, aProcessStaysAsLongAsItsLatestCharge)
{
    UsageSums sums;
    sums.add("app", at(9), 1, {7});
    sums.add("app", at(1), 1, {7, 8});
    EXPECT_EQ(since(sums, 5), (Usages{{"app", 1, {7}}}));
    sums.dropBefore(at(5), "app", {7, 8});
    EXPECT_EQ(since(sums, 0), (Usages{{"app", 1, {7}}}));
}

TEST(UsageSums, aChargeOfNothingIsOne)
{
    UsageSums sums;
    sums.add("app", at(1), 0, {});
    EXPECT_EQ(since(sums, 1), (Usages{{"app", 0, {}}}));
}

TEST(UsageSums, applicationsAreApart)
{
    UsageSums sums;
    sums.add("a", at(1), 1, {1});
    sums.add("b", at(2), 2, {1});
    sums.add("", at(3), 4, {1});
    EXPECT_EQ(since(sums, 2), (Usages{{"", 4, {1}}, {"b", 2, {1}}}));
    sums.erase("b");
    sums.erase("nobody");
    EXPECT_EQ(since(sums, 0), (Usages{{"", 4, {1}}, {"a", 1, {1}}}));
    sums.clear();
    EXPECT_EQ(since(sums, 0), Usages{});
}

TEST(UsageSums, whatWasForgottenTakesNoRoomInTheCounter)
{
    UsageSums sums;
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        sums.add("app", at(i), half + 1, {i});
        sums.dropBefore(at(i), "app", {i - 1});
        sums.add("app", at(i + 0.5), half - 2, {i});
        EXPECT_EQ(since(sums, 0), (Usages{{"app", std::numeric_limits<std::uint64_t>::max(), {i}}}));
        EXPECT_EQ(sums.bytesSince(at(i + 0.5), "app"), half - 2);
        sums.dropBefore(at(i + 0.5), "app", {i});
        sums.dropBefore(at(i + 1), "app", {i});
    }
}

TEST(UsageSumsDeathTest, aSumThatDoesNotFitEndsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    UsageSums sums;
    sums.add("app", at(2), half, {});
    sums.add("other", at(1), half, {});
    sums.add("app", at(1), half - 1, {});
    EXPECT_EXIT(sums.add("app", at(0), 1, {}), testing::ExitedWithCode(70), "fatal: byte counter overflow");
}

} // namespace
} // namespace quellon
