#include "QuellonHost/Posix/ShellLifeline.h"

#include "QuellonCore/Support/Time.h"
#include "QuellonHost/Posix/Waiting.h"

#include <string>
#include <utility>

namespace quellon {

namespace {

/// How long the end of a shell is waited for. A killed one takes no time, unless the system is stuck.
constexpr Seconds killGrace{1.0};

} // namespace

std::unique_ptr<Lifeline> ShellLifeline::start(const std::vector<std::int32_t>& pids)
{
    std::string words;
    for (const std::int32_t pid : pids) {
        if (pid > 0) words += " " + std::to_string(pid); // to `kill`, others would mean a group
    }
    if (words.empty()) return nullptr;
    // In one command for all, since many processes must fit into one argument. It goes on after one that is gone.
    auto shell = ChildProcess::startDetached(
        {"/bin/sh", {"-c", "cd /; read -r end; kill -CONT" + words + " 2>/dev/null"}}, true);
    if (!shell) return nullptr;
    return std::unique_ptr<Lifeline>{new ShellLifeline{*std::move(shell)}};
}

ShellLifeline::~ShellLifeline()
{
    // Before the pipe ends, at which the shell would do its work.
    shell_.kill();
    (void)shell_.reap(deadlineAfter(killGrace));
}

} // namespace quellon
