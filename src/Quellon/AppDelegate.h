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

    /// From now on SIGTERM and SIGINT end the process in order, with `cleanup` and exit status 0.
    static void applicationDidFinishLaunching(const Host& host);
    /// The ordinary end: runs `cleanup`. Nothing is saved here; ticks have done that.
    static void applicationWillTerminate();

private:
    static std::shared_ptr<TerminationGuard> terminationGuard;
};

} // namespace quellon
