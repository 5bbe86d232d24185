#include "QuellonCore/Presentation/PlainText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quellon {
namespace {

using namespace std::string_view_literals;

TEST(PlainText, plainText)
{
    struct Case {
        const char* name;
        std::string_view text;
        std::string_view expected;
    };
    constexpr Case cases[] = {
        {"empty", "", ""},
        {"ASCII", "cloud-sync 2.0", "cloud-sync 2.0"},
        {"Chinese and emoji", "暂停（可恢复） 📶🏠", "暂停（可恢复） 📶🏠"},
        {"a joined emoji stays joined", "👩\u200D💻", "👩\u200D💻"},
        {"line ends and tabs", "a\nb\rc\td", "a�b�c�d"},
        {"an escape sequence", "\x1B[31mred", "�[31mred"},
        {"NUL and DEL", "a\0b\x7F"sv, "a�b�"},
        {"a control character of two bytes", "a\u009Bb", "a�b"},
        {"the last control characters of either kind", "\x1F \u009F", "� �"},
        {"the first character that is no control", "a\u00A0b", "a\u00A0b"},
        {"text turned around", "a\u202Eexe.b\u2066c", "a�exe.b�c"},
        {"what turns text is replaced, to the last", "\u202A\u202B\u202C\u202D\u202E \u2066\u2067\u2068\u2069",
         "����� ����"},
        {"a mark of direction stays", "\u200EChat \u200Fאב\u061C", "\u200EChat \u200Fאב\u061C"},
        {"line and paragraph separators", "a\u2028b\u2029", "a�b�"},
        {"a stray byte of a sequence", "a\x80z", "a�z"},
        {"an overlong slash", "\xC0\xAF", "��"},
        {"an overlong form of three bytes", "\xE0\x80\xAF", "���"},
        {"a surrogate", "\xED\xA0\x80", "���"},
        {"above the last character", "\xF4\x90\x80\x80", "����"},
        {"the last character", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        {"cut short at the end", "a\xE6\x9A", "a��"},
        {"cut short before a letter", "\xE6\x9Az", "��z"},
        {"never a lead byte", "\xFF\xFE", "��"},
        {"a replacement character stays one", "a�b", "a�b"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(plainText(c.text), c.expected);
        EXPECT_EQ(plainText(plainText(c.text)), c.expected) << "a second time changes nothing";
    }
}

TEST(PlainText, ordinaryNamesStay)
{
    struct Case {
        const char* name;
        std::string_view text;
    };
    constexpr Case cases[] = {
        {"Chinese", "网易云音乐"},
        {"Chinese with full-width blanks and brackets", "微信　（测试版）"},
        {"Japanese and Korean", "メモ帳 카카오톡"},
        {"accents", "Déjà Vu – Ångström"},
        {"accents that stand apart", "De\u0301ja\u0300 Vu"},
        {"Hebrew", "דפדפן אש"},
        {"Arabic", "المتصفح ١٢٣"},
        {"Persian with a joiner that parts", "می\u200Cخواهم"},
        {"a Latin name behind a mark of direction", "\u200EChat"},
        {"Devanagari with a joiner", "क्\u200Dष"},
        {"Thai", "เว็บเบราว์เซอร์"},
        {"emoji with skin and selector", "👍🏽 ❤\uFE0F"},
        {"an emoji of several people", "👨\u200D👩\u200D👧"},
        {"a flag by letters", "🇺🇦"},
        {"a flag by tags", "🏴\U000E0067\U000E0062\U000E0077\U000E006C\U000E0073\U000E007F"},
        {"blanks around and within", "  Some  App\u00A0\u2009\u3000 "},
        {"a soft hyphen and a byte order mark", "Some\u00ADApp\uFEFF"},
        {"of the private planes", "\uF8FF Music \U000F0000"},
        {"signs", "C++ <b>&amp; %s {} \\n \"' · ≥"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(plainText(c.text), c.text);
    }
}

TEST(PlainText, takeCharacter)
{
    std::string_view text = "a\xC3\xA9\xE6\x9A\x82\xF0\x9F\x93\xB6\xC3";
    constexpr char32_t expected[] = {U'a', U'é', U'暂', U'📶', U'\uFFFD'};
    for (const char32_t c : expected) EXPECT_EQ(takeCharacter(text), c);
    EXPECT_TRUE(text.empty());
}

} // namespace
} // namespace quellon
