#include "QuellonHost/Linux/LinuxProcessControl.h"

#include "QuellonHost/Posix/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace quellon {

namespace {

/// The number of the line "NAME:   123 kB"; absent when no line begins so.
std::optional<std::uint64_t> number(std::string_view text, std::string_view name)
{
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (!line.starts_with(name) || line.substr(name.size(), 1) != ":") continue;
        const auto first = line.find_first_of("0123456789", name.size());
        if (first == std::string_view::npos) return std::nullopt;
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(line.data() + first, line.data() + line.size(), value);
        if (error != std::errc{}) return std::nullopt;
        return value;
    }
    return std::nullopt;
}

/// A process by a descriptor of it. The C library has these calls only since 2.36.
class HeldProcess final : public ProcessReference {
public:
    HeldProcess(std::int32_t pid, Descriptor descriptor) : ProcessReference{pid}, descriptor_{std::move(descriptor)} {}
    [[nodiscard]] bool isAlive() const override { return deliver(0) || errno == EPERM; }
    bool send(ProcessSignal signal) override { return deliver(PosixProcessControl::systemNumber(signal)); }

private:
    [[nodiscard]] bool deliver(int number) const
    {
        return syscall(SYS_pidfd_send_signal, descriptor_.get(), number, nullptr, 0) == 0;
    }
    Descriptor descriptor_;
};

/// A process that did not exist when it was asked for.
class NoProcess final : public ProcessReference {
public:
    using ProcessReference::ProcessReference;
    [[nodiscard]] bool isAlive() const override { return false; }
    bool send(ProcessSignal) override { return false; }
};

/// A process for which there was no descriptor to hold it by. Its number may become a stranger's, whom nothing but
/// SIGCONT leaves unharmed; that always passes, for nobody must stay frozen because descriptors are short.
class UnheldProcess final : public ProcessReference {
public:
    explicit UnheldProcess(std::unique_ptr<ProcessReference> numbered)
        : ProcessReference{numbered->pid()}, numbered_{std::move(numbered)}
    {
    }
    [[nodiscard]] bool isAlive() const override { return numbered_->isAlive(); }
    bool send(ProcessSignal signal) override { return signal == ProcessSignal::continue_ && numbered_->send(signal); }

private:
    std::unique_ptr<ProcessReference> numbered_;
};

/// True for one of the last descriptors that this process may have: pipes and files need them more.
bool isAmongTheLast(const Descriptor& descriptor)
{
    constexpr rlim_t reserve = 32;
    rlimit limit{};
    return getrlimit(RLIMIT_NOFILE, &limit) == 0 && static_cast<rlim_t>(descriptor.get()) + reserve >= limit.rlim_cur;
}

/// What /proc/PID/exe links to without the kernel's mark of a removed file.
std::string_view withoutMark(std::string_view executable)
{
    constexpr std::string_view removedMark = " (deleted)";
    if (executable.ends_with(removedMark)) executable.remove_suffix(removedMark.size());
    return executable;
}

std::string content(const char* path)
{
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

} // namespace

std::string LinuxProcessControl::processName() const
{
    return executable().filename().string();
}

std::filesystem::path LinuxProcessControl::executable()
{
    std::error_code error;
    return withoutMark(std::filesystem::read_symlink("/proc/self/exe", error).native());
}

std::string LinuxProcessControl::processName(std::string_view executable)
{
    return std::filesystem::path{withoutMark(executable)}.filename().string();
}

std::unique_ptr<ProcessReference> LinuxProcessControl::reference(std::int32_t pid)
{
    if (pid <= 0) return std::make_unique<NoProcess>(pid);
    Descriptor descriptor{static_cast<int>(syscall(SYS_pidfd_open, pid, 0))}; // closes itself on exec
    const int error = descriptor ? 0 : errno;
    if (error == ESRCH) return std::make_unique<NoProcess>(pid);
    if (descriptor && !isAmongTheLast(descriptor)) return std::make_unique<HeldProcess>(pid, std::move(descriptor));
    auto numbered = PosixProcessControl::reference(pid);
    if (error == ENOSYS || error == EPERM) return numbered; // an older kernel, or a sandbox that refuses the call
    return std::make_unique<UnheldProcess>(std::move(numbered));
}

std::optional<ProcessMetrics> LinuxProcessControl::metrics() const
{
    return metrics(content("/proc/self/status"), content("/proc/self/smaps_rollup"));
}

std::optional<ProcessMetrics> LinuxProcessControl::metrics(std::string_view status, std::string_view smapsRollup)
{
    constexpr std::uint64_t kilobyte = 1024;
    const auto resident = number(status, "VmRSS");
    const auto threads = number(status, "Threads");
    if (!resident || !threads) return std::nullopt;
    ProcessMetrics result{*resident * kilobyte, *resident * kilobyte, static_cast<std::size_t>(*threads)};
    if (number(smapsRollup, "Private_Dirty")) {
        std::uint64_t own = 0;
        for (const auto* name : {"Private_Clean", "Private_Dirty", "Swap"})
            own += number(smapsRollup, name).value_or(0);
        result.footprintBytes = own * kilobyte;
    }
    return result;
}

} // namespace quellon
