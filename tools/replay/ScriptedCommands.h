#pragma once

#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Host/LogSink.h"
#include "QuellonCore/Host/Platform.h"
#include "ScriptedObserver.h"
#include "ScriptedRunLoop.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// How one of the system's tools behaves from now on. Each call changes one thing and leaves the rest; a run that has
/// begun keeps the answer that it began with. A tool that was never told anything can't be started.
class ScriptedTool {
public:
    /// Computes what a run prints from the arguments beyond the role's own; absent: the run can't be started.
    using Answer = std::function<std::optional<std::string>(const std::vector<std::string>& arguments)>;

    /// It prints this.
    ScriptedTool& prints(std::string text);
    /// It prints what `answer` gives at the start of each run.
    ScriptedTool& answers(Answer answer);
    /// It can't be started. That takes no time.
    ScriptedTool& fails();
    /// It hangs, and takes the whole budget.
    ScriptedTool& timesOut();
    /// It is a resident helper that ends in the middle of its answer, which the runner logs.
    ScriptedTool& lost();
    /// It takes this much virtual time, 0 at first. More than the budget is a time-out at the budget.
    ScriptedTool& takes(Seconds duration);

private:
    friend class ScriptedCommandRunner;
    CommandResult::Outcome outcome_ = CommandResult::Outcome::failedToStart;
    Answer answer_;
    Seconds duration_{0};
};

/// A command that was run, and when.
struct ScriptedRun {
    Command command;
    Seconds at{0}; ///< Virtual time.
    bool operator==(const ScriptedRun&) const = default;
};

/// Runs no process: answers each command as the tool whose role the platform's table gives it. A command of no role
/// can't be started. On the main thread a run moves virtual time on.
class ScriptedCommandRunner final : public CommandRunner {
public:
    ScriptedCommandRunner(ScriptedRunLoop& runLoop, LogSink& log, const Platform& platform);

    [[nodiscard]] CommandResult run(const Command& command, Seconds timeout) override;

    [[nodiscard]] ScriptedTool& tool(ToolRole role) { return tools_[static_cast<std::size_t>(role)]; }
    /// Every command so far, in the order of their starts.
    [[nodiscard]] const std::vector<ScriptedRun>& runs() const { return runs_; }
    /// How many of them were of this role.
    [[nodiscard]] std::size_t runs(ToolRole role) const;
    void clearRuns() { runs_.clear(); }
    /// From now on told of what is started; null for nobody.
    void observe(ScriptedObserver* observer) { observer_ = observer; }

private:
    ScriptedRunLoop& runLoop_;
    LogSink& log_;
    const Platform& platform_;
    std::array<ScriptedTool, toolRoleCount> tools_;
    std::vector<ScriptedRun> runs_;
    ScriptedObserver* observer_ = nullptr;

    [[nodiscard]] std::optional<std::size_t> role(const Command& command) const;
};

} // namespace quellon
