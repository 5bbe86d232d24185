#pragma once

#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonHost/Posix/Descriptor.h"
#include "QuellonHost/Posix/Waiting.h"

#include <optional>
#include <sys/types.h>

namespace quellon {

/// A child whose standard output is a pipe to us or the null device, as is its standard error. It inherits the
/// environment, the folder, and no descriptor but the standard ones (where the C library can't close the others: none
/// that is ours). Signals have their default effect on it, also those that we or whoever started us ignore, but for
/// SIGHUP and SIGTSTP: what the guard's terminal does to it is no more than what that does to the guard. The path is
/// not searched for.
class ChildProcess {
public:
    struct Options {
        bool withInput = false; ///< Standard input is a pipe from us; otherwise it is our own.
        bool ownGroup = false;  ///< Leads a process group of its own, so that a terminal's Ctrl-C does not reach it.
    };

    /// Absent when it could not be started. Any thread.
    [[nodiscard]] static std::optional<ChildProcess> start(const Command& command, Options options);

    /// A child that leads a session of its own, with its standard streams on the null device, but for a standard input
    /// that is a pipe from us with `withInput`. Absent when it could not be started. Any thread.
    [[nodiscard]] static std::optional<ChildProcess> startDetached(const Command& command, bool withInput);

    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    /// A child that was not reaped is left to `reapLeftovers`; until then its `input` stays open.
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return pid_; }
    Descriptor output; ///< The reading end of its standard output; empty when that is the null device.
    Descriptor input;  ///< The writing end of its standard input, non-blocking; empty without `withInput`.

    /// Sends SIGTERM and at once SIGKILL. Not after a successful `reap`.
    void kill() const;
    /// Waits without bound until it has ended. Its id stays taken until `reap`.
    void awaitExit() const;
    /// Waits until it has ended, and gives back its id. False when it still runs at the deadline.
    bool reap(Deadline deadline);

    /// Reaps those that ended after they were given up. Never waits.
    static void reapLeftovers();

private:
    ChildProcess(pid_t pid, Descriptor outputEnd, Descriptor inputEnd);

    pid_t pid_ = 0; ///< 0 once reaped.
};

} // namespace quellon
