#pragma once

#include "QuellonCore/Host/ProcessControl.h"
#include "QuellonHost/Posix/ChildProcess.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace quellon {

/// A shell in a session of its own that waits for the end of a pipe into which only this program could write, and then
/// lets the processes go on. The pipe ends with this program, whatever ends it; so the lifeline is in force as soon as
/// the shell is started, even if that has not run yet. Only who kills the shell as well, such as a service manager that
/// kills a whole control group, takes that away.
class ShellLifeline final : public Lifeline {
public:
    /// Null when there is no process, or the shell could not be started.
    [[nodiscard]] static std::unique_ptr<Lifeline> start(const std::vector<std::int32_t>& pids);
    ~ShellLifeline() override;

private:
    explicit ShellLifeline(ChildProcess shell) : shell_{std::move(shell)} {}

    ChildProcess shell_;
};

} // namespace quellon
