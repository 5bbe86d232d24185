#include "QuellonCore/Presentation/DateTexts.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(DateTexts, monthAndDay)
{
    struct Case {
        const char* name;
        const char* pattern;
        CalendarDay day;
        const char* text;
    };
    constexpr Case cases[] = {
        {"English", "{month} {day}", {2026, 3, 20}, "Mar 20"},
        {"first month", "{month} {day}", {2026, 1, 1}, "Jan 1"},
        {"last month", "{month} {day}", {2026, 12, 31}, "Dec 31"},
        {"the day first", "{day}. {month}", {2026, 5, 9}, "9. May"},
        {"nothing between", "{month}{day}日", {2026, 5, 9}, "May9日"},
        {"a pattern that asks for nothing", "", {2026, 5, 9}, ""},
        {"a pattern with other braces", "{} {year} {day} {mon", {2026, 5, 9}, "{} {year} 9 {mon"},
        {"twice", "{day}{day}", {2026, 5, 9}, "99"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DateTexts texts;
        texts.pattern = c.pattern;
        EXPECT_EQ(texts.monthAndDay(c.day), c.text);
    }
}

TEST(DateTexts, namesOfAnotherLanguageAreTakenAsTheyAre)
{
    DateTexts texts;
    texts.months[2] = "{day}";
    EXPECT_EQ(texts.monthAndDay({2026, 3, 20}), "{day} 20");
    texts.months[2] = "mars";
    EXPECT_EQ(texts.monthAndDay({2026, 3, 20}), "mars 20");
}

} // namespace
} // namespace quellon
