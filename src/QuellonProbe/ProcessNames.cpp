#include "QuellonProbe/ProcessNames.h"

#include "QuellonProbe/ApplicationPath.h"
#include "QuellonProbe/Text.h"

#include <utility>

namespace quellon {

namespace {

constexpr std::string_view sandboxFolder = "/app/";

} // namespace

ProcessNames::ProcessNames(const ProcFolder& proc, std::string root) : proc_{proc}, root_{std::move(root)} {}

std::string_view ProcessNames::of(std::int32_t pid, const ProcessStat& stat)
{
    if (!stat.isKernelThread) {
        if (const auto name = ofExecutable(pid, &stat)) return *name;
    }
    bare_ = cleanName(stat.comm);
    if (stat.isKernelThread) bare_ = "[" + bare_ + "]";
    // A row without a fourth column would be no row.
    if (bare_.find_first_not_of(' ') == std::string::npos) bare_ = "?";
    return bare_;
}

std::optional<std::string_view> ProcessNames::ofExecutable(std::int32_t pid, const ProcessStat* stat)
{
    const auto executable = proc_.executable(pid);
    if (!executable) return std::nullopt;
    if (!executable->starts_with(sandboxFolder)) return applicationName(*executable);
    const auto read = stat ? std::nullopt : proc_.stat(pid);
    if (!stat && !read) return std::nullopt;
    return applicationName(hostPath(pid, stat ? stat->startTicks : read->startTicks, *executable));
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

/// An executable in an application's sandbox is only a name until the sandbox has told which application it is; where
/// it doesn't, it stays one.
const std::string& ProcessNames::hostPath(std::int32_t pid, std::uint64_t startTicks, const std::string& executable)
{
    Sandboxed& known = bySandboxed_[pid];
    if (known.round == 0 || known.startTicks != startTicks || known.executable != executable) {
        const auto info = proc_.file(pid, "root/.flatpak-info");
        const auto path = info ? ApplicationPath::outOfSandbox(executable, *info) : std::nullopt;
        known = {startTicks, executable, path.value_or(std::string{}), round_};
    }
    known.round = round_;
    return known.hostPath.empty() ? executable : known.hostPath;
}

} // namespace quellon
