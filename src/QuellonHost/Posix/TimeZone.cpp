#include "QuellonHost/Posix/TimeZone.h"

#include <system_error>

namespace quellon::TimeZone {

namespace {

constexpr std::string_view utc = "UTC";

/// The zone that a file of the time zone database is for; `path` itself when it lies in no such folder.
std::string_view zoneOfFile(std::string_view path)
{
    constexpr std::string_view folder = "zoneinfo/";
    const auto at = path.rfind(folder);
    return at == std::string_view::npos ? path : path.substr(at + folder.size());
}

/// `name` when it can be one; empty for a path and for nothing.
std::string_view checked(std::string_view name)
{
    for (const std::string_view variant : {"posix/", "right/"}) {
        if (name.starts_with(variant)) name.remove_prefix(variant.size());
    }
    return name.starts_with('/') || name.starts_with('.') ? std::string_view{} : name;
}

} // namespace

std::string name(const std::optional<std::string>& variable, const std::filesystem::path& link)
{
    // The system takes an empty TZ for UTC, not for "not set".
    std::string_view told = variable ? std::string_view{*variable} : std::string_view{link.native()};
    if (told.starts_with(':')) told.remove_prefix(1);
    const std::string_view result = checked(zoneOfFile(told));
    return std::string{result.empty() ? utc : result};
}

std::string current(const ProcessControl& processes)
{
    std::error_code error; // no link, no zone
    return name(processes.environment("TZ"), std::filesystem::read_symlink("/etc/localtime", error));
}

} // namespace quellon::TimeZone
