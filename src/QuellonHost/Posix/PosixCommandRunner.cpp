#include "QuellonHost/Posix/PosixCommandRunner.h"

#include "QuellonCore/Diagnostics/GuardLog.h"

#include <algorithm>
#include <csignal>
#include <string>
#include <utility>

namespace quellon {

namespace {

using Outcome = CommandResult::Outcome;

constexpr Seconds endOfFileGrace{1.0};
constexpr Seconds cancelGrace{0.2};

/// What a child has printed so far, up to the limit.
struct Output {
    std::string text;
    bool tooLong = false;

    void add(std::string_view bytes)
    {
        tooLong = tooLong || bytes.size() > PosixCommandRunner::mostOutput - text.size();
        if (!tooLong) text.append(bytes);
    }
};

/// Reads to the end of file; `ready` means that it came.
WaitEnd drain(int descriptor, Deadline deadline, const Interruption& interruption, Output& output)
{
    constexpr std::size_t pipeCapacity = 65'536;
    std::vector<char> buffer(pipeCapacity);
    while (true) {
        const auto [wait, count] = readStep(descriptor, buffer, deadline, interruption);
        if (wait != WaitEnd::ready || count == 0) return wait;
        output.add({buffer.data(), count});
    }
}

} // namespace

/// Lets `cancel` reach a child, up to the moment where its id may belong to another process.
class PosixCommandRunner::Registration {
public:
    Registration(PosixCommandRunner& runner, const ChildProcess& child) : runner_{runner}, pid_{child.pid()}
    {
        const std::lock_guard guard{runner_.lock_};
        runner_.running_.push_back(pid_);
        if (runner_.cancelled_) child.kill();
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration()
    {
        const std::lock_guard guard{runner_.lock_};
        std::erase(runner_.running_, pid_);
    }

private:
    PosixCommandRunner& runner_;
    pid_t pid_;
};

CommandResult PosixCommandRunner::run(const Command& command, Seconds timeout)
{
    const Deadline deadline = deadlineAfter(timeout);
    ChildProcess::reapLeftovers();
    {
        const std::lock_guard guard{lock_};
        if (cancelled_) return {Outcome::lost, {}};
    }
    auto child = ChildProcess::start(command, {});
    if (!child) return {};

    Output output;
    WaitEnd end{};
    {
        const Registration registration{*this, *child};
        end = drain(child->output.get(), deadline, interruption_, output);
        if (end == WaitEnd::ready) {
            child->awaitExit();
        } else {
            child->kill();
        }
    }
    if (end == WaitEnd::deadline) {
        const Deadline lastMoment = deadlineAfter(endOfFileGrace);
        Output discarded{{}, true};
        (void)drain(child->output.get(), lastMoment, interruption_, discarded);
        child->reap(lastMoment);
        return {Outcome::timedOut, {}};
    }
    child->reap(deadlineAfter(cancelGrace));
    const std::lock_guard guard{lock_};
    if (cancelled_) return {Outcome::lost, {}};
    if (output.tooLong) {
        log_.write(GuardLog::shell, LogLevel::error, command.path + " printed more than 64 MiB");
        return {Outcome::lost, {}};
    }
    return {Outcome::finished, std::move(output.text)};
}

void PosixCommandRunner::cancel()
{
    const std::lock_guard guard{lock_};
    cancelled_ = true;
    interruption_.interrupt();
    for (const pid_t pid : running_) (void)kill(pid, SIGKILL);
}

} // namespace quellon
