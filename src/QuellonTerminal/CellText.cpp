#include "QuellonTerminal/CellText.h"

#include "QuellonCore/Presentation/PlainText.h"

#include <cstddef>
#include <wchar.h>

namespace quellon::CellText {

namespace {

/// A character as it goes to the terminal. No cells and no bytes: left out.
struct Cell {
    std::string_view bytes;
    int width = 0;
};

bool isInvisible(char32_t c)
{
    return c == 0x00AD || c == 0x034F || c == 0x061C || (c >= 0x200B && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2060 && c <= 0x206F) || (c >= 0xFE00 && c <= 0xFE0F) || c == 0xFEFF ||
           (c >= 0xE0000 && c <= 0xE0FFF);
}

Cell takeCell(std::string_view& text)
{
    const std::string_view before = text;
    const char32_t c = takeCharacter(text);
    if (isInvisible(c)) return {};
    const std::string_view bytes = before.substr(0, before.size() - text.size());
    const bool damaged = c == U'\uFFFD' && bytes.size() == 1;
    const int width = damaged ? -1 : ::wcwidth(static_cast<wchar_t>(c));
    // Some systems give control characters a width of 0 or more.
    if (width < 0 || c < 0x20 || (c >= 0x7F && c < 0xA0)) return {"?", 1};
    return {bytes, width};
}

/// The cells of `text` while they fit into `width`.
std::string prefix(std::string_view text, int width)
{
    std::string result;
    while (!text.empty()) {
        const Cell cell = takeCell(text);
        width -= cell.width;
        if (width < 0) break;
        result += cell.bytes;
    }
    return result;
}

} // namespace

int width(std::string_view text)
{
    int result = 0;
    while (!text.empty()) result += takeCell(text).width;
    return result;
}

std::string cut(std::string_view text, int width)
{
    if (width <= 0) return {};
    if (CellText::width(text) <= width) return prefix(text, width);
    return prefix(text, width - 1) + prefix("…", 1);
}

std::string fill(std::string_view text, int width, Align align)
{
    std::string result = cut(text, width);
    const int blanks = width - CellText::width(result);
    if (blanks > 0) { result.insert(align == Align::left ? result.size() : 0, static_cast<std::size_t>(blanks), ' '); }
    return result;
}

} // namespace quellon::CellText
