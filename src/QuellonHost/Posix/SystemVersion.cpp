#include "QuellonHost/Posix/SystemVersion.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/utsname.h>

namespace quellon::SystemVersion {

std::string numbers(std::string_view release)
{
    constexpr std::string_view digits = "0123456789";
    std::array<std::string_view, 3> parts{"0", "0", "0"};
    for (std::string_view& part : parts) {
        const std::size_t length = std::min(release.find_first_not_of(digits), release.size());
        if (length == 0) break;
        part = release.substr(0, length);
        release.remove_prefix(length);
        if (!release.starts_with('.')) break;
        release.remove_prefix(1);
    }
    return fmt::format("{}", fmt::join(parts, "."));
}

std::string kernel()
{
    utsname system{};
    return numbers(uname(&system) == 0 ? std::string_view{system.release} : std::string_view{});
}

} // namespace quellon::SystemVersion
