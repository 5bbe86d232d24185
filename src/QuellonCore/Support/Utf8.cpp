#include "QuellonCore/Support/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quellon {

namespace {

constexpr std::size_t wordSize = sizeof(std::uint64_t);

/// How many bytes at the front of `bytes` are ASCII, counted in whole words.
std::size_t asciiWords(std::string_view bytes)
{
    constexpr std::uint64_t highBits = 0x8080'8080'8080'8080U;
    std::size_t length = 0;
    for (; bytes.size() - length >= wordSize; length += wordSize) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + length, wordSize);
        if ((word & highBits) != 0) break;
    }
    return length;
}

constexpr bool isBetween(std::uint8_t low, std::uint8_t byte, std::uint8_t high)
{
    return low <= byte && byte <= high;
}

/// The length of the well-formed sequence that `bytes` begins with; 0 when it begins with none. The second byte decides
/// about overlong forms, surrogates and the upper end (Unicode, table 3-7).
std::size_t sequenceLength(std::string_view bytes)
{
    const auto at = [bytes](std::size_t i) { return static_cast<std::uint8_t>(i < bytes.size() ? bytes[i] : '\0'); };
    const auto continues = [&at](std::size_t i) { return isBetween(0x80, at(i), 0xBF); };
    const std::uint8_t lead = at(0);
    if (lead < 0x80) return 1;
    if (isBetween(0xC2, lead, 0xDF)) return continues(1) ? 2 : 0;
    if (isBetween(0xE0, lead, 0xEF)) {
        const std::uint8_t low = lead == 0xE0 ? 0xA0 : 0x80;
        const std::uint8_t high = lead == 0xED ? 0x9F : 0xBF;
        return isBetween(low, at(1), high) && continues(2) ? 3 : 0;
    }
    if (isBetween(0xF0, lead, 0xF4)) {
        const std::uint8_t low = lead == 0xF0 ? 0x90 : 0x80;
        const std::uint8_t high = lead == 0xF4 ? 0x8F : 0xBF;
        return isBetween(low, at(1), high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

} // namespace

bool isUtf8(std::string_view bytes)
{
    while (!bytes.empty()) {
        bytes.remove_prefix(asciiWords(bytes));
        if (bytes.empty()) break;
        const std::size_t length = sequenceLength(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

} // namespace quellon
