#include "QuellonProbe/ProcessNames.h"

#include "QuellonProbe/ApplicationPath.h"
#include "QuellonProbe/Text.h"

#include <utility>

namespace quellon {

ProcessNames::ProcessNames(const ProcFolder& proc, std::string root) : proc_{proc}, root_{std::move(root)} {}

std::string_view ProcessNames::of(std::int32_t pid, const ProcessStat& stat)
{
    if (!stat.isKernelThread) {
        if (const auto executable = proc_.executable(pid)) return applicationName(hostPath(pid, stat, *executable));
    }
    bare_ = cleanName(stat.comm);
    if (stat.isKernelThread) bare_ = "[" + bare_ + "]";
    // A row without a fourth column would be no row.
    if (bare_.find_first_not_of(' ') == std::string::npos) bare_ = "?";
    return bare_;
}

void ProcessNames::forgetUnused()
{
    const auto isUnused = [&](const auto& entry) { return entry.second.round != round_; };
    std::erase_if(byExecutable_, isUnused);
    std::erase_if(bySandboxed_, isUnused);
    ++round_;
}

std::string_view ProcessNames::applicationName(const std::string& executable)
{
    Name& known = byExecutable_[executable];
    if (known.round == 0) known.text = cleanName(ApplicationPath::of(executable, root_));
    known.round = round_;
    return known.text;
}

/// The executable, unless it lies in an application's sandbox, where it is only a name until the sandbox has told
/// which application it is.
const std::string& ProcessNames::hostPath(std::int32_t pid, const ProcessStat& stat, const std::string& executable)
{
    if (!executable.starts_with("/app/")) return executable;
    Sandboxed& known = bySandboxed_[pid];
    if (known.round == 0 || known.startTicks != stat.startTicks || known.executable != executable) {
        const auto info = proc_.file(pid, "root/.flatpak-info");
        const auto path = info ? ApplicationPath::outOfSandbox(executable, *info) : std::nullopt;
        known = {stat.startTicks, executable, path.value_or(std::string{}), round_};
    }
    known.round = round_;
    return known.hostPath.empty() ? executable : known.hostPath;
}

} // namespace quellon
