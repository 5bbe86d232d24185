#include "QuellonHost/Posix/SystemVersion.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(SystemVersion, numbers)
{
    struct Case {
        const char* name;
        const char* release;
        const char* numbers;
    };
    constexpr Case cases[] = {
        {"Debian", "6.1.0-31-amd64", "6.1.0"},
        {"a release candidate", "6.12.0-rc3+", "6.12.0"},
        {"two numbers", "5.15-custom", "5.15.0"},
        {"one number", "7", "7.0.0"},
        {"four numbers", "3.10.0.1", "3.10.0"},
        {"a vendor's word behind the numbers", "6.6.87.2-microsoft-standard", "6.6.87"},
        {"a dot and no number", "6.x", "6.0.0"},
        {"no number", "next-20260301", "0.0.0"},
        {"nothing", "", "0.0.0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(SystemVersion::numbers(c.release), c.numbers);
    }
}

TEST(SystemVersion, theKernelThatRunsHasOne)
{
    EXPECT_NE(SystemVersion::kernel(), "0.0.0");
    EXPECT_EQ(SystemVersion::kernel(), SystemVersion::numbers(SystemVersion::kernel()));
}

} // namespace
} // namespace quellon
