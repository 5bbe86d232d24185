#include "ReplaySession.h"

#include "QuellonCore/Enforcement/TerminationGuard.h"
#include "QuellonCore/Engine/OnlineContexts.h"
#include "QuellonCore/Measurement/Shell.h"
#include "ReplayFields.h"

#include <utility>

namespace quellon {

ReplaySession::ReplaySession(std::ostream& out) : printer_{world_, out} {}

ReplaySession::~ReplaySession()
{
    if (engine_) end();
}

GuardEngine& ReplaySession::engine()
{
    if (!engine_) throw ReplayError{"no guard is running"};
    return *engine_;
}

std::filesystem::path ReplaySession::stateFolder()
{
    return Persistence{world_.host()}.directory();
}

void ReplaySession::setDate(Date date)
{
    world_.setClock(date);
    if (!std::exchange(hasDate_, true)) printer_.countFromNow();
}

void ReplaySession::launch(const Launch& launch)
{
    const Host host = world_.host();
    GuardEngine::Options options;
    options.capabilities = Capabilities::detect(launch.edition, host.processes);
    options.autoStart = launch.autoStart;
    options.notifier = [this](const NotificationPlan& plan) { printer_.plan(plan); };
    options.onEvent = [this](const GuardEvent& event) { printer_.event(event); };
    options.updateCheck = OnlineContexts::updateCheckContext(host, versions_.program, versions_.system, network_);
    options.explain = OnlineContexts::explainContext(host, versions_.program, versions_.system, network_);
    engine_ = std::make_unique<GuardEngine>(host, std::move(options));
    engine_->setNotificationCapability(capability_);
    TerminationGuard::make(host.runLoop, host.processes, [this] { engine_->resumeAll(true); })->install();
}

void ReplaySession::quit()
{
    engine().resumeAll(true);
    world_.host().processes.exit(0);
    end();
}

void ReplaySession::signal(RunLoop::Signal signal)
{
    static_cast<void>(engine());
    world_.deliver(signal);
    end();
}

void ReplaySession::crash()
{
    static_cast<void>(engine());
    end();
}

/// What was the process is gone: its engine, what it had scheduled, and what lay outside of both.
void ReplaySession::end()
{
    if (const auto status = world_.exitStatus()) printer_.print("exit", *status);
    TerminationGuard::forgetInstalled();
    engine_.reset();
    network_.clear();
    world_.restart();
    static_cast<void>(Shell::drainTimeouts());
}

} // namespace quellon
