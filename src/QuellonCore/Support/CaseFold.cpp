#include "QuellonCore/Support/CaseFold.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace quellon {

namespace {

constexpr bool isAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

constexpr char foldedAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void appendUtf8(std::string& text, utf8proc_int32_t codePoint)
{
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto length = static_cast<std::size_t>(utf8proc_encode_char(codePoint, bytes.data()));
    for (std::size_t i = 0; i < length; ++i) text.push_back(static_cast<char>(bytes[i]));
}

void appendFolded(std::string& text, utf8proc_int32_t codePoint)
{
    std::array<utf8proc_int32_t, 8> folded{}; // a code point folds to at most three
    int boundClass = 0;
    const auto length = utf8proc_decompose_char(codePoint, folded.data(), static_cast<utf8proc_ssize_t>(folded.size()),
                                                UTF8PROC_CASEFOLD, &boundClass);
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max<utf8proc_ssize_t>(length, 0)); ++i) {
        appendUtf8(text, folded.at(i));
    }
}

} // namespace

std::string caseFolded(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        if (isAscii(text.front())) {
            result.push_back(foldedAscii(text.front()));
            text.remove_prefix(1);
            continue;
        }
        std::array<utf8proc_uint8_t, 4> bytes{};
        const std::size_t available = std::min(bytes.size(), text.size());
        for (std::size_t i = 0; i < available; ++i) bytes[i] = static_cast<utf8proc_uint8_t>(text[i]);
        utf8proc_int32_t codePoint = -1;
        const auto length = utf8proc_iterate(bytes.data(), static_cast<utf8proc_ssize_t>(available), &codePoint);
        if (length > 0)
            appendFolded(result, codePoint);
        else
            result.push_back(text.front());
        text.remove_prefix(length > 0 ? static_cast<std::size_t>(length) : 1);
    }
    return result;
}

bool equalCaseFolded(std::string_view a, std::string_view b)
{
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (!isAscii(a[i]) || !isAscii(b[i])) return caseFolded(a.substr(i)) == caseFolded(b.substr(i));
        if (foldedAscii(a[i]) != foldedAscii(b[i])) return false;
    }
    return a.size() == b.size(); // nothing folds to the empty text
}

std::size_t CaseFoldedHash::operator()(std::string_view text) const
{
    // FNV-1a
    std::uint64_t hash = 0xcbf29ce484222325U;
    const auto add = [&hash](char c) { hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isAscii(text[i])) {
            std::ranges::for_each(caseFolded(text.substr(i)), add);
            break;
        }
        add(foldedAscii(text[i]));
    }
    return static_cast<std::size_t>(hash);
}

} // namespace quellon
