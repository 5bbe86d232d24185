#include "QuellonHost/Posix/PosixProcessControl.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

extern char** environ; // NOLINT: POSIX leaves the declaration to the program

namespace quellon {

PosixProcessControl::PosixProcessControl()
{
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text{*entry};
        const auto equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        environment_.emplace(text.substr(0, equals), text.substr(equals + 1)); // of doubles, the first holds
    }
}

std::int32_t PosixProcessControl::processID() const
{
    return getpid();
}

std::optional<std::string> PosixProcessControl::environment(std::string_view name) const
{
    const auto found = environment_.find(name);
    if (found == environment_.end()) return std::nullopt;
    return found->second;
}

void PosixProcessControl::exit(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace quellon
