#pragma once

#include <string_view>
#include <vector>

/// Cutting up the text that tools print, and paths, without copying it.
namespace quellon {

/// `text` without the blanks and tabs at its ends.
[[nodiscard]] constexpr std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

/// `text` without the white space at its ends, line ends included.
[[nodiscard]] constexpr std::string_view stripped(std::string_view text)
{
    constexpr std::string_view whiteSpace = " \t\n\v\f\r";
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

/// Takes the text up to the next `separator` off the front of `rest`, and the separator with it; all of `rest` when
/// there is none.
[[nodiscard]] constexpr std::string_view takeUntil(std::string_view& rest, char separator)
{
    const auto end = rest.find(separator);
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return piece;
}

/// Takes the next line off the front of `rest`. A line ends at a line feed and nowhere else.
[[nodiscard]] constexpr std::string_view takeLine(std::string_view& rest)
{
    return takeUntil(rest, '\n');
}

/// Takes the next word off the front of `rest`, with the blanks before it and one behind it. Empty when there is none.
[[nodiscard]] constexpr std::string_view takeWord(std::string_view& rest)
{
    while (rest.starts_with(' ')) rest.remove_prefix(1);
    return takeUntil(rest, ' ');
}

/// The words of `line`; what separates them is any number of blanks.
[[nodiscard]] inline std::vector<std::string_view> words(std::string_view line)
{
    std::vector<std::string_view> result;
    for (auto word = takeWord(line); !word.empty(); word = takeWord(line)) result.push_back(word);
    return result;
}

/// What stands behind the last slash of `path`, slashes at its end aside. Empty when nothing else is there.
[[nodiscard]] constexpr std::string_view lastPathComponent(std::string_view path)
{
    while (path.ends_with('/')) path.remove_suffix(1);
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0
}

} // namespace quellon
