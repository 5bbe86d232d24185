#pragma once

#include "QuellonCore/Enforcement/TerminationGuard.h"
#include "QuellonCore/Host/Host.h"

#include <functional>
#include <memory>

namespace quellon {

/// The two moments of an application's life at which something must be seen to. Main thread only.
class AppDelegate {
public:
    /// What must run before the process ends, by whatever way it can be told of. May be empty. Runs once.
    static std::function<void()> cleanup;

    /// From now on the signals that ask for the end end the process in order, with `cleanup` and exit status 0. Runs
    /// `cleanup` also when `exit` is called meanwhile, as a toolkit does whose display is lost.
    static void applicationDidFinishLaunching(const Host& host);
    /// The ordinary end: runs `cleanup`. Nothing is saved here; ticks have done that.
    static void applicationWillTerminate();

private:
    static std::shared_ptr<TerminationGuard> terminationGuard;
};

} // namespace quellon
