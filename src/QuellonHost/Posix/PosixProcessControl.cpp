#include "QuellonHost/Posix/PosixProcessControl.h"

#include "QuellonHost/Posix/ChildProcess.h"
#include "QuellonHost/Posix/ShellLifeline.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

extern char** environ; // NOLINT: POSIX leaves the declaration to the program

namespace quellon {

namespace {

/// A process by its number. 0 and negative numbers would mean groups of processes, so they never reach the system. Once
/// it was seen to be gone it stays so, whoever has the number later.
class NumberedProcess final : public ProcessReference {
public:
    using ProcessReference::ProcessReference;
    [[nodiscard]] bool isAlive() const override { return deliver(0) || (!isGone_ && errno == EPERM); }
    bool send(ProcessSignal signal) override { return deliver(PosixProcessControl::systemNumber(signal)); }

private:
    [[nodiscard]] bool deliver(int number) const
    {
        if (isGone_) return false;
        const bool isDelivered = ::kill(pid(), number) == 0;
        isGone_ = !isDelivered && errno == ESRCH;
        return isDelivered;
    }
    mutable bool isGone_ = pid() <= 0;
};

} // namespace

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

int PosixProcessControl::systemNumber(ProcessSignal signal)
{
    switch (signal) {
    case ProcessSignal::stop:
        return SIGSTOP;
    case ProcessSignal::terminate:
        return SIGTERM;
    case ProcessSignal::kill:
        return SIGKILL;
    case ProcessSignal::continue_:
        break;
    }
    return SIGCONT;
}

std::unique_ptr<ProcessReference> PosixProcessControl::reference(std::int32_t pid)
{
    return std::make_unique<NumberedProcess>(pid);
}

bool PosixProcessControl::spawnDetached(const Command& command)
{
    ChildProcess::reapLeftovers();
    return ChildProcess::startDetached(command, false).has_value();
}

std::unique_ptr<Lifeline> PosixProcessControl::lifeline(const std::vector<std::int32_t>& pids)
{
    return ShellLifeline::start(pids);
}

void PosixProcessControl::exit(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace quellon
