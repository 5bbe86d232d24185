#include "QuellonCore/Support/UUID.h"

namespace quellon {

namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenPlace(std::size_t i)
{
    return i == 8 || i == 13 || i == 18 || i == 23;
}

std::optional<std::uint8_t> hexDigit(char c)
{
    if (c >= '0' && c <= '9') return static_cast<std::uint8_t>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<std::uint8_t>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f') return static_cast<std::uint8_t>(c - 'a' + 10);
    return std::nullopt;
}

} // namespace

std::string UUID::text() const
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const std::uint8_t byte : bytes) {
        if (isHyphenPlace(text.size())) text += '-';
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

std::optional<UUID> UUID::parse(std::string_view text)
{
    if (text.size() != textLength) return std::nullopt;
    UUID result;
    std::size_t nibble = 0;
    for (std::size_t i = 0; i < textLength; ++i) {
        if (isHyphenPlace(i)) {
            if (text[i] != '-') return std::nullopt;
            continue;
        }
        const auto digit = hexDigit(text[i]);
        if (!digit) return std::nullopt;
        auto& byte = result.bytes[nibble / 2];
        byte = static_cast<std::uint8_t>((byte << 4U) | *digit);
        ++nibble;
    }
    return result;
}

} // namespace quellon
