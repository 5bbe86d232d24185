#include "Quellon/AppDelegate.h"

#include <cstdlib>
#include <utility>

namespace quellon {

std::function<void()> AppDelegate::cleanup;
std::shared_ptr<TerminationGuard> AppDelegate::terminationGuard;

void AppDelegate::applicationDidFinishLaunching(const Host& host)
{
    terminationGuard = TerminationGuard::make(host.runLoop, host.processes, &AppDelegate::applicationWillTerminate);
    terminationGuard->install();
    static_cast<void>(std::atexit(&AppDelegate::applicationWillTerminate));
}

void AppDelegate::applicationWillTerminate()
{
    if (const auto work = std::exchange(cleanup, nullptr)) work();
}

} // namespace quellon
