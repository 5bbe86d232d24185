#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Measurement/Shell.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace quellon {

namespace {

std::size_t processCount(const std::vector<SuspendedApp>& entries)
{
    std::size_t count = 0;
    for (const SuspendedApp& entry : entries) count += entry.pids.size();
    return count;
}

} // namespace

/// What an action on these processes leaves to be done later.
void GuardEngine::follow(EnforcementAction action, Enforcer::Processes processes, SuspendedApp entry)
{
    if (action == EnforcementAction::terminate) {
        Enforcer::scheduleTerminateEscalation(host_, std::move(processes), std::move(entry.starts));
    } else if (action == EnforcementAction::suspend) {
        // The watchdog first: from here on the freeze has an end, whatever becomes of the guard.
        Enforcer::scheduleAutoResume(host_, entry.pids, autoResumeSeconds_);
        suspended_.push_back(std::move(entry));
        persistence_.save(suspended_, Persistence::suspendedFile);
    }
}

void GuardEngine::enforceNow(const std::vector<std::string>& apps, EnforcementAction action)
{
    if (!capabilities_.canEnforce || action == EnforcementAction::warn) {
        append(GuardEvent::Kind::warning,
               std::string{capabilities_.enforcementBlockedReason().value_or("Can't step in on this edition")});
        return;
    }
    const auto table = ProcessTable::parse(Shell::run(host_, host_.platform.tool(ToolRole::ps)).value_or(""));
    const auto groups = protection_.protectedGroups(table);
    const auto selfPIDs = Enforcer::selfPIDChain(host_);
    for (const std::string& app : apps) {
        std::vector<std::int32_t> targets;
        for (const ProcessEntry& process : table) {
            if (ProcessTable::appLabel(process.command) != app) continue;
            if (protection_.decide(process, selfPIDs, groups).isAllowed()) targets.push_back(process.pid);
        }
        const auto untilRecorded = Enforcer::lifeline(host_, action, targets);
        auto processes = Enforcer::apply(host_, action, targets);
        if (processes.empty()) continue;
        const auto acted = Enforcer::pids(processes);
        follow(action, std::move(processes), {app, acted, Enforcer::identities(host_, acted), 0, host_.clock.now()});
        append(GuardEvent::Kind::enforced,
               fmt::format("{} → {} (from notification)", app, enforcementActions.label(action)));
    }
}

void GuardEngine::setSnooze(std::string_view app, double minutes)
{
    constexpr Seconds minute = std::chrono::minutes{1};
    snoozedUntil_.insert_or_assign(std::string{app}, host_.clock.now() + minutes * minute);
}

void GuardEngine::resume(const SuspendedApp& entry, std::optional<double> snoozeMinutes)
{
    const SuspendedApp thawed = entry; // it may be one of those that go
    Enforcer::resume(host_, thawed.pids);
    replacedPauses_.thaw(thawed.app);
    std::erase_if(suspended_, [id = thawed.id()](const SuspendedApp& each) { return each.id() == id; });
    cooldown_.erase(thawed.app);
    const double minutes = snoozeMinutes.value_or(settings_.snoozeMinutes);
    if (minutes > 0) setSnooze(thawed.app, minutes);
    persistence_.save(suspended_, Persistence::suspendedFile);
    append(GuardEvent::Kind::info,
           minutes > 0 ? fmt::format("Resumed {} · snoozed {}min", thawed.app, checkedWholeSigned(minutes))
                       : "Resumed " + thawed.app);
}

void GuardEngine::resumeApps(const std::vector<std::string>& named, std::optional<double> snoozeMinutes)
{
    for (const SuspendedApp& entry : std::vector{suspended_}) {
        if (std::find(named.begin(), named.end(), entry.app) != named.end()) resume(entry, snoozeMinutes);
    }
}

void GuardEngine::resumeAll(bool silent)
{
    for (const SuspendedApp& entry : suspended_) Enforcer::resume(host_, entry.pids);
    replacedPauses_.thawAll();
    const std::size_t previous = std::exchange(suspended_, {}).size();
    cooldown_.clear();
    persistence_.save(suspended_, Persistence::suspendedFile);
    changed();
    if (!silent && previous > 0) append(GuardEvent::Kind::info, fmt::format("Resumed all ({})", previous));
}

void GuardEngine::snooze(std::string_view app, std::optional<double> minutes)
{
    const double length = minutes.value_or(settings_.snoozeMinutes);
    setSnooze(app, length);
    append(GuardEvent::Kind::info, fmt::format("{} snoozed for {}min", app, checkedWholeSigned(length)));
}

void GuardEngine::pruneSuspended()
{
    const auto isGone = [this](const SuspendedApp& entry) {
        return std::none_of(entry.pids.begin(), entry.pids.end(),
                            [this](std::int32_t pid) { return Enforcer::isAlive(host_, pid); });
    };
    if (std::erase_if(suspended_, isGone) > 0) persistence_.save(suspended_, Persistence::suspendedFile);
    replacedPauses_.prune(suspended_);
}

void GuardEngine::recoverOrphansFromPreviousRun()
{
    const auto orphans = persistence_.load<std::vector<SuspendedApp>>(Persistence::suspendedFile);
    if (!orphans || orphans->empty() || processCount(*orphans) > mostOrphans) return;
    std::vector<std::string> names;
    for (const SuspendedApp& entry : *orphans) {
        const auto processes = entry.verifiedLivePIDs(host_);
        Enforcer::resume(processes);
        if (!processes.empty()) names.push_back(entry.app);
    }
    persistence_.remove(Persistence::suspendedFile);
    if (names.empty()) return;
    append(GuardEvent::Kind::warning,
           fmt::format("Recovered from an unclean shutdown — resumed {}", fmt::join(names, ", ")));
}

} // namespace quellon
