#include "QuellonCore/Enforcement/TerminationGuard.h"

#include <utility>

namespace quellon {

std::shared_ptr<TerminationGuard> TerminationGuard::make(RunLoop& runLoop, ProcessControl& processes, Cleanup cleanup)
{
    return std::shared_ptr<TerminationGuard>{new TerminationGuard{runLoop, processes, std::move(cleanup)}};
}

TerminationGuard::TerminationGuard(RunLoop& runLoop, ProcessControl& processes, Cleanup cleanup)
    : runLoop_{runLoop}, processes_{processes}, cleanup_{std::move(cleanup)}
{
}

void TerminationGuard::install()
{
    for (const auto signal : {RunLoop::Signal::terminate, RunLoop::Signal::interrupt}) {
        sources_.push_back(runLoop_.onSignal(signal, [weak = weak_from_this(), &processes = processes_] {
            if (const auto guard = weak.lock()) guard->cleanup_();
            processes.exit(0);
        }));
    }
    guards().push_back(shared_from_this());
}

std::vector<std::shared_ptr<TerminationGuard>>& TerminationGuard::guards()
{
    static auto& all = *new std::vector<std::shared_ptr<TerminationGuard>>; // outlives static destruction
    return all;
}

} // namespace quellon
