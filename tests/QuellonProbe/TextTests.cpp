#include "QuellonProbe/Text.h"

#include <gtest/gtest.h>
#include <string_view>

namespace quellon {
namespace {

using namespace std::string_view_literals;

constexpr auto replacement = "\xEF\xBF\xBD"sv;

TEST(Text, cleanName)
{
    struct Case {
        const char* name;
        std::string_view raw;
        std::string clean;
        Commas commas = Commas::kept;
    };
    const auto r = std::string{replacement};
    const Case cases[] = {
        {"empty", ""sv, ""},
        {"plain", "firefox"sv, "firefox"},
        {"blanks, brackets and points stay", "a b) (c.d"sv, "a b) (c.d"},
        {"line feed", "a\nb"sv, "a?b"},
        {"tab and carriage return", "a\tb\r"sv, "a?b?"},
        {"zero byte", "a\0b"sv, "a?b"},
        {"escape", "\x1B[2J"sv, "?[2J"},
        {"DEL", "a\x7F"sv, "a?"},
        {"C1 control U+0085", "a\xC2\x85z"sv, "a?z"},
        {"first after the C1 controls", "\xC2\xA0"sv, "\xC2\xA0"},
        {"two, three and four bytes", "ü€😀"sv, "ü€😀"},
        {"last code point", "\xF4\x8F\xBF\xBF"sv, "\xF4\x8F\xBF\xBF"},
        {"beyond the last code point", "\xF4\x90\x80\x80"sv, r + r + r + r},
        {"Latin-1 letter", "caf\xE9"sv, "caf" + r},
        {"byte that no sequence begins with", "\xFF"sv, r},
        {"continuation alone", "a\x80z"sv, "a" + r + "z"},
        {"over-long slash", "\xC0\xAF"sv, r + r},
        {"over-long of three bytes", "\xE0\x80\xAF"sv, r + r + r},
        {"surrogate", "\xED\xA0\x80"sv, r + r + r},
        {"cut at the end", "a\xE2\x82"sv, "a" + r},
        {"broken by a letter, which stays", "\xE2\x82z"sv, r + "z"},
        {"broken by a line feed, which is still seen", "\xE2\x82\n"sv, r + "?"},
        {"comma kept", "a,b"sv, "a,b"},
        {"comma replaced", "a,b,"sv, "a;b;", Commas::replaced},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(cleanName(c.raw, c.commas), c.clean);
    }
}

TEST(Text, addressText)
{
    EXPECT_EQ(addressText("\x01\x02\x03\xFF"sv), "1.2.3.255");
    EXPECT_EQ(addressText("\x26\x06\x47\0\0\0\0\0\0\0\0\0\0\0\x11\x11"sv), "2606:4700::1111");
    EXPECT_EQ(addressText(""sv), "");
    EXPECT_EQ(addressText("\x01\x02\x03"sv), "");
}

} // namespace
} // namespace quellon
