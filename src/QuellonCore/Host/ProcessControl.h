#pragma once

#include "QuellonCore/Diagnostics/ProcessMetrics.h"
#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Support/EnumTable.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// A signal that the guard may send to somebody else's process.
enum class ProcessSignal {
    stop,      ///< Freezes.
    continue_, ///< Thaws; does nothing to a process that runs.
    terminate, ///< Asks to end.
    kill,      ///< Ends.
};

/// The raw text is the signal's name without its prefix.
inline constexpr EnumTable<ProcessSignal, 4> processSignals{{{
    {ProcessSignal::stop, "STOP", "SIGSTOP"},
    {ProcessSignal::continue_, "CONT", "SIGCONT"},
    {ProcessSignal::terminate, "TERM", "SIGTERM"},
    {ProcessSignal::kill, "KILL", "SIGKILL"},
}}};

constexpr const auto& enumTable(ProcessSignal /*type*/)
{
    return processSignals;
}

/// The process that had an id at the moment when the reference was made. Where the system can tell, a stranger that
/// takes the id over later is neither seen nor hit through it; elsewhere that holds from when it was seen to be gone.
/// Any thread, one at a time.
class ProcessReference {
public:
    explicit ProcessReference(std::int32_t pid) : pid_{pid} {}
    virtual ~ProcessReference() = default;
    ProcessReference(const ProcessReference&) = delete;
    ProcessReference& operator=(const ProcessReference&) = delete;

    [[nodiscard]] std::int32_t pid() const { return pid_; }

    /// True while the process exists, whoever owns it.
    [[nodiscard]] virtual bool isAlive() const = 0;

    /// Sends the signal; true when it reached the process. False for a process that is gone or that this user may not
    /// signal.
    virtual bool send(ProcessSignal signal) = 0;

private:
    std::int32_t pid_;
};

/// While it exists: should this program die, by whatever cause, certain processes go on at once. To destroy it ends
/// that, and sends nothing to anybody. Main thread.
class Lifeline {
public:
    Lifeline() = default;
    virtual ~Lifeline() = default;
    Lifeline(const Lifeline&) = delete;
    Lifeline& operator=(const Lifeline&) = delete;
};

/// Seam: what the system says of processes, the program's own first of all, and what can be done to them.
class ProcessControl {
public:
    virtual ~ProcessControl() = default;

    /// The process id of this process.
    [[nodiscard]] virtual std::int32_t processID() const = 0;

    /// The file name of the program's executable, links resolved, such as "Quellon".
    [[nodiscard]] virtual std::string processName() const = 0;

    /// The value of an environment variable as it was at the start of the process; absent when not set.
    [[nodiscard]] virtual std::optional<std::string> environment(std::string_view name) const = 0;

    /// What this process weighs now; absent when the system does not tell.
    [[nodiscard]] virtual std::optional<ProcessMetrics> metrics() const = 0;

    /// The process with this id now; never null. One that does not exist is not alive, and an id of 0 or below is no
    /// process. Any thread.
    [[nodiscard]] virtual std::unique_ptr<ProcessReference> reference(std::int32_t pid) = 0;

    /// Starts a process that nobody waits for and that outlives this one, its terminal and its session: it leads a
    /// session of its own, and its three standard streams are the null device. False when it could not be started.
    [[nodiscard]] virtual bool spawnDetached(const Command& command) = 0;

    /// A lifeline of these processes, in force when this returns. Ids of 0 and below are no processes. Null when there
    /// is none, or nothing can be started that would outlive this program.
    [[nodiscard]] virtual std::unique_ptr<Lifeline> lifeline(const std::vector<std::int32_t>& pids) = 0;

    /// Ends the process with this status at once, running no destructors of the main thread's stack.
    virtual void exit(int status) = 0;
};

} // namespace quellon
