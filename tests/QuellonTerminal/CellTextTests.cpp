#include "QuellonTerminal/CellText.h"

#include "QuellonTerminal/Utf8Locale.h"

#include <gtest/gtest.h>

#include <string>

namespace quellon {
namespace {

using CellText::Align;

class CellTextTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(useUtf8Locale()); }
};

TEST_F(CellTextTest, width)
{
    struct Case {
        const char* name;
        std::string text;
        int width;
    };
    const Case cases[] = {
        {"empty", "", 0},
        {"ASCII", "abc", 3},
        {"accents", "café", 4},
        {"an accent of its own takes no cell", "cafe\u0301", 4},
        {"Chinese", "超时", 4},
        {"emoji", "📶🏠", 4},
        {"a heart with its selector", "❤\uFE0F", 1},
        {"a joiner is left out", "👩\u200D💻", 4},
        {"blank without a width", "a\u200Bb", 2},
        {"controls become a question mark", "a\x1B[2J", 5},
        {"damaged text", "\xFF\xC3", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CellText::width(c.text), c.width);
    }
}

TEST_F(CellTextTest, cut)
{
    struct Case {
        const char* name;
        std::string text;
        int width;
        const char* expected;
    };
    const Case cases[] = {
        {"no room", "abc", 0, ""},
        {"less than no room", "abc", -3, ""},
        {"one cell", "abc", 1, "…"},
        {"one too few", "abcd", 3, "ab…"},
        {"fits", "abc", 3, "abc"},
        {"room to spare", "abc", 9, "abc"},
        {"a wide character is not halved", "超时未", 4, "超…"},
        {"a wide character at the border", "超时未", 5, "超时…"},
        {"controls never come out", "a\tb\x1B\x9Bz", 9, "a?b??z"},
        {"invisible signs never come out", "a\u200Eb\u202Ec\u061C", 9, "abc"},
        {"damaged text", "a\xFFz", 9, "a?z"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CellText::cut(c.text, c.width), c.expected);
    }
}

TEST_F(CellTextTest, fill)
{
    EXPECT_EQ(CellText::fill("ab", 4), "ab  ");
    EXPECT_EQ(CellText::fill("ab", 4, Align::right), "  ab");
    EXPECT_EQ(CellText::fill("超时未", 5, Align::right), "超时…");
    EXPECT_EQ(CellText::fill("超时未", 4), "超… ") << "the half cell is filled up";
    EXPECT_EQ(CellText::fill("abc", 0), "");
    EXPECT_EQ(CellText::fill("", 3), "   ");
}

} // namespace
} // namespace quellon
