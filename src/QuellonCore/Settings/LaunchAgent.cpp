#include "QuellonCore/Settings/LaunchAgent.h"

#include "QuellonCore/Support/Text.h"
#include "QuellonCore/Support/Utf8.h"

#include <fmt/format.h>

#include <algorithm>

namespace quellon::LaunchAgent {

namespace {

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char each : text) {
        if (each == '&')
            result += "&amp;";
        else if (each == '<')
            result += "&lt;";
        else if (each == '>')
            result += "&gt;";
        else
            result += each;
    }
    return result;
}

bool isHeld(std::string_view path)
{
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7F;
    const auto isControl = [](char each) {
        const auto byte = static_cast<unsigned char>(each);
        return byte < firstPrintable || byte == deleteCharacter;
    };
    return path.starts_with('/') && std::ranges::none_of(path, isControl) && isUtf8(path);
}

/// Whether the key is there, and set.
bool isSet(std::string_view list, std::string_view key)
{
    const std::string element = fmt::format("<key>{}</key>", key);
    const auto at = list.find(element);
    return at != std::string_view::npos && stripped(list.substr(at + element.size())).starts_with("<true/>");
}

} // namespace

std::optional<std::string> text(const std::filesystem::path& executable)
{
    const std::string& path = executable.native();
    if (!isHeld(path)) return std::nullopt;
    return fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>Label</key>
    <string>org.quellon.Quellon</string>
    <key>ProgramArguments</key>
    <array>
        <string>{}</string>
    </array>
    <key>RunAtLoad</key>
    <true/>
    <key>AbandonProcessGroup</key>
    <true/>
    <key>ProcessType</key>
    <string>Interactive</string>
</dict>
</plist>
)",
                       escaped(path));
}

bool isOn(std::string_view list)
{
    return isSet(list, "RunAtLoad") && !isSet(list, "Disabled");
}

bool starts(std::string_view list, const std::filesystem::path& executable)
{
    return list.find(fmt::format("<string>{}</string>", escaped(executable.native()))) != std::string_view::npos;
}

} // namespace quellon::LaunchAgent
