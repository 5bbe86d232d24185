#include "QuellonCore/Settings/AutostartEntry.h"

#include "QuellonCore/Support/Text.h"
#include "QuellonCore/Support/Utf8.h"

#include <fmt/format.h>

#include <algorithm>

namespace quellon::AutostartEntry {

namespace {

/// With a backslash before each backslash, as every text in an entry has it.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char each : text) {
        if (each == '\\') result += '\\';
        result += each;
    }
    return result;
}

/// As one word of a command, which is quoted first and then escaped like every text; `%` would begin a field code.
std::string commandWord(std::string_view text)
{
    constexpr std::string_view escapedInQuotes = "\"`$\\";
    std::string quoted = "\"";
    for (const char each : text) {
        if (escapedInQuotes.find(each) != std::string_view::npos) quoted += '\\';
        if (each == '%') quoted += '%';
        quoted += each;
    }
    return escaped(quoted + '"');
}

bool isHeld(std::string_view path)
{
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7F;
    const auto isRefused = [](char each) {
        const auto byte = static_cast<unsigned char>(each);
        return byte < firstPrintable || byte == deleteCharacter || each == '=';
    };
    return path.starts_with('/') && std::ranges::none_of(path, isRefused) && isUtf8(path);
}

/// The value of the key in the entry's own group; empty when it is not there. Of several, the first holds.
std::string_view value(std::string_view entry, std::string_view key)
{
    bool isOwnGroup = false;
    while (!entry.empty()) {
        std::string_view line = stripped(takeLine(entry));
        if (line.starts_with('[')) isOwnGroup = line == "[Desktop Entry]";
        if (!isOwnGroup || line.starts_with('#')) continue;
        const std::string_view name = stripped(takeUntil(line, '='));
        if (name == key) return stripped(line);
    }
    return {};
}

} // namespace

std::optional<std::string> text(const std::filesystem::path& executable)
{
    const std::string& path = executable.native();
    if (!isHeld(path)) return std::nullopt;
    return fmt::format("[Desktop Entry]\n"
                       "Type=Application\n"
                       "Name=Quellon\n"
                       "Comment=Keeps applications from burning a metered connection\n"
                       "Exec={}\n"
                       "TryExec={}\n"
                       "Icon=org.quellon.Quellon\n"
                       "Terminal=false\n"
                       "StartupNotify=false\n",
                       commandWord(path), escaped(path));
}

bool isOn(std::string_view entry)
{
    return !value(entry, "Exec").empty() && value(entry, "Hidden") != "true" &&
           value(entry, "X-GNOME-Autostart-enabled") != "false";
}

bool starts(std::string_view entry, const std::filesystem::path& executable)
{
    const std::string_view command = value(entry, "Exec");
    const std::string word = commandWord(executable.native());
    return command.starts_with(word) && (command.size() == word.size() || command[word.size()] == ' ');
}

} // namespace quellon::AutostartEntry
