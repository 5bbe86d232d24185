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
        {"the first character that is no control", "a\u00A0b", "a\u00A0b"},
        {"text turned around", "a\u202Eexe.b\u2066c", "a�exe.b�c"},
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

TEST(PlainText, takeCharacter)
{
    std::string_view text = "a\xC3\xA9\xE6\x9A\x82\xF0\x9F\x93\xB6\xC3";
    constexpr char32_t expected[] = {U'a', U'é', U'暂', U'📶', U'\uFFFD'};
    for (const char32_t c : expected) EXPECT_EQ(takeCharacter(text), c);
    EXPECT_TRUE(text.empty());
}

} // namespace
} // namespace quellon
