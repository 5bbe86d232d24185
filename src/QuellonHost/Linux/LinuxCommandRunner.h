#pragma once

#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonHost/Linux/ProbeClient.h"
#include "QuellonHost/Posix/PosixCommandRunner.h"

namespace quellon {

/// Sends commands that are named `probeName` to the resident helper and runs all others as child processes. Who a
/// process is and who started it, it answers itself, as the helper would: a helper that is missing or hangs must not
/// keep the guard from finding what it has frozen.
class LinuxCommandRunner final : public CommandRunner {
public:
    /// `probe` is the helper's absolute path.
    LinuxCommandRunner(std::filesystem::path probe, LogSink& log)
        : log_{log}, probe_{std::move(probe), log}, children_{log}
    {
    }

    [[nodiscard]] CommandResult run(const Command& command, Seconds timeout) override;

    /// For the end of the program: ends what runs, at once and silently.
    void cancel();

private:
    LogSink& log_;
    ProbeClient probe_;
    PosixCommandRunner children_;
};

} // namespace quellon
