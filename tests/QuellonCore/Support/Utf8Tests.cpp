#include "QuellonCore/Support/Utf8.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace quellon {
namespace {

TEST(Utf8, edges)
{
    struct Case {
        const char* name;
        std::string bytes;
        bool isUtf8;
    };
    const Case cases[] = {
        {"empty", "", true},
        {"a zero byte", std::string(1, '\0'), true},
        {"last of one byte", "\x7F", true},
        {"a lone continuation", "\x80", false},
        {"first of two bytes", "\xC2\x80", true},
        {"last of two bytes", "\xDF\xBF", true},
        {"overlong zero", "\xC0\x80", false},
        {"overlong 7F", "\xC1\xBF", false},
        {"first of three bytes", "\xE0\xA0\x80", true},
        {"overlong 7FF", "\xE0\x9F\xBF", false},
        {"last before the surrogates", "\xED\x9F\xBF", true},
        {"first surrogate", "\xED\xA0\x80", false},
        {"last surrogate", "\xED\xBF\xBF", false},
        {"first behind the surrogates", "\xEE\x80\x80", true},
        {"last of three bytes", "\xEF\xBF\xBF", true},
        {"first of four bytes", "\xF0\x90\x80\x80", true},
        {"overlong FFFF", "\xF0\x8F\xBF\xBF", false},
        {"the last code point", "\xF4\x8F\xBF\xBF", true},
        {"one beyond the last code point", "\xF4\x90\x80\x80", false},
        {"a lead of five bytes", "\xF8\x88\x80\x80\x80", false},
        {"FE", "\xFE", false},
        {"FF", "\xFF", false},
        {"two bytes cut short", "\xC3", false},
        {"three bytes cut short", "\xE2\x82", false},
        {"four bytes cut short", "\xF0\x9F\x98", false},
        {"a lead where a continuation should be", "\xE2\x82\xE2", false},
        {"ASCII where a continuation should be", "\xC3(", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(isUtf8(c.bytes), c.isUtf8);
        // At every place within and across the words of the fast path.
        for (std::size_t before = 0; before < 18; ++before) {
            EXPECT_EQ(isUtf8(std::string(before, 'a') + c.bytes + "0123456789abcdef"), c.isUtf8) << before;
            EXPECT_EQ(isUtf8(std::string(before, 'a') + c.bytes), c.isUtf8) << before;
        }
    }
}

/// The bytes of any number below 2^21 in the form of UTF-8, whether or not it may be written so.
std::string encoded(std::uint32_t code, int length)
{
    if (length == 1) return {static_cast<char>(code)};
    constexpr std::uint32_t leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    for (int i = length - 1; i > 0; --i, code >>= 6U) {
        bytes[static_cast<std::size_t>(i)] = static_cast<char>(0x80U | (code & 0x3FU));
    }
    bytes[0] = static_cast<char>(leads[length] | code);
    return bytes;
}

TEST(Utf8, everyNumberInEveryLength)
{
    constexpr std::uint32_t limits[] = {0, 0x80, 0x800, 0x10000, 0x200000};
    std::size_t wrong = 0;
    for (int length = 1; length <= 4; ++length) {
        for (std::uint32_t code = 0; code < limits[length]; ++code) {
            const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
            const bool expected = code >= limits[length - 1] && code <= 0x10FFFF && !isSurrogate;
            if (isUtf8(encoded(code, length)) != expected) ++wrong;
        }
    }
    EXPECT_EQ(wrong, 0U);
}

} // namespace
} // namespace quellon
