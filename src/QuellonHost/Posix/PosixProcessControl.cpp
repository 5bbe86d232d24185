#include "QuellonHost/Posix/PosixProcessControl.h"

#include "QuellonHost/Posix/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

extern char** environ; // NOLINT: POSIX leaves the declaration to the program

namespace quellon {

namespace {

/// A process by its number. 0 and negative numbers would mean groups of processes, so they never reach the system.
class NumberedProcess final : public ProcessReference {
public:
    using ProcessReference::ProcessReference;
    [[nodiscard]] bool isAlive() const override { return pid() > 0 && (::kill(pid(), 0) == 0 || errno == EPERM); }
    bool send(ProcessSignal signal) override
    {
        return pid() > 0 && ::kill(pid(), PosixProcessControl::systemNumber(signal)) == 0;
    }
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
    return ChildProcess::startDetached(command);
}

void PosixProcessControl::exit(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace quellon
