#include "ScriptedHost.h"

#include "QuellonCore/Support/Numbers.h"

namespace quellon {

namespace {

constexpr Date firstDate{std::chrono::sys_days{std::chrono::year{2026} / 3 / 15}.time_since_epoch() +
                         std::chrono::hours{10} - referenceDateSince1970};

/// What a shell reports of a process that a signal ended is this and the signal's number.
constexpr int endedBySignal = 128;

/// As the system numbers it.
constexpr int number(RunLoop::Signal signal)
{
    return signal == RunLoop::Signal::terminate ? 15 : 2;
}

} // namespace

ScriptedHost::ScriptedHost()
{
    clock_.set(firstDate);
    const auto aboutPID = [this](std::string (ScriptedProcesses::*question)(std::int32_t) const) {
        return [this, question](const std::vector<std::string>& arguments) -> std::optional<std::string> {
            if (arguments.empty()) return std::nullopt;
            const auto pid = parseWhole<std::int32_t>(arguments.front());
            return pid ? (processes_.*question)(*pid) + "\n" : "\n";
        };
    };
    tool(ToolRole::startTime).answers(aboutPID(&ScriptedProcesses::startTime));
    tool(ToolRole::parent).answers(aboutPID(&ScriptedProcesses::parent));
}

// Background work in flight uses the other parts, so it ends before they go. Nobody is told of that: in a real process
// it would never have happened.
ScriptedHost::~ScriptedHost()
{
    observe(nullptr);
    runLoop_.finish();
}

Host ScriptedHost::host()
{
    return {clock_, runLoop_, commands_, processes_, files_, addresses_, log_, identifiers_, http_, platform_};
}

void ScriptedHost::raise(RunLoop::Signal signal)
{
    if (!runLoop_.raise(signal)) processes_.exit(endedBySignal + number(signal));
}

void ScriptedHost::deliver(RunLoop::Signal signal)
{
    if (!runLoop_.deliver(signal)) processes_.exit(endedBySignal + number(signal));
}

void ScriptedHost::restart()
{
    ScriptedObserver* const observer = observer_;
    observe(nullptr);
    runLoop_.restart();
    processes_.exitStatus.reset();
    observe(observer);
}

void ScriptedHost::observe(ScriptedObserver* observer)
{
    observer_ = observer;
    files_.observe(observer);
    log_.observe(observer);
    processes_.observe(observer);
    commands_.observe(observer);
    http_.observe(observer);
}

} // namespace quellon
