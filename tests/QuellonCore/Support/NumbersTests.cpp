#include "QuellonCore/Support/Numbers.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace quellon {
namespace {

template <typename Number>
struct Case {
    const char* name;
    const char* field;
    std::optional<Number> value;
};

template <typename Number, std::size_t N>
void expectAll(const Case<Number> (&cases)[N])
{
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseWhole<Number>(c.field), c.value);
    }
}

TEST(ParseWhole, unsigned64)
{
    expectAll<std::uint64_t>({
        {"empty", "", std::nullopt},
        {"zero", "0", 0U},
        {"minus zero", "-0", 0U},
        {"minus many zeros", "-000", 0U},
        {"minus one", "-1", std::nullopt},
        {"minus a number that does not fit", "-99999999999999999999999", std::nullopt},
        {"plus", "+7", 7U},
        {"plus alone", "+", std::nullopt},
        {"minus alone", "-", std::nullopt},
        {"two signs", "+-0", std::nullopt},
        {"two minus signs", "--0", std::nullopt},
        {"leading zeros", "000000000000000000000000042", 42U},
        {"largest", "18446744073709551615", 18'446'744'073'709'551'615U},
        {"one more than the largest", "18446744073709551616", std::nullopt},
        {"blank in front", " 1", std::nullopt},
        {"blank behind", "1 ", std::nullopt},
        {"carriage return behind", "1\r", std::nullopt},
        {"fraction", "1.0", std::nullopt},
        {"exponent", "1e3", std::nullopt},
        {"hexadecimal", "0x10", std::nullopt},
        {"unit", "235 KiB", std::nullopt},
        {"thousands", "1,000", std::nullopt},
        {"digits of another script", "\u0661", std::nullopt},
    });
    EXPECT_EQ(parseWhole<std::uint64_t>(std::string_view("1\0", 2)), std::nullopt);
}

TEST(ParseWhole, signed32)
{
    expectAll<std::int32_t>({
        {"largest", "2147483647", 2'147'483'647},
        {"one more than the largest", "2147483648", std::nullopt},
        {"smallest", "-2147483648", -2'147'483'647 - 1},
        {"one less than the smallest", "-2147483649", std::nullopt},
        {"minus zero", "-0", 0},
        {"minus with leading zeros", "-007", -7},
        {"plus", "+12", 12},
        {"plus and minus", "+-1", std::nullopt},
        {"minus and plus", "-+1", std::nullopt},
        {"minus alone", "-", std::nullopt},
    });
}

TEST(ParseWhole, otherWidths)
{
    expectAll<std::uint32_t>({{"largest", "4294967295", 4'294'967'295U},
                              {"one more than the largest", "4294967296", std::nullopt},
                              {"minus one", "-1", std::nullopt}});
    expectAll<std::uint8_t>({{"largest", "255", std::uint8_t{255}},
                             {"one more than the largest", "256", std::nullopt},
                             {"plus", "+10", std::uint8_t{10}},
                             {"minus zero", "-0", std::uint8_t{0}}});
    expectAll<std::int64_t>({{"beyond 32 bits", "5000000000", 5'000'000'000},
                             {"smallest", "-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
                             {"one more than the largest", "9223372036854775808", std::nullopt}});
}

} // namespace
} // namespace quellon
