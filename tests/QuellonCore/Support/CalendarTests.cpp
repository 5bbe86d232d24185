#include "QuellonCore/Support/Calendar.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace quellon {
namespace {

/// 2026-03-29 00:00:00 UTC; clocks in Germany go from 2 to 3 o'clock one hour later.
constexpr Date dayOfSummerTime{Seconds{1'774'742'400.0 - 978'307'200.0}};

TEST(Calendar, clockTime)
{
    using namespace std::chrono_literals;
    struct Case {
        const char* name;
        const char* zone;
        Date date;
        const char* text;
    };
    constexpr double huge = std::numeric_limits<double>::max();
    const Case cases[] = {
        {"the reference date", "UTC", Date{}, "00:00:00"},
        {"a fraction is dropped", "UTC", Date{Seconds{3661.999}}, "01:01:01"},
        {"below zero too", "UTC", Date{Seconds{-0.25}}, "23:59:59"},
        {"the last second before summer time", "Europe/Berlin", dayOfSummerTime + 1h - 1s, "01:59:59"},
        {"the first of summer time", "Europe/Berlin", dayOfSummerTime + 1h, "03:00:00"},
        {"a zone of three quarters of an hour", "Asia/Kathmandu", Date{}, "05:45:00"},
        {"west of Greenwich, the day before", "America/New_York", Date{}, "19:00:00"},
        {"an unknown zone is UTC", "Middle/Nowhere", Date{Seconds{60}}, "00:01:00"},
        {"an empty name is UTC", "", Date{Seconds{60}}, "00:01:00"},
        {"a path is no name", "../../etc/passwd", Date{Seconds{60}}, "00:01:00"},
        {"distant past", "UTC", distantPast, "00:00:00"},
        {"before all years", "UTC", Date{Seconds{-huge}}, "00:00:00"},
        {"after all years", "UTC", Date{Seconds{huge}}, "23:59:59"},
        {"no number", "UTC", Date{Seconds{std::numeric_limits<double>::quiet_NaN()}}, "00:00:00"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Calendar{std::string{c.zone}}.clockTime(c.date), c.text);
    }
    EXPECT_EQ(Calendar{}.clockTime(Date{Seconds{1}}), "00:00:01");
}

} // namespace
} // namespace quellon
