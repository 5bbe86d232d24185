#include "QuellonCore/Support/Checked.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace quellon {
namespace {

using testing::ExitedWithCode;

constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr double twoTo63 = 9'223'372'036'854'775'808.0;
constexpr double twoTo64 = 18'446'744'073'709'551'616.0;
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(Checked, addUnsigned)
{
    EXPECT_EQ(checkedAdd(std::uint64_t{0}, std::uint64_t{0}), 0U);
    EXPECT_EQ(checkedAdd(most, std::uint64_t{0}), most);
    EXPECT_EQ(checkedAdd(most - 5, std::uint64_t{5}), most);
    EXPECT_EQ(checkedAdd(std::uint64_t{1}, most - 1), most);
}

TEST(Checked, addAndSubtractSigned)
{
    struct Case {
        const char* name;
        std::int64_t a;
        std::int64_t b;
        std::int64_t sum;
    };
    constexpr Case cases[] = {
        {"nothing", 0, 0, 0},
        {"up to the largest", largest - 5, 5, largest},
        {"the largest and nothing", largest, 0, largest},
        {"down to the smallest", smallest + 5, -5, smallest},
        {"the smallest and nothing", smallest, 0, smallest},
        {"the far ends", largest, -largest, 0},
        {"from below 0 to above", -5, largest, largest - 5},
        {"from above 0 to below", 5, smallest, smallest + 5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(checkedAdd(c.a, c.b), c.sum);
        EXPECT_EQ(checkedSubtract(c.sum, c.b), c.a);
    }
}

TEST(Checked, wholeIsCutTowardsZero)
{
    struct Case {
        const char* name;
        double value;
        std::uint64_t whole;
    };
    constexpr Case cases[] = {
        {"nothing", 0.0, 0},
        {"minus nothing", -0.0, 0},
        {"a fraction", 5.999, 5},
        {"a little more than minus one", -0.999, 0},
        {"2^63", twoTo63, std::uint64_t{1} << 63},
        {"the last double below 2^64", 18'446'744'073'709'549'568.0, 18'446'744'073'709'549'568U},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(checkedWhole(c.value), c.whole);
    }
}

TEST(Checked, signedUpToTheLargest)
{
    EXPECT_EQ(checkedSigned(0), 0);
    EXPECT_EQ(checkedSigned(most >> 1), largest);
}

TEST(Checked, nearestWhole)
{
    struct Case {
        const char* name;
        double value;
        std::int64_t whole;
    };
    constexpr Case cases[] = {
        {"cut towards zero", 5.999, 5},
        {"and from below", -5.999, -5},
        {"the last double below 2^63", 9'223'372'036'854'774'784.0, 9'223'372'036'854'774'784},
        {"2^63", twoTo63, largest},
        {"far above", 1e300, largest},
        {"minus 2^63", -twoTo63, smallest},
        {"the next double below", -9'223'372'036'854'777'856.0, smallest},
        {"far below", -1e300, smallest},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(nearestWhole(c.value), c.whole);
    }
}

TEST(CheckedDeathTest, whatDoesNotFitEndsTheProgram)
{
    struct Case {
        const char* name;
        void (*compute)();
        const char* message;
    };
    constexpr Case cases[] = {
        {"one beyond the largest count", [] { (void)checkedAdd(most, std::uint64_t{1}); }, "byte counter overflow"},
        {"two largest counts", [] { (void)checkedAdd(most, most); }, "byte counter overflow"},
        {"one beyond the largest", [] { (void)checkedAdd(largest, std::int64_t{1}); }, "signed counter overflow"},
        {"one beyond the smallest", [] { (void)checkedAdd(smallest, std::int64_t{-1}); }, "signed counter overflow"},
        {"one less than the smallest", [] { (void)checkedSubtract(smallest, 1); }, "signed counter overflow"},
        {"one less below the largest", [] { (void)checkedSubtract(largest, -1); }, "signed counter overflow"},
        {"the smallest with its sign changed", [] { (void)checkedSubtract(0, smallest); }, "signed counter overflow"},
        {"a count of 2^63", [] { (void)checkedSigned(std::uint64_t{1} << 63); }, "signed counter overflow"},
        {"minus one", [] { (void)checkedWhole(-1.0); }, "does not fit"},
        {"2^64", [] { (void)checkedWhole(twoTo64); }, "does not fit"},
        {"a count that is no number", [] { (void)checkedWhole(noNumber); }, "does not fit"},
        {"a count without end", [] { (void)checkedWhole(infinite); }, "does not fit"},
        {"no number", [] { (void)nearestWhole(noNumber); }, "not finite"},
        {"infinity", [] { (void)nearestWhole(infinite); }, "not finite"},
        {"minus infinity", [] { (void)nearestWhole(-infinite); }, "not finite"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EXIT(c.compute(), ExitedWithCode(70), c.message);
    }
}

} // namespace
} // namespace quellon
