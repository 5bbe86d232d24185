#include "QuellonCore/Support/FiledSum.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace quellon {
namespace {

constexpr std::uint64_t largest = 4'611'686'018'427'387'904U;

TEST(FiledSum, takesAsMuchAsItSays)
{
    EXPECT_EQ(FiledSum::largest, largest);
    struct Case {
        const char* name;
        std::vector<std::uint64_t> taken;
        std::uint64_t refused;
    };
    const Case cases[] = {
        {"one byte too many at once", {}, largest + 1},
        {"the largest number", {}, std::numeric_limits<std::uint64_t>::max()},
        {"one byte beyond the largest sum", {largest}, 1},
        {"one byte beyond many", {largest - 3, 1, 0, 2}, 1},
        {"what would come round to a small number", {1}, std::numeric_limits<std::uint64_t>::max()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FiledSum sum;
        for (const std::uint64_t bytes : c.taken) EXPECT_TRUE(sum.add(bytes));
        EXPECT_FALSE(sum.add(c.refused));
        EXPECT_TRUE(sum.add(0)) << "what is refused is not added";
    }
}

} // namespace
} // namespace quellon
