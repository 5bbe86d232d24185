#pragma once

#include "QuellonCore/Host/ProcessControl.h"
#include "QuellonCore/Host/RunLoop.h"

#include <functional>
#include <memory>
#include <vector>

namespace quellon {

/// Turns the signals of `RunLoop::Signal` into an orderly end: one clean-up on the main thread, where it may touch
/// everything, then exit with status 0. What a guard cleans up is other people's frozen programs, so it must not be
/// lost by accident: once installed it lives as long as the process.
class TerminationGuard : public std::enable_shared_from_this<TerminationGuard> {
public:
    using Cleanup = std::function<void()>;

    /// A guard that does nothing until it is installed. The seams outlive the run loop's last turn.
    [[nodiscard]] static std::shared_ptr<TerminationGuard> make(RunLoop& runLoop, ProcessControl& processes,
                                                                Cleanup cleanup);
    TerminationGuard(const TerminationGuard&) = delete;
    TerminationGuard& operator=(const TerminationGuard&) = delete;

    /// Takes over `terminate`, then `interrupt`. There is no way back. A clean-up that takes long delays the end; there
    /// is no limit, and a second signal meanwhile has no effect.
    void install();

    /// Every guard that was installed, in that order.
    [[nodiscard]] static const std::vector<std::shared_ptr<TerminationGuard>>& installed() { return guards(); }
    /// Empties `installed`: only for a scripted world, whose processes end without ending the program.
    static void forgetInstalled() { guards().clear(); }

private:
    RunLoop& runLoop_;
    ProcessControl& processes_;
    Cleanup cleanup_;
    std::vector<RunLoop::Handle> sources_;

    TerminationGuard(RunLoop& runLoop, ProcessControl& processes, Cleanup cleanup);
    [[nodiscard]] static std::vector<std::shared_ptr<TerminationGuard>>& guards();
};

} // namespace quellon
