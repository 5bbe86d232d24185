#pragma once

#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Support/Time.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Acts on other processes, and supplies what makes that safe. The one place that sends signals, other than the shells
/// that thaw: the watchdog, and lifelines. Whom and when is decided elsewhere. Process ids come and go: a later action
/// on one compares the start time that was taken when the guard first acted on it. No failure is reported; it shows in
/// a shorter result.
namespace quellon::Enforcer {

/// After how many seconds the watchdog thaws what was frozen, whatever has become of the guard.
inline constexpr int autoResumeSeconds = 1800;
/// How long a process has between SIGTERM and SIGKILL.
inline constexpr Seconds terminateGraceSeconds{5.0};
/// How many processes `selfPIDChain` looks at.
inline constexpr std::size_t chainLimit = 12;

/// Processes that are still the ones that were meant.
using Processes = std::vector<std::unique_ptr<ProcessReference>>;
/// Runs work after a delay.
using Scheduler = std::function<void(Seconds delay, RunLoop::Work work)>;

/// Sends the signal of `action` (`terminate`: only SIGTERM) to each process in order. Returns those that it reached;
/// `warn` sends nothing and reaches none.
[[nodiscard]] Processes apply(const Host& host, EnforcementAction action, const std::vector<std::int32_t>& pids);
/// SIGKILL to those of the processes that it can reach.
void kill(const Processes& processes);

/// What the processes are held by while `action` is applied to them and the freeze is not on record yet: should the
/// guard die in between, nobody else would know of it. Null for an action that freezes nobody.
[[nodiscard]] std::unique_ptr<Lifeline> lifeline(const Host& host, EnforcementAction action,
                                                 const std::vector<std::int32_t>& pids);

/// Sends SIGCONT to each process in order, whoever it is by now: it does no harm to one that runs. Returns those that
/// it reached.
std::vector<std::int32_t> resume(const Host& host, const std::vector<std::int32_t>& pids);
std::vector<std::int32_t> resume(const Processes& processes);

/// The ids of the processes, in order.
[[nodiscard]] std::vector<std::int32_t> pids(const Processes& processes);

/// True when a process with this id exists, another user's too.
[[nodiscard]] bool isAlive(const Host& host, std::int32_t pid);

/// A text that is fixed for the life of a process and differs between two that have one id in turn; compared, never
/// read. Absent when it can't be told. Blocks for up to `Shell::defaultTimeout`.
[[nodiscard]] std::optional<std::string> startTime(const Host& host, std::int32_t pid);

/// `startTime` of each process, an empty text where it is absent. Blocks for each.
[[nodiscard]] std::vector<std::string> identities(const Host& host, const std::vector<std::int32_t>& pids);

/// True when `expected` is absent or empty, which asks nothing of the system: it was never captured. Otherwise whether
/// the process has this start time now.
[[nodiscard]] bool matchesIdentity(const Host& host, std::int32_t pid, const std::optional<std::string>& expected);

/// The process, when it is alive and its start time is `expected`, or `expected` is empty. Null otherwise.
[[nodiscard]] std::unique_ptr<ProcessReference> verified(const Host& host, std::int32_t pid,
                                                         const std::string& expected);

/// Of those that were asked to end, who is still there and still the same. The shorter list decides how many are looked
/// at. Blocks for each.
[[nodiscard]] Processes escalationTargets(const Host& host, Processes processes,
                                          const std::vector<std::string>& identities);

/// After `after`, SIGKILL to the `escalationTargets` of that moment. The processes are those that took SIGTERM, by the
/// references that it was sent through, so that a stranger with the id of one that obeyed is not hit. Nothing cancels
/// it but the end of the program. Nothing is scheduled for no processes. `schedule` by default runs the work on a
/// background thread.
void scheduleTerminateEscalation(const Host& host, Processes processes, std::vector<std::string> identities,
                                 Seconds after = terminateGraceSeconds, Scheduler schedule = {});

/// Starts the watchdog: a child that sleeps for so many seconds, sends SIGCONT to each process and ends. It belongs to
/// the system from then on, and can't be called back. False when there is no process, or the child could not be
/// started.
bool scheduleAutoResume(const Host& host, const std::vector<std::int32_t>& pids, int after = autoResumeSeconds);

/// The guard's process and its ancestors, at most `chainLimit` of them, without the system's first process. Blocks.
[[nodiscard]] std::set<std::int32_t> selfPIDChain(const Host& host);

} // namespace quellon::Enforcer
