#include "QuellonCore/Measurement/Shell.h"

#include "QuellonCore/Diagnostics/GuardLog.h"
#include "QuellonCore/Support/Utf8.h"

#include <fmt/format.h>

#include <mutex>

namespace quellon::Shell {

namespace {

struct TimeoutLog {
    std::mutex lock;
    std::vector<std::string> items;
};

/// Never freed: a background run may still come back while the process ends.
TimeoutLog& timeoutLog()
{
    static auto* const log = new TimeoutLog;
    return *log;
}

void recordTimeout(const std::string& path)
{
    TimeoutLog& log = timeoutLog();
    const std::lock_guard guard{log.lock};
    log.items.push_back(path);
}

void logError(const Host& host, const std::string& message)
{
    host.log.write(GuardLog::shell, LogLevel::error, message);
}

} // namespace

std::optional<std::string> run(const Host& host, const Command& command, Seconds timeout)
{
    const Date start = host.clock.now();
    CommandResult result = host.commands.run(command, timeout);
    switch (result.outcome) {
    case CommandResult::Outcome::finished:
        break;
    case CommandResult::Outcome::failedToStart:
        logError(host, "spawn failed: " + command.path);
        return std::nullopt;
    case CommandResult::Outcome::timedOut:
        recordTimeout(command.path);
        logError(host, fmt::format("TIMEOUT {} killed after {:.6f}s", command.path, timeout.count()));
        return std::nullopt;
    case CommandResult::Outcome::lost:
        return std::nullopt;
    }
    const Seconds elapsed = host.clock.now() - start;
    if (elapsed >= GuardLog::slowCommandThreshold) {
        logError(host,
                 fmt::format("slow {} took {:.2f}s of {:.0f}s budget", command.path, elapsed.count(), timeout.count()));
    }
    if (!isUtf8(result.output)) return std::nullopt;
    return std::move(result.output);
}

std::optional<std::string> nettop(const Host& host)
{
    return run(host, host.platform.tool(ToolRole::nettop), nettopTimeout);
}

std::vector<std::string> drainTimeouts()
{
    std::vector<std::string> taken;
    TimeoutLog& log = timeoutLog();
    const std::lock_guard guard{log.lock};
    taken.swap(log.items);
    return taken;
}

} // namespace quellon::Shell
