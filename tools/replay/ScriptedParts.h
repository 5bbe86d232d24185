#pragma once

#include "QuellonCore/Host/Clock.h"
#include "QuellonCore/Host/IdentifierSource.h"
#include "QuellonCore/Host/InterfaceAddresses.h"
#include "QuellonCore/Host/LogSink.h"
#include "QuellonCore/Host/ProcessControl.h"
#include "ScriptedObserver.h"
#include "ScriptedRunLoop.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// A wall clock that moves with virtual time, and jumps when told to.
class ScriptedClock final : public Clock {
public:
    explicit ScriptedClock(const ScriptedRunLoop& runLoop) : runLoop_{runLoop} {}
    [[nodiscard]] Date now() const override { return date_ + (runLoop_.elapsed() - setAt_); }
    [[nodiscard]] Calendar calendar() const override { return zone; }
    Calendar zone; ///< UTC at first.
    void set(Date date)
    {
        date_ = date;
        setAt_ = runLoop_.elapsed();
    }

private:
    const ScriptedRunLoop& runLoop_;
    Date date_{};
    Seconds setAt_{0};
};

/// A line on the log.
struct LogLine {
    std::string category;
    LogLevel level = LogLevel::info;
    std::string message;
    bool operator==(const LogLine&) const = default;
};

/// Keeps every line.
class ScriptedLog final : public LogSink {
public:
    void write(std::string_view category, LogLevel level, std::string_view message) override;
    /// Every line since construction or the last `clear`.
    [[nodiscard]] std::vector<LogLine> lines() const;
    /// The messages of one category.
    [[nodiscard]] std::vector<std::string> messages(std::string_view category) const;
    void clear();
    /// From now on told of each line; null for nobody.
    void observe(ScriptedObserver* observer) { observer_ = observer; }

private:
    mutable std::mutex lock_;
    std::vector<LogLine> lines_;
    ScriptedObserver* observer_ = nullptr;
};

/// The identifiers 00000000-0000-4000-8000-000000000001 and up.
class CountedIdentifiers final : public IdentifierSource {
public:
    [[nodiscard]] UUID next() override;

private:
    std::uint64_t count_ = 0;
};

class ScriptedAddresses final : public InterfaceAddresses {
public:
    [[nodiscard]] std::vector<InterfaceAddress> ipv4Addresses() const override { return addresses; }
    std::vector<InterfaceAddress> addresses;
};

/// Somebody else's process.
struct ScriptedProcess {
    std::string start; ///< What tells it from another process with its id; empty when that can't be read.
    std::optional<std::int32_t> parent{}; ///< Absent: who follows it in the guard's ancestry, else 1.
    bool denied = false;                  ///< It is alive, and this user may not signal it.
    bool alive = true;
    bool obeysTerminate = true; ///< SIGTERM ends it, also while it is stopped.
    bool stopped = false;
    std::size_t birth = 0; ///< Differs between two that have one id in turn; set by `ScriptedHost::process`.
};

/// A signal that was sent.
struct SentSignal {
    std::int32_t pid = 0;
    ProcessSignal signal = ProcessSignal::continue_;
    bool reached = false;
    bool operator==(const SentSignal&) const = default;
};

/// A process that is 900, is called "Quellon", has an empty environment, and does not know what it weighs.
class ScriptedProcesses final : public ProcessControl {
public:
    explicit ScriptedProcesses(ScriptedRunLoop& runLoop) : runLoop_{runLoop} {}
    [[nodiscard]] std::int32_t processID() const override { return id; }
    [[nodiscard]] std::string processName() const override { return name; }
    [[nodiscard]] std::optional<std::string> environment(std::string_view variable) const override;
    [[nodiscard]] std::optional<ProcessMetrics> metrics() const override { return weight; }
    [[nodiscard]] std::unique_ptr<ProcessReference> reference(std::int32_t pid) override;
    [[nodiscard]] bool spawnDetached(const Command& command) override;
    /// Null, unless `lifelines` gives one.
    [[nodiscard]] std::unique_ptr<Lifeline> lifeline(const std::vector<std::int32_t>& pids) override;
    /// Keeps the first status. The caller goes on, unlike in a real process, but the run loop runs nothing more.
    void exit(int status) override;
    /// From now on told of signals and of detached children; null for nobody.
    void observe(ScriptedObserver* observer) { observer_ = observer; }
    void noteSignal(const SentSignal& signal);

    /// What the system says of the start of `pid`, and of its parent; empty when there is no such process. The guard's
    /// own ancestors are `parents`.
    [[nodiscard]] std::string startTime(std::int32_t pid) const;
    [[nodiscard]] std::string parent(std::int32_t pid) const;

    std::int32_t id = 900;
    std::vector<std::int32_t> parents{850, 1}; ///< Nearest first.
    std::map<std::int32_t, ScriptedProcess> others;
    std::vector<SentSignal> signals;
    std::vector<Command> spawned; ///< The detached children. They never act.
    bool canSpawn = true;
    bool holdsReferences = false; ///< A reference never reaches a process that took the id over; otherwise it does.
    std::size_t births = 0;
    std::function<std::unique_ptr<Lifeline>(const std::vector<std::int32_t>& pids)> lifelines;
    std::string name = "Quellon";
    std::map<std::string, std::string, std::less<>> variables;
    std::optional<ProcessMetrics> weight;
    std::optional<int> exitStatus;

private:
    ScriptedRunLoop& runLoop_;
    ScriptedObserver* observer_ = nullptr;
};

} // namespace quellon
