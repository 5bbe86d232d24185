#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <variant>

/// Reading a file that the user names, whatever it is: a regular file, a pipe, a terminal.
namespace quellon::WholeFile {

/// Why it was not read.
struct Problem {
    std::string words; ///< Going on after the file's name: "can't be read: No such file or directory".
    bool isTooLarge = false;
    bool operator==(const Problem&) const = default;
};

using Content = std::variant<std::string, Problem>;

/// Everything up to the end, at most `largest` bytes. A regular file that is larger is not touched; of another no more
/// is read than that.
[[nodiscard]] Content read(const std::filesystem::path& file, std::size_t largest);
/// The same from a descriptor, which stays open.
[[nodiscard]] Content read(int descriptor, std::size_t largest);

} // namespace quellon::WholeFile
