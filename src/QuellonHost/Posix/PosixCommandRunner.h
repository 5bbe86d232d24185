#pragma once

#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Host/LogSink.h"
#include "QuellonHost/Posix/ChildProcess.h"
#include "QuellonHost/Posix/Waiting.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace quellon {

/// Runs each command as a child process.
class PosixCommandRunner final : public CommandRunner {
public:
    /// No tool has that much to say. A run that prints more is a `lost` one, and the log says so.
    static constexpr std::size_t mostOutput = std::size_t{64} << 20U;

    explicit PosixCommandRunner(LogSink& log) : log_{log} {}

    /// See the seam. The exit of a child that has closed its output is awaited without bound.
    [[nodiscard]] CommandResult run(const Command& command, Seconds timeout) override;

    /// For the end of the program: kills what runs, and from now on every run, those under way included, gives `lost`
    /// at once, with nothing on the log. Any thread.
    void cancel();

private:
    class Registration;

    LogSink& log_;
    Interruption interruption_;
    std::mutex lock_;
    std::vector<pid_t> running_; ///< Children that may be killed by `cancel`: none of them is reaped yet.
    bool cancelled_ = false;
};

} // namespace quellon
