#include "ReplayFields.h"
#include "ReplayState.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(ReplayFields, parseIsoDate)
{
    struct Case {
        const char* name;
        const char* text;
        const char* utc; ///< Null: refused.
    };
    constexpr Case cases[] = {
        {"in UTC", "2026-03-15T10:00:00Z", "2026-03-15T10:00:00.000Z"},
        {"with a fraction", "2026-03-15T10:00:00.25Z", "2026-03-15T10:00:00.250Z"},
        {"east of UTC", "2026-03-15T00:30:00+01:00", "2026-03-14T23:30:00.000Z"},
        {"west of UTC", "2026-03-15T23:30:00-05:30", "2026-03-16T05:00:00.000Z"},
        {"a leap day", "2028-02-29T00:00:00Z", "2028-02-29T00:00:00.000Z"},
        {"before the reference date", "1969-12-31T23:59:59Z", "1969-12-31T23:59:59.000Z"},
        {"no leap day", "2026-02-29T00:00:00Z", nullptr},
        {"month 13", "2026-13-01T00:00:00Z", nullptr},
        {"month 0", "2026-00-01T00:00:00Z", nullptr},
        {"year 0", "0000-01-01T00:00:00Z", nullptr},
        {"hour 24", "2026-03-15T24:00:00Z", nullptr},
        {"minute 60", "2026-03-15T10:60:00Z", nullptr},
        {"second 60", "2026-03-15T10:00:60Z", nullptr},
        {"no zone", "2026-03-15T10:00:00", nullptr},
        {"no time", "2026-03-15", nullptr},
        {"no seconds", "2026-03-15T10:00Z", nullptr},
        {"a point without digits", "2026-03-15T10:00:00.Z", nullptr},
        {"more behind it", "2026-03-15T10:00:00Z ", nullptr},
        {"one digit", "2026-3-15T10:00:00Z", nullptr},
        {"a sign", "2026-+3-15T10:00:00Z", nullptr},
        {"empty", "", nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto date = parseIsoDate(c.text);
        ASSERT_EQ(date.has_value(), c.utc != nullptr);
        if (!date) continue;
        EXPECT_EQ(isoText(*date), c.utc);
    }
}

TEST(ReplayState, isoTextHoldsToTheYearsThatThereAre)
{
    EXPECT_EQ(isoText(Date{}), "2001-01-01T00:00:00.000Z");
    EXPECT_EQ(isoText(Date{Seconds{0.0004}}), "2001-01-01T00:00:00.000Z");
    EXPECT_EQ(isoText(Date{Seconds{0.0006}}), "2001-01-01T00:00:00.001Z");
    EXPECT_EQ(isoText(distantPast), "0001-01-01T00:00:00.000Z");
    EXPECT_EQ(isoText(Date{Seconds{1e300}}), "9999-12-31T23:59:59.999Z");
    EXPECT_EQ(isoText(Date{Seconds{-1e300}}), "0001-01-01T00:00:00.000Z");
}

} // namespace
} // namespace quellon
