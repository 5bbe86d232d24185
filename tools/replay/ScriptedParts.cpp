#include "ScriptedParts.h"

#include <cstddef>

namespace quellon {

void ScriptedLog::write(std::string_view category, LogLevel level, std::string_view message)
{
    const std::lock_guard guard{lock_};
    lines_.push_back({std::string{category}, level, std::string{message}});
}

std::vector<LogLine> ScriptedLog::lines() const
{
    const std::lock_guard guard{lock_};
    return lines_;
}

std::vector<std::string> ScriptedLog::messages(std::string_view category) const
{
    const std::lock_guard guard{lock_};
    std::vector<std::string> result;
    for (const auto& line : lines_) {
        if (line.category == category) result.push_back(line.message);
    }
    return result;
}

void ScriptedLog::clear()
{
    const std::lock_guard guard{lock_};
    lines_.clear();
}

UUID CountedIdentifiers::next()
{
    UUID result;
    result.bytes[6] = 0x40;
    result.bytes[8] = 0x80;
    ++count_;
    constexpr std::size_t countBytes = 6;
    for (std::size_t i = 0; i < countBytes; ++i) {
        result.bytes[result.bytes.size() - 1 - i] = static_cast<std::uint8_t>(count_ >> (8 * i));
    }
    return result;
}

std::optional<std::string> ScriptedProcesses::environment(std::string_view variable) const
{
    const auto found = variables.find(variable);
    if (found == variables.end()) return std::nullopt;
    return found->second;
}

void ScriptedProcesses::exit(int status)
{
    if (!exitStatus) exitStatus = status;
    runLoop_.end();
}

} // namespace quellon
