#include "QuellonCore/UpdateCheck/AppVersion.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace quellon {
namespace {

TEST(AppVersion, parse)
{
    using Components = std::vector<std::int64_t>;
    struct Case {
        const char* name;
        const char* text;
        std::optional<Components> components;
    };
    const Case cases[] = {
        {"one number", "7", Components{7}},
        {"four numbers", "1.2.3.4", Components{1, 2, 3, 4}},
        {"white space around it", " 1.2\n", Components{1, 2}},
        {"a tab and a carriage return around it", "\t1.2\r\n", Components{1, 2}},
        {"leading zeros", "01.002", Components{1, 2}},
        {"the largest number", "9223372036854775807", Components{9'223'372'036'854'775'807}},
        {"one above the largest number", "9223372036854775808", std::nullopt},
        {"five numbers", "1.2.3.4.5", std::nullopt},
        {"an empty piece", "1..2", std::nullopt},
        {"an empty piece in front", ".1", std::nullopt},
        {"an empty piece at the end", "1.", std::nullopt},
        {"a letter", "v1.2", std::nullopt},
        {"a plus", "+1", std::nullopt},
        {"a minus", "1.-2", std::nullopt},
        {"a blank within", "1. 2", std::nullopt},
        {"digits of another script", "１.２", std::nullopt},
        {"nothing", "", std::nullopt},
        {"nothing but white space", " \n", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto version = AppVersion::parse(c.text);
        EXPECT_EQ(version ? std::optional{version->components} : std::nullopt, c.components);
    }
}

TEST(AppVersion, order)
{
    struct Case {
        const char* name;
        const char* one;
        const char* other;
        std::strong_ordering order;
    };
    const Case cases[] = {
        {"missing numbers are zero", "1.2", "1.2.0", std::strong_ordering::equal},
        {"down to the fourth", "1.2", "1.2.0.0", std::strong_ordering::equal},
        {"a fourth number counts", "1.2.0", "1.2.0.1", std::strong_ordering::less},
        {"numbers, not texts", "1.10", "1.9", std::strong_ordering::greater},
        {"the first difference decides", "2.0", "1.9.9.9", std::strong_ordering::greater},
        {"leading zeros mean nothing", "1.02", "1.2", std::strong_ordering::equal},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto one = AppVersion::parse(c.one);
        const auto other = AppVersion::parse(c.other);
        ASSERT_TRUE(one && other);
        EXPECT_EQ(*one <=> *other, c.order);
        EXPECT_EQ(*one == *other, c.order == 0);
        EXPECT_EQ(*other<*one, c.order> 0);
    }
}

TEST(AppVersion, text)
{
    EXPECT_EQ(AppVersion::parse(" 01.2.003\n")->text(), "1.2.3");
    EXPECT_EQ(AppVersion::parse("4")->text(), "4");
}

} // namespace
} // namespace quellon
