#pragma once

#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Support/Time.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The one way in which the system's tools are run. A tool may hang, die or print rubbish; a caller sees either its
/// text or nothing.
namespace quellon::Shell {

/// The budget of every command unless the caller gives another.
inline constexpr Seconds defaultTimeout{4.0};
/// The budget of the traffic sample.
inline constexpr Seconds nettopTimeout{20.0};
/// The traffic sample on macOS: numeric addresses, raw numbers, external interfaces only, three columns, one sample.
inline constexpr std::string_view nettopPath = "/usr/bin/nettop";
inline constexpr std::array<std::string_view, 8> nettopArguments{
    "-n", "-x", "-t", "external", "-J", "interface,bytes_in,bytes_out", "-L", "1"};

/// Runs a command through `host.commands` and gives what it printed. Absent when it could not be started, ran out of
/// `timeout`, or printed bytes that are not UTF-8. Blocks; any thread. Logs on "shell" at level error: a failed start,
/// a time-out, and a run of `GuardLog::slowCommandThreshold` or longer. A time-out is recorded for `drainTimeouts`.
[[nodiscard]] std::optional<std::string> run(const Host& host, const Command& command,
                                             Seconds timeout = defaultTimeout);

/// `run` for the platform's traffic sample, under `nettopTimeout`.
[[nodiscard]] std::optional<std::string> nettop(const Host& host);

/// Takes the paths of all commands that timed out since the last call, in the order in which they were recorded, each
/// exactly once. One list a process; any thread.
[[nodiscard]] std::vector<std::string> drainTimeouts();

/// Runs `work` on a background thread and gives its result to `done` on the main thread, which stays free meanwhile.
template <typename Result>
void offMain(const Host& host, std::function<Result()> work, std::function<void(Result)> done)
{
    auto result = std::make_shared<std::optional<Result>>();
    host.runLoop.background([result, work = std::move(work)] { result->emplace(work()); },
                            [result, done = std::move(done)] { done(std::move(**result)); });
}

} // namespace quellon::Shell
