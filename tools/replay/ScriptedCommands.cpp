#include "ScriptedCommands.h"

#include <algorithm>
#include <utility>

namespace quellon {

using Outcome = CommandResult::Outcome;

ScriptedTool& ScriptedTool::prints(std::string text)
{
    return answers([text = std::move(text)](const auto&) { return text; });
}

ScriptedTool& ScriptedTool::answers(Answer answer)
{
    outcome_ = Outcome::finished;
    answer_ = std::move(answer);
    return *this;
}

ScriptedTool& ScriptedTool::fails()
{
    outcome_ = Outcome::failedToStart;
    return *this;
}

ScriptedTool& ScriptedTool::timesOut()
{
    outcome_ = Outcome::timedOut;
    return *this;
}

ScriptedTool& ScriptedTool::lost()
{
    outcome_ = Outcome::lost;
    return *this;
}

ScriptedTool& ScriptedTool::takes(Seconds duration)
{
    duration_ = duration;
    return *this;
}

ScriptedCommandRunner::ScriptedCommandRunner(ScriptedRunLoop& runLoop, LogSink& log, const Platform& platform)
    : runLoop_{runLoop}, log_{log}, platform_{platform}
{
}

CommandResult ScriptedCommandRunner::run(const Command& command, Seconds timeout)
{
    runs_.push_back({command, runLoop_.elapsed()});
    const auto role = this->role(command);
    if (!role || tools_[*role].outcome_ == Outcome::failedToStart) return {};
    const auto& own = platform_.tools[*role].arguments;
    const auto firstExtra = command.arguments.begin() + static_cast<std::ptrdiff_t>(own.size());

    CommandResult result{tools_[*role].outcome_, {}};
    Seconds duration = tools_[*role].duration_;
    if (result.outcome == Outcome::finished) {
        auto text = tools_[*role].answer_({firstExtra, command.arguments.end()});
        if (!text) return {};
        result.output = std::move(*text);
    }
    if (observer_ != nullptr) observer_->ran(command);
    if (result.outcome == Outcome::timedOut || duration > timeout) {
        result = {Outcome::timedOut, {}};
        duration = timeout;
    }
    if (!runLoop_.block(duration)) return {};
    if (result.outcome == Outcome::lost) {
        log_.write("shell", LogLevel::error, command.path + " ended before its answer was complete");
    }
    return result;
}

std::size_t ScriptedCommandRunner::runs(ToolRole role) const
{
    return static_cast<std::size_t>(std::count_if(runs_.begin(), runs_.end(), [&](const ScriptedRun& run) {
        return this->role(run.command) == static_cast<std::size_t>(role);
    }));
}

/// The role whose command has this path and the longest list of arguments that this one begins with.
std::optional<std::size_t> ScriptedCommandRunner::role(const Command& command) const
{
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i < toolRoleCount; ++i) {
        const auto& [path, own] = platform_.tools[i];
        if (path != command.path || own.size() > command.arguments.size()) continue;
        if (!std::equal(own.begin(), own.end(), command.arguments.begin())) continue;
        if (!best || own.size() > platform_.tools[*best].arguments.size()) best = i;
    }
    return best;
}

} // namespace quellon
