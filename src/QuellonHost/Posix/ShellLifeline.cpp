#include "QuellonHost/Posix/ShellLifeline.h"

#include <csignal>
#include <string>
#include <utility>

namespace quellon {

std::unique_ptr<Lifeline> ShellLifeline::start(const std::vector<std::int32_t>& pids)
{
    std::vector<std::int32_t> processes;
    std::string script = "cd /; read -r end";
    for (const std::int32_t pid : pids) {
        if (pid <= 0) continue; // to `kill` it would mean a group
        processes.push_back(pid);
        script += "; kill -CONT " + std::to_string(pid) + " 2>/dev/null";
    }
    if (processes.empty()) return nullptr;
    auto shell = ChildProcess::startDetached({"/bin/sh", {"-c", std::move(script)}}, true);
    if (!shell) return nullptr;
    return std::unique_ptr<Lifeline>{new ShellLifeline{std::move(processes), *std::move(shell)}};
}

ShellLifeline::ShellLifeline(std::vector<std::int32_t> pids, ChildProcess shell)
    : pids_{std::move(pids)}, shell_{std::move(shell)}
{
}

ShellLifeline::~ShellLifeline()
{
    // Before the pipe ends, at which the shell would do its work.
    shell_.kill();
    shell_.awaitExit();
    (void)shell_.reap(Deadline{});
}

void ShellLifeline::thaw()
{
    for (const std::int32_t pid : pids_) (void)::kill(pid, SIGCONT);
}

} // namespace quellon
