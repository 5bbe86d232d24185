#include "QuellonCore/Settings/Autostart.h"

#include "QuellonCore/Settings/AutostartEntry.h"
#include "QuellonCore/Settings/LaunchAgent.h"

#include <fmt/format.h>

#include <utility>

namespace quellon {

namespace fs = std::filesystem;

namespace {

/// The desktop's own folder for this, by the base directory specification: a relative path is as good as none.
fs::path autostartFolder(const Host& host)
{
    const fs::path configuration{host.processes.environment("XDG_CONFIG_HOME").value_or("")};
    return (configuration.is_absolute() ? configuration : host.files.homeDirectory() / ".config") / "autostart";
}

fs::path decidingFile(const Host& host)
{
    if (host.platform.sessionStart == SessionStart::launchAgent) {
        return host.files.homeDirectory() / "Library/LaunchAgents" / LaunchAgent::fileName;
    }
    return autostartFolder(host) / AutostartEntry::fileName;
}

} // namespace

Autostart::Format Autostart::format(const Platform& platform)
{
    if (platform.sessionStart == SessionStart::launchAgent) {
        return {LaunchAgent::text, LaunchAgent::isOn, LaunchAgent::starts};
    }
    return {AutostartEntry::text, AutostartEntry::isOn, AutostartEntry::starts};
}

Autostart::Autostart(const Host& host, fs::path executable)
    : files_{host.files}, executable_{std::move(executable)}, format_{format(host.platform)}, file_{decidingFile(host)}
{
}

bool Autostart::isOn() const
{
    const auto content = files_.read(file_);
    return content && format_.isOn(*content);
}

std::optional<std::string> Autostart::setOn(bool isOn)
{
    const auto content = files_.read(file_);
    const bool wasOn = content && format_.isOn(*content);
    if (!isOn) {
        if (!wasOn || files_.remove(file_)) return std::nullopt;
        return fmt::format("{} can't be removed", file_.native());
    }
    if (wasOn && format_.starts(*content, executable_)) return std::nullopt;
    const auto text = format_.text(executable_);
    if (!text) return fmt::format("a program can't be started with the session from {}", executable_.native());
    return write(*text);
}

std::optional<std::string> Autostart::write(const std::string& text)
{
    const fs::path temporary = file_.native() + ".tmp";
    if (files_.createDirectories(file_.parent_path()) && files_.write(temporary, text)) {
        if (files_.replace(temporary, file_)) return std::nullopt;
        files_.remove(temporary);
    }
    return fmt::format("{} can't be written", file_.native());
}

} // namespace quellon
