#include "QuellonCore/Presentation/PlainText.h"

#include <array>
#include <cstddef>

namespace quellon {

namespace {

constexpr char32_t replacement = U'\uFFFD';

bool isPlain(char32_t c)
{
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    const bool separator = c == 0x2028 || c == 0x2029;
    // What acts beyond its place, up to the end of the line. The marks of direction (U+061C, U+200E, U+200F) do no more
    // than a letter of such a script, and stand in ordinary names.
    const bool direction = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    return !control && !separator && !direction;
}

/// How many bytes a character takes that begins with `lead`; 0 when none does.
std::size_t lengthFrom(unsigned char lead)
{
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

} // namespace

char32_t takeCharacter(std::string_view& text)
{
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lengthFrom(lead);
    char32_t value = length > 1 ? lead & (0x7FU >> length) : lead;
    bool good = length > 0 && length <= text.size();
    for (std::size_t i = 1; good && i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        good = (byte & 0xC0U) == 0x80;
        value = (value << 6U) | (byte & 0x3FU);
    }
    good = good && value >= smallest[length] && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
    text.remove_prefix(good ? length : 1);
    return good ? value : replacement;
}

std::string plainText(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t c = takeCharacter(text);
        if (c == replacement || !isPlain(c)) {
            result += "\uFFFD";
        } else {
            result += before.substr(0, before.size() - text.size());
        }
    }
    return result;
}

} // namespace quellon
