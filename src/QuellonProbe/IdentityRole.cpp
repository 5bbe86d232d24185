#include "QuellonProbe/IdentityRole.h"

#include "QuellonProbe/Text.h"

#include <algorithm>

namespace quellon {

std::optional<std::string> IdentityRole::start(const ProcFolder& proc, std::int32_t pid)
{
    auto boot = proc.file("sys/kernel/random/boot_id");
    if (!boot || boot->empty()) return std::nullopt;
    boot->resize(std::min(boot->find_first_of(" \n"), boot->size()));
    const auto stat = proc.stat(pid);
    if (!stat) return std::string{};
    return cleanName(*boot) + " " + std::to_string(stat->startTicks) + "\n";
}

std::optional<std::string> IdentityRole::parent(const ProcFolder& proc, std::int32_t pid)
{
    if (proc.descriptor() < 0) return std::nullopt;
    const auto stat = proc.stat(pid);
    return stat ? std::to_string(stat->parent) + "\n" : std::string{};
}

} // namespace quellon
