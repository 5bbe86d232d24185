#pragma once

#include "QuellonCore/Support/Json.h"

#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

/// What tests of state files share.
namespace quellon {

/// The `T` that a file with this text holds.
template <typename T>
std::optional<T> decode(std::string_view text)
{
    const auto json = parseJson(text);
    return json ? fromJson<T>(*json) : std::nullopt;
}

/// What a save of `value` writes; empty when JSON can't hold it.
template <typename T>
std::string encode(const T& value)
{
    return dumpJson(toJson(value)).value_or("");
}

/// The bytes of a file; empty when there is none.
inline std::string fileText(const std::string& path)
{
    std::ifstream file{path};
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

/// The example of docs/state-files.md that is marked with this file name; empty when there is none.
inline std::string documented(const std::string& fileName)
{
    const std::string text = fileText(TEST_DATA "/../../docs/state-files.md");
    const std::string opening = "```json " + fileName + "\n";
    const auto begin = text.find(opening);
    if (begin == std::string::npos) return {};
    const auto from = begin + opening.size();
    return text.substr(from, text.find("\n```", from) - from);
}

} // namespace quellon
