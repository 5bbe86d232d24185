#pragma once

#include <string>
#include <string_view>

namespace quellon {

/// `text` as it can stand in a line anywhere: every control character (line ends, tabs, escapes), every character that
/// separates lines or turns the text behind it around, and every byte that is no part of well-formed UTF-8 is replaced
/// by "�". All else stays, byte by byte. For names and messages that other programs had a hand in.
[[nodiscard]] std::string plainText(std::string_view text);

/// Takes the next character off the front of `text`, which must not be empty. U+FFFD for a byte that is no part of
/// well-formed UTF-8; only that byte is taken then.
[[nodiscard]] char32_t takeCharacter(std::string_view& text);

} // namespace quellon
