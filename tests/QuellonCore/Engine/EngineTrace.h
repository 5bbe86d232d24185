#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "ScriptedHost.h"

#include <fmt/format.h>

#include <array>

#include <string>
#include <utility>
#include <vector>

namespace quellon {

/// What an engine does to the world, one line each, in the order in which it does it: signals, watchdogs, questions
/// for start times, saved and removed files, plans, and the lines of the activity log.
class EngineTrace final : public ScriptedObserver {
public:
    explicit EngineTrace(ScriptedHost& world) : world_{world} { world_.observe(this); }
    ~EngineTrace() override { world_.observe(nullptr); }
    EngineTrace(const EngineTrace&) = delete;
    EngineTrace& operator=(const EngineTrace&) = delete;

    /// The lines since the last call.
    [[nodiscard]] std::vector<std::string> take() { return std::exchange(lines_, {}); }

    void told(std::string line) { lines_.push_back(std::move(line)); }
    void notified(const NotificationPlan& plan) { lines_.push_back("notify: " + plan.title); }
    void appended(const GuardEvent& event)
    {
        constexpr std::array kinds{"info", "warning", "enforced"};
        lines_.push_back(fmt::format("{}: {}", kinds.at(static_cast<std::size_t>(event.kind)), event.message));
    }

    void ran(const Command& command) override
    {
        if (command.arguments.empty()) return;
        const std::string& last = command.arguments.back();
        if (command == world_.host().platform.tool(ToolRole::startTime, {last}))
            lines_.push_back("start time of " + last);
    }
    void spawned(const Command& command) override { lines_.push_back("spawn " + command.arguments.back()); }
    void signalled(const SentSignal& sent) override
    {
        lines_.push_back(
            fmt::format("{} {}{}", processSignals.raw(sent.signal), sent.pid, sent.reached ? "" : " in vain"));
    }
    void saved(const std::filesystem::path& file) override { lines_.push_back("save " + file.filename().string()); }
    void removed(const std::filesystem::path& file) override { lines_.push_back("remove " + file.filename().string()); }

private:
    ScriptedHost& world_;
    std::vector<std::string> lines_;
};

} // namespace quellon
