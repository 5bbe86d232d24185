#pragma once

#include "EngineTrace.h"
#include "EngineWorld.h"

#include <gmock/gmock.h>

#include <map>
#include <optional>

namespace quellon {

inline constexpr std::uint64_t mebibyte = 1024 * 1024;

/// A hotspot, the user's applications on it, and a guard with one rule of 1 MiB a minute. Every round takes 5 seconds.
/// Applications are the user's own bundles; other processes are added with their own line of the process table.
struct ActingWorld : EngineWorld {
    using Lines = std::vector<std::string>;

    EngineTrace trace{host};
    GuardSettings settings; ///< What the engine finds; changes after `begin` go through the engine.
    std::vector<NotificationPlan> plans;
    GuardEngine::Options options; ///< Of the engine that `begin` makes.
    std::optional<GuardEngine> engine;

    explicit ActingWorld(ActionLevel level = ActionLevel::enforce)
    {
        CountedIdentifiers ids;
        settings = GuardSettings::defaults(ids);
        settings.onboarded = true;
        settings.rules() = {rule(1, 60s, mebibyte, level)};
        app("Player", {501, 502});
        options.notifier = [this](const NotificationPlan& plan) {
            trace.notified(plan);
            plans.push_back(plan);
        };
        options.onEvent = [this](const GuardEvent& event) { trace.appended(event); };
    }

    static GuardRule rule(std::uint8_t number, Seconds window, std::uint64_t threshold, ActionLevel level)
    {
        GuardRule result;
        result.id.bytes[0] = number;
        result.windowSeconds = window;
        result.thresholdBytes = threshold;
        result.level = level;
        return result;
    }

    /// An application of the user with these processes, each of which leads its group.
    void app(const std::string& name, const std::vector<std::int32_t>& pids)
    {
        for (const std::int32_t pid : pids) {
            process(pid, 501, pid, fmt::format("/Applications/{0}.app/Contents/MacOS/{0}", name));
        }
    }
    /// A running process.
    void process(std::int32_t pid, std::uint32_t uid, std::int32_t pgid, const std::string& command)
    {
        table_[pid] = fmt::format("{} {} {} {}", pid, uid, pgid, command);
        host.process(pid, {.start = fmt::format("start of {}", pid)});
        totals_[pid] += 0;
        tell();
    }
    /// The process is gone, from the process table too.
    void leaves(std::int32_t pid)
    {
        table_.erase(pid);
        host.process(pid).alive = false;
        tell();
    }
    /// The process table no longer lists the process, of which the traffic sample still knows.
    void leavesTable(std::int32_t pid)
    {
        table_.erase(pid);
        tell();
    }
    /// A process has received these bytes since the last round.
    void moves(std::int32_t pid, std::uint64_t bytes)
    {
        totals_[pid] += bytes;
        tell();
    }

    /// Saves the settings, makes the engine, and lets it take its first round, the baseline.
    void begin()
    {
        Persistence{host.host()}.save(settings, Persistence::settingsFile);
        static_cast<void>(trace.take());
        engine.emplace(host.host(), options);
        host.advance(0s);
        static_cast<void>(trace.take());
    }
    /// Lets the time to the next round pass, and that round; what the engine did.
    Lines round()
    {
        host.advance(5s);
        return trace.take();
    }
    Lines rounds(int count)
    {
        for (int i = 0; i < count; ++i) host.advance(5s);
        return trace.take();
    }
    /// A round in which the process has received so many bytes.
    Lines roundWith(std::int32_t pid, std::uint64_t bytes)
    {
        moves(pid, bytes);
        return round();
    }

    [[nodiscard]] bool isStopped(std::int32_t pid) { return host.process(pid).stopped; }
    /// What "suspended.json" holds; absent when there is no readable one.
    [[nodiscard]] std::optional<std::vector<SuspendedApp>> savedSuspended()
    {
        return Persistence{host.host()}.load<std::vector<SuspendedApp>>(Persistence::suspendedFile);
    }
    [[nodiscard]] std::filesystem::path file(std::string_view name) const { return stateFolder / name; }

private:
    void tell()
    {
        std::string ps;
        for (const auto& [pid, line] : table_) ps += line + "\n";
        host.tool(ToolRole::ps).prints(std::move(ps));
        std::string csv = "time,,interface,bytes_in,bytes_out,\n";
        for (const auto& [pid, bytes] : totals_) {
            csv += fmt::format("10:00:00.000000,p.{0},,{1},0,\n"
                               "10:00:00.000000,tcp4 172.20.10.4:{2}<->203.0.113.9:443,en0,{1},0,\n",
                               pid, bytes, 50'000 + pid);
        }
        host.tool(ToolRole::nettop).prints(std::move(csv));
    }

    std::map<std::int32_t, std::string> table_;
    std::map<std::int32_t, std::uint64_t> totals_;
};

/// The lines of a trace that are no saves of what ticks change.
inline std::vector<std::string> withoutCadence(std::vector<std::string> lines)
{
    std::erase_if(lines, [](const std::string& line) {
        return line == "save ledger.json" || line == "save budget.json" || line == "save liveness.json";
    });
    return lines;
}

} // namespace quellon
