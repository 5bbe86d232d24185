#pragma once

#include "QuellonCore/Support/Time.h"

#include <string>
#include <vector>

namespace quellon {

/// A program and its arguments, the program's own name not among them.
struct Command {
    std::string path;
    std::vector<std::string> arguments;
    bool operator==(const Command&) const = default;
};

/// How a child process ended, and what it had printed.
struct CommandResult {
    enum class Outcome {
        finished,
        failedToStart,
        timedOut,
        lost, ///< A resident helper ended before its answer was complete; the runner has logged it.
    };
    Outcome outcome = Outcome::failedToStart;
    std::string output; ///< Standard output, byte for byte; empty unless `finished`.
    bool operator==(const CommandResult&) const = default;
};

/// Seam: running one of the system's tools. May be used from several threads at once.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;

    /// Runs the command and blocks until its standard output has ended and it has exited, or `timeout` is over. Output
    /// is drained while it runs. At the time-out the child gets SIGTERM and at once SIGKILL, and what it printed is
    /// thrown away; its end of file is awaited for at most one more second. Standard error is discarded; standard
    /// input, environment and folder are inherited. The exit status does not matter.
    [[nodiscard]] virtual CommandResult run(const Command& command, Seconds timeout) = 0;
};

} // namespace quellon
