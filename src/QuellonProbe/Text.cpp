#include "QuellonProbe/Text.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace quellon {
namespace {

struct Sequence {
    std::size_t length = 1; ///< bytes to step over, at least 1
    char32_t code = 0;
    bool valid = false;
};

/// The sequence at the front of a text that isn't empty. A broken one is as long as the part that could have begun a
/// character, so that the byte which broke it is looked at again.
Sequence sequence(std::string_view text)
{
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return {1, first, true};
    std::size_t length = 0;
    if (first >= 0xC2 && first <= 0xDF)
        length = 2;
    else if (first >= 0xE0 && first <= 0xEF)
        length = 3;
    else if (first >= 0xF0 && first <= 0xF4)
        length = 4;
    else
        return {};
    char32_t code = first & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        unsigned char low = 0x80;
        unsigned char high = 0xBF;
        if (index == 1 && first == 0xE0) low = 0xA0;  // shorter forms exist
        if (index == 1 && first == 0xED) high = 0x9F; // surrogates
        if (index == 1 && first == 0xF0) low = 0x90;
        if (index == 1 && first == 0xF4) high = 0x8F; // beyond U+10FFFF
        if (index >= text.size() || byte(index) < low || byte(index) > high) return {index, 0, false};
        code = (code << 6U) | (byte(index) & 0x3FU);
    }
    return {length, code, true};
}

} // namespace

std::string cleanName(std::string_view name, Commas commas)
{
    std::string clean;
    clean.reserve(name.size());
    while (!name.empty()) {
        const Sequence next = sequence(name);
        if (!next.valid)
            clean += "\xEF\xBF\xBD";
        else if (next.code < 0x20 || (next.code >= 0x7F && next.code < 0xA0))
            clean += '?';
        else if (next.code == ',' && commas == Commas::replaced)
            clean += ';';
        else
            clean += name.substr(0, next.length);
        name.remove_prefix(next.length);
    }
    return clean;
}

std::string addressText(std::string_view address)
{
    char text[INET6_ADDRSTRLEN] = "";
    if (address.size() == 4)
        inet_ntop(AF_INET, address.data(), text, sizeof text);
    else if (address.size() == 16)
        inet_ntop(AF_INET6, address.data(), text, sizeof text);
    return text;
}

void complain(std::string_view text)
{
    std::string line = "quellon-probe: ";
    line += text;
    line += '\n';
    // Nobody may be reading, and then there is no waiting.
    pollfd waiting{STDERR_FILENO, POLLOUT, 0};
    if (poll(&waiting, 1, 0) != 1) return;
    // A message that can't be delivered has nobody left to be told about.
    [[maybe_unused]] const auto written = write(STDERR_FILENO, line.data(), line.size());
}

void complain(std::string_view text, int error)
{
    std::string line{text};
    line += ": ";
    line += std::strerror(error);
    complain(line);
}

} // namespace quellon
