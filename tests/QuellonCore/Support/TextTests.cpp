#include "QuellonCore/Support/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(Text, trimmed)
{
    struct Case {
        const char* name;
        const char* text;
        const char* result;
    };
    constexpr Case cases[] = {
        {"empty", "", ""},
        {"only blanks and tabs", " \t \t", ""},
        {"both ends", "\t a b\t ", "a b"},
        {"a carriage return stays", " a\r", "a\r"},
        {"a line feed stays", "\na ", "\na"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(trimmed(c.text), c.result);
    }
}

TEST(Text, stripped)
{
    EXPECT_EQ(stripped("\r\n\t one two \v\f\n"), "one two");
    EXPECT_EQ(stripped(" \n"), "");
    EXPECT_EQ(stripped(""), "");
    EXPECT_EQ(stripped("\xc2\xa0x"), "\xc2\xa0x"); // a no-break space stays
}

TEST(Text, takeLineEndsAtLineFeedsOnly)
{
    std::string_view rest = "one\rstill one\x0b\x0c\xe2\x80\xa8\n\nthree";
    EXPECT_EQ(takeLine(rest), "one\rstill one\x0b\x0c\xe2\x80\xa8");
    EXPECT_EQ(takeLine(rest), "");
    EXPECT_EQ(takeLine(rest), "three");
    EXPECT_TRUE(rest.empty());
    EXPECT_EQ(takeLine(rest), "");
}

TEST(Text, takeUntilTakesTheSeparatorAlong)
{
    std::string_view rest = "a,,b";
    EXPECT_EQ(takeUntil(rest, ','), "a");
    EXPECT_EQ(rest, ",b");
    EXPECT_EQ(takeUntil(rest, ','), "");
    EXPECT_EQ(takeUntil(rest, ','), "b");
    EXPECT_EQ(rest, "");
}

TEST(Text, words)
{
    EXPECT_THAT(words(""), testing::IsEmpty());
    EXPECT_THAT(words("   "), testing::IsEmpty());
    EXPECT_THAT(words("  a   b\tc  "), testing::ElementsAre("a", "b\tc")) << "a tab separates nothing";
}

TEST(Text, lastPathComponent)
{
    struct Case {
        const char* name;
        const char* path;
        const char* result;
    };
    constexpr Case cases[] = {
        {"empty", "", ""},
        {"only slashes", "//", ""},
        {"no slash", "tool", "tool"},
        {"absolute", "/usr/bin/tool", "tool"},
        {"slashes at the end", "/usr/bin/tool//", "tool"},
        {"blanks belong to the name", "/a/ b c ", " b c "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(lastPathComponent(c.path), c.result);
    }
}

} // namespace
} // namespace quellon
