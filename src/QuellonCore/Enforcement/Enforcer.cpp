#include "QuellonCore/Enforcement/Enforcer.h"

#include "QuellonCore/Measurement/Shell.h"
#include "QuellonCore/Support/Numbers.h"
#include "QuellonCore/Support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace quellon::Enforcer {

namespace {

constexpr std::string_view shellPath = "/bin/sh";

std::optional<ProcessSignal> signal(EnforcementAction action)
{
    switch (action) {
    case EnforcementAction::suspend:
        return ProcessSignal::stop;
    case EnforcementAction::terminate:
        return ProcessSignal::terminate;
    case EnforcementAction::kill:
        return ProcessSignal::kill;
    case EnforcementAction::warn:
        break;
    }
    return std::nullopt;
}

std::vector<std::int32_t> send(const Processes& processes, ProcessSignal signal)
{
    std::vector<std::int32_t> reached;
    for (const auto& process : processes) {
        if (process->send(signal)) reached.push_back(process->pid());
    }
    return reached;
}

Processes references(const Host& host, const std::vector<std::int32_t>& pids)
{
    Processes result;
    for (const std::int32_t pid : pids) result.push_back(host.processes.reference(pid));
    return result;
}

/// True when the process is alive and its start time is `expected`, or `expected` is empty.
bool isStill(const Host& host, const ProcessReference& process, const std::string& expected)
{
    return process.isAlive() && matchesIdentity(host, process.pid(), expected);
}

/// What a query about one process answers, without blanks and line ends around it; absent when that is nothing.
std::optional<std::string> query(const Host& host, ToolRole role, std::int32_t pid)
{
    const auto output = Shell::run(host, host.platform.tool(role, {std::to_string(pid)}));
    if (!output) return std::nullopt;
    const std::string_view text = stripped(*output);
    return text.empty() ? std::nullopt : std::optional{std::string{text}};
}

} // namespace

Processes apply(const Host& host, EnforcementAction action, const std::vector<std::int32_t>& pids)
{
    const auto which = signal(action);
    if (!which) return {};
    Processes processes = references(host, pids);
    std::erase_if(processes, [which](const auto& process) { return !process->send(*which); });
    return processes;
}

void kill(const Processes& processes)
{
    send(processes, ProcessSignal::kill);
}

std::unique_ptr<Lifeline> lifeline(const Host& host, EnforcementAction action, const std::vector<std::int32_t>& pids)
{
    return action == EnforcementAction::suspend ? host.processes.lifeline(pids) : nullptr;
}

std::vector<std::int32_t> resume(const Host& host, const std::vector<std::int32_t>& pids)
{
    return resume(references(host, pids));
}

std::vector<std::int32_t> resume(const Processes& processes)
{
    return send(processes, ProcessSignal::continue_);
}

std::vector<std::int32_t> pids(const Processes& processes)
{
    std::vector<std::int32_t> result;
    for (const auto& process : processes) result.push_back(process->pid());
    return result;
}

bool isAlive(const Host& host, std::int32_t pid)
{
    return host.processes.reference(pid)->isAlive();
}

std::optional<std::string> startTime(const Host& host, std::int32_t pid)
{
    return query(host, ToolRole::startTime, pid);
}

std::vector<std::string> identities(const Host& host, const std::vector<std::int32_t>& pids)
{
    std::vector<std::string> result;
    for (const std::int32_t pid : pids) result.push_back(startTime(host, pid).value_or(""));
    return result;
}

bool matchesIdentity(const Host& host, std::int32_t pid, const std::optional<std::string>& expected)
{
    return !expected || expected->empty() || startTime(host, pid) == expected;
}

std::unique_ptr<ProcessReference> verified(const Host& host, std::int32_t pid, const std::string& expected)
{
    // Held before it is looked at, so that what is found out is true of whom a signal will reach.
    auto process = host.processes.reference(pid);
    return isStill(host, *process, expected) ? std::move(process) : nullptr;
}

Processes escalationTargets(const Host& host, Processes processes, const std::vector<std::string>& identities)
{
    Processes result;
    for (std::size_t i = 0; i < std::min(processes.size(), identities.size()); ++i) {
        if (isStill(host, *processes[i], identities[i])) result.push_back(std::move(processes[i]));
    }
    return result;
}

void scheduleTerminateEscalation(const Host& host, Processes processes, std::vector<std::string> identities,
                                 Seconds after, Scheduler schedule)
{
    if (processes.empty()) return;
    // A reference that goes by the number alone learns of an end by being asked, before the number is given anew.
    for (const auto& process : processes) (void)process->isAlive();
    if (!schedule) {
        schedule = [&runLoop = host.runLoop](Seconds delay, RunLoop::Work work) {
            runLoop.postAfter(delay, [&runLoop, work = std::move(work)] { runLoop.background(work, [] {}); });
        };
    }
    const auto asked = std::make_shared<Processes>(std::move(processes)); // work can be copied, references can't
    schedule(after, [host, asked, identities = std::move(identities)] {
        kill(escalationTargets(host, std::exchange(*asked, {}), identities));
    });
}

bool scheduleAutoResume(const Host& host, const std::vector<std::int32_t>& pids, int after)
{
    if (pids.empty()) return false;
    std::string script = fmt::format("sleep {}", after);
    for (const std::int32_t pid : pids) script += fmt::format("; kill -CONT {} 2>/dev/null", pid);
    return host.processes.spawnDetached({std::string{shellPath}, {"-c", std::move(script)}});
}

std::set<std::int32_t> selfPIDChain(const Host& host)
{
    constexpr std::int32_t firstProcess = 1;
    std::set<std::int32_t> chain;
    std::int32_t pid = host.processes.processID();
    for (std::size_t count = 0; count < chainLimit && pid > firstProcess; ++count) {
        chain.insert(pid);
        const auto text = query(host, ToolRole::parent, pid);
        const auto parent = text ? parseWhole<std::int32_t>(*text) : std::nullopt;
        if (!parent) break;
        pid = *parent;
    }
    return chain;
}

} // namespace quellon::Enforcer
