#include "QuellonCore/Presentation/NumberField.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quellon {
namespace {

using Kind = NumberField::Kind;

TEST(NumberField, read)
{
    struct Case {
        const char* name;
        Kind kind;
        const char* typed;
        std::optional<double> value;
        const char* refusal;
    };
    constexpr const char* plan = "Enter 0 to 100,000 GB.";
    constexpr const char* day = "Enter a day from 1 to 31.";
    constexpr const char* number = "Enter a number.";
    constexpr const char* groups = "Leave out the commas between thousands, or write a point before decimals.";
    const Case cases[] = {
        {"least plan", Kind::planSize, "0", 0.0, ""},
        {"minus nothing", Kind::planSize, "-0", 0.0, ""},
        {"below the least plan", Kind::planSize, "-0.000001", {}, plan},
        {"largest plan", Kind::planSize, "100000", 100'000.0, ""},
        {"above the largest plan", Kind::planSize, "100000.000001", {}, plan},
        {"far above", Kind::planSize, "999999999999999999999999999999999999", {}, plan},
        {"so many digits that no number is left",
         Kind::planSize,
         "9999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999"
         "9999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999"
         "9999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999999",
         {},
         plan},
        {"decimals", Kind::planSize, "18.2", 18.2, ""},
        {"decimals after a comma", Kind::planSize, "18,2", 18.2, ""},
        {"only decimals", Kind::planSize, ".5", 0.5, ""},
        {"a point at the end", Kind::planSize, "5.", 5.0, ""},
        {"the seventh decimal", Kind::planSize, "0.1000009", 0.1, ""},
        {"blanks around it", Kind::planSize, " \t30 \n", 30.0, ""},
        {"a plus", Kind::planSize, "+30", 30.0, ""},
        {"nothing", Kind::planSize, "", {}, number},
        {"blanks", Kind::planSize, "  ", {}, number},
        {"a sign alone", Kind::planSize, "-", {}, number},
        {"a point alone", Kind::planSize, ".", {}, number},
        {"two points", Kind::planSize, "1.000.000", {}, number},
        {"groups", Kind::planSize, "1 000", {}, number},
        {"a comma that may stand between thousands", Kind::planSize, "100,000", {}, groups},
        {"one between few thousands", Kind::ruleLimit, "1,500", {}, groups},
        {"negative thousands", Kind::ruleLimit, "-1,500", {}, groups},
        {"commas between millions", Kind::ruleLimit, "102,400,000", {}, groups},
        {"thousands with decimals", Kind::carrierReading, " 1,500.5 ", {}, groups},
        {"four digits behind a comma", Kind::planSize, "1,2345", 1.2345, ""},
        {"two digits behind a comma", Kind::planSize, "12,34", 12.34, ""},
        {"nothing before the thousandths", Kind::planSize, "0,125", 0.125, ""},
        {"nothing at all before the thousandths", Kind::planSize, ",125", 0.125, ""},
        {"too many digits before it for thousands", Kind::planSize, "1000,125", 1000.125, ""},
        {"groups that are none", Kind::planSize, "1,50,000", {}, number},
        {"letters", Kind::planSize, "ten", {}, number},
        {"a unit", Kind::planSize, "10 GB", {}, number},
        {"an exponent", Kind::planSize, "1e3", {}, number},
        {"no number by name", Kind::planSize, "nan", {}, number},
        {"infinity by name", Kind::planSize, "inf", {}, number},
        {"digits of another script", Kind::planSize, "٣", {}, number},
        {"first day", Kind::startDay, "1", 1.0, ""},
        {"last day", Kind::startDay, "31", 31.0, ""},
        {"no day", Kind::startDay, "0", {}, day},
        {"a day too many", Kind::startDay, "32", {}, day},
        {"negative day", Kind::startDay, "-1", {}, day},
        {"part of a day", Kind::startDay, "1.5", {}, day},
        {"a whole day with decimals", Kind::startDay, "1.0", {}, day},
        {"a thousandth day", Kind::startDay, "1,000", {}, day},
        {"a day in words", Kind::startDay, "first", {}, day},
        {"nothing used", Kind::carrierReading, "0", 0.0, ""},
        {"negative use", Kind::carrierReading, "-1", {}, plan},
        {"too much used", Kind::carrierReading, "100001", {}, plan},
        {"negative limit counts as none", Kind::ruleLimit, "-5", 0.0, ""},
        {"limit", Kind::ruleLimit, "46.08", 46.08, ""},
        {"largest limit", Kind::ruleLimit, "102400000", 102'400'000.0, ""},
        {"above the largest limit", Kind::ruleLimit, "102400001", {}, "Enter 0 to 102,400,000 MB."},
        {"limit in words", Kind::ruleLimit, "much", {}, number},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto reading = NumberField::read(c.kind, c.typed);
        EXPECT_EQ(reading.value, c.value);
        EXPECT_EQ(reading.refusal, c.refusal);
        if (reading.value) { EXPECT_FALSE(std::signbit(*reading.value)); }
    }
}

TEST(NumberField, text)
{
    struct Case {
        const char* name;
        double value;
        const char* text;
    };
    constexpr Case cases[] = {
        {"whole", 30.0, "30"},
        {"a hundred keeps its zeros", 100.0, "100"},
        {"nothing", 0.0, "0"},
        {"decimals", 18.25, "18.25"},
        {"three at most", 1.23456, "1.235"},
        {"less than that", 0.0001, "0"},
        {"minus less than that", -0.0001, "0"},
        {"large", 100'000.0, "100000"},
        {"no number", std::numeric_limits<double>::quiet_NaN(), "0"},
        {"endless", std::numeric_limits<double>::infinity(), "0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NumberField::text(c.value), c.text);
    }
}

} // namespace
} // namespace quellon
