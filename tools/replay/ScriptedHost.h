#pragma once

#include "MemoryFileStore.h"
#include "QuellonCore/Host/Host.h"
#include "ScriptedCommands.h"
#include "ScriptedHttp.h"
#include "ScriptedParts.h"
#include "ScriptedRunLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quellon {

/// A whole world in virtual time: no clock, process, file or thread of the real one can be told from it. It begins at
/// 2026-03-15T10:00:00Z on macOS, with no tool that can be started but the questions about one process, no address and
/// no state file. Everything here is for the main thread.
class ScriptedHost {
public:
    ScriptedHost();
    ~ScriptedHost();
    ScriptedHost(const ScriptedHost&) = delete;
    ScriptedHost& operator=(const ScriptedHost&) = delete;

    /// What an engine gets. The platform is the one of this moment.
    [[nodiscard]] Host host();
    operator Host() { return host(); } // NOLINT: an engine in a test is built with the scripted host itself

    /// Lets virtual time pass and runs what is due; see `ScriptedRunLoop::advance`.
    void advance(Seconds duration) { runLoop_.advance(duration); }
    /// The wall clock.
    [[nodiscard]] Date now() const { return clock_.now(); }
    /// Virtual time since the beginning, whatever the wall clock did.
    [[nodiscard]] Seconds elapsed() const { return runLoop_.elapsed(); }
    /// The wall clock jumps; timers keep to virtual time.
    void setClock(Date date) { clock_.set(date); }
    /// The user's time zone is the one with this IANA name from now on; UTC at first.
    void setZone(const std::string& name) { clock_.zone = Calendar{name}; }

    [[nodiscard]] ScriptedTool& tool(ToolRole role) { return commands_.tool(role); }
    [[nodiscard]] const std::vector<ScriptedRun>& runs() const { return commands_.runs(); }
    [[nodiscard]] std::size_t runs(ToolRole role) const { return commands_.runs(role); }
    void clearRuns() { commands_.clearRuns(); }

    void setAddresses(std::vector<InterfaceAddress> addresses) { addresses_.addresses = std::move(addresses); }
    [[nodiscard]] ScriptedHttp& http() { return http_; }
    [[nodiscard]] MemoryFileStore& files() { return files_; }
    [[nodiscard]] ScriptedLog& log() { return log_; }

    /// Before the engine is built.
    void platform(Platform platform) { platform_ = std::move(platform); }
    void environment(std::string name, std::string value) { processes_.variables[std::move(name)] = std::move(value); }
    void processName(std::string name) { processes_.name = std::move(name); }
    void processID(std::int32_t id) { processes_.id = id; }
    void metrics(std::optional<ProcessMetrics> metrics) { processes_.weight = metrics; }

    /// The guard's ancestors, nearest first; 850 and 1 at first.
    void parents(std::vector<std::int32_t> pids) { processes_.parents = std::move(pids); }
    /// A process that signals and the queries for start and parent see. A second one with the same id replaces it.
    ScriptedProcess& process(std::int32_t pid, ScriptedProcess process)
    {
        process.birth = ++processes_.births;
        return processes_.others.insert_or_assign(pid, std::move(process)).first->second;
    }
    /// The process with this id; there must be one.
    [[nodiscard]] ScriptedProcess& process(std::int32_t pid) { return processes_.others.at(pid); }
    /// The signals that were sent so far.
    [[nodiscard]] const std::vector<SentSignal>& signals() const { return processes_.signals; }
    void clearSignals() { processes_.signals.clear(); }
    /// The detached children that were started so far.
    [[nodiscard]] const std::vector<Command>& spawned() const { return processes_.spawned; }
    /// From now on detached children can be started, or can't.
    void canSpawn(bool can) { processes_.canSpawn = can; }
    /// From now on references hold the process that had the id when they were made, as where the system can tell;
    /// otherwise they go by the id.
    void holdReferences() { processes_.holdsReferences = true; }
    /// Who gives lifelines from now on; at first there are none.
    void lifelines(std::function<std::unique_ptr<Lifeline>(const std::vector<std::int32_t>& pids)> make)
    {
        processes_.lifelines = std::move(make);
    }

    /// A signal arrives. Who asked for it is called in the next `advance`; when nobody ever did, it ends the process.
    void raise(RunLoop::Signal signal);
    /// The same, but at once, ahead of everything that is due.
    void deliver(RunLoop::Signal signal);
    /// The process is gone, whatever it was doing, and a new one begins in the same world. What the old one left on the
    /// run loop never runs; its engine must be gone. Observers hear nothing of the end of its background work.
    void restart();
    /// From now on told of every effect; null for nobody. It must live as long as that.
    void observe(ScriptedObserver* observer);

    /// How the process ended; absent while it runs. 128 and the signal's number for an end by signal.
    [[nodiscard]] std::optional<int> exitStatus() const { return processes_.exitStatus; }

private:
    Platform platform_ = Platform::macOS();
    ScriptedLog log_;
    MemoryFileStore files_{platform_};
    ScriptedAddresses addresses_;
    CountedIdentifiers identifiers_;
    ScriptedRunLoop runLoop_;
    ScriptedClock clock_{runLoop_};
    ScriptedProcesses processes_{runLoop_};
    ScriptedCommandRunner commands_{runLoop_, log_, platform_};
    ScriptedHttp http_{runLoop_};
    ScriptedObserver* observer_ = nullptr;
};

} // namespace quellon
