#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationComposer.h"
#include "QuellonCore/Notifications/NotificationGate.h"
#include "QuellonCore/Rules/BreachResponse.h"
#include "QuellonCore/Rules/RuleEvaluator.h"

#include <fmt/format.h>

#include <utility>

namespace quellon {

/// Which processes of a breach may be touched, and why the first of the others may not.
struct GuardEngine::Targets {
    std::vector<std::int32_t> allowed;
    std::optional<std::string> firstReason;
};

namespace {

std::string summary(const RuleBreach& breach)
{
    return fmt::format("{} used {} in {}", breach.app, MenuPresentation::format(breach.bytes),
                       breach.rule.windowLabel());
}

} // namespace

EnforcementAction GuardEngine::effectiveAction() const
{
    return capabilities_.canEnforce ? settings_.enforcementAction : EnforcementAction::warn;
}

bool GuardEngine::isCooling(std::string_view app, Date now) const
{
    const auto until = cooldown_.find(app);
    return until != cooldown_.end() && until->second > now;
}

void GuardEngine::notify(const NotificationPlan& plan) const
{
    if (notifier_) notifier_(plan);
}

void GuardEngine::countTrigger(std::string_view app, std::uint64_t bytes, Date now)
{
    liveness_.recordTrigger(now);
    lastAlert_ = MenuPresentation::AlertBadge{std::string{app}, bytes, now, true};
}

void GuardEngine::evaluate(const ProcessTable::Entries& table, Date now)
{
    const auto groups = protection_.protectedGroups(table);
    checkAlwaysBlockedApps(now);

    const auto breaches =
        RuleEvaluator::evaluate(settings_.rules(), [&](Seconds window) { return ledger_.totals(window, now); });
    std::vector<RuleBreach> warnings;
    for (const RuleBreach& breach : breaches) {
        if (isHeldByUser(breach.app, now) || isCooling(breach.app, now)) continue;
        Targets targets;
        for (const std::int32_t pid : breach.pids) {
            const ProcessEntry* process = table.find(pid);
            if (process == nullptr) continue;
            auto decision = protection_.decide(*process, selfPIDs_, groups);
            if (decision.isAllowed())
                targets.allowed.push_back(pid);
            else if (!targets.firstReason)
                targets.firstReason = std::move(decision.reason);
        }
        respond(breach, targets, table, warnings, now);
    }
    // Also with nothing, so that a pending batch can come due.
    deliverWarnings(std::move(warnings), now);
}

void GuardEngine::respond(const RuleBreach& breach, const Targets& targets, const ProcessTable::Entries& table,
                          std::vector<RuleBreach>& warnings, Date now)
{
    const ActionLevel level = NotificationGate::effectiveLevel(breach.level(), notificationCapability_);
    const auto response =
        BreachResponse::decide(level, effectiveAction(), !targets.allowed.empty(), targets.firstReason);
    switch (response.kind) {
    case BreachResponse::Kind::enforce:
        enforce(breach, targets.allowed, table, now);
        return;
    case BreachResponse::Kind::recordSilently:
        append(GuardEvent::Kind::warning, fmt::format("{} → protected [{}]", summary(breach), response.reason));
        protectedReasons_.insert_or_assign(breach.app, response.reason);
        break;
    case BreachResponse::Kind::notifyUser:
        append(GuardEvent::Kind::warning, summary(breach));
        warnings.push_back(breach);
        break;
    }
    cooldown_.insert_or_assign(breach.app, now + warningCooldown);
    countTrigger(breach.app, breach.bytes, now);
}

void GuardEngine::enforce(const RuleBreach& breach, const std::vector<std::int32_t>& targets,
                          const ProcessTable::Entries& table, Date now)
{
    cooldown_.insert_or_assign(breach.app, now + enforcementCooldown);
    const std::size_t count = enforcementHistory_.count(breach.app, now); // before this one
    const EnforcementAction action = EnforcementHistory::actionAfterLoopBreaker(effectiveAction(), count);
    const bool isLoop = EnforcementHistory::isLoop(count);
    auto untilRecorded = Enforcer::lifeline(host_, action, targets);
    auto processes = Enforcer::apply(host_, action, targets);
    if (processes.empty()) {
        append(GuardEvent::Kind::warning, summary(breach) + " → action failed (no permission)");
        return;
    }
    enforcementHistory_.record(breach.app, breach.bytes, now, action, breach.rule.windowLabel(), isLoop,
                               EnforcementHistory::Kind::enforced);
    persistence_.save(enforcementHistory_, Persistence::enforcementHistoryFile);
    append(GuardEvent::Kind::enforced, fmt::format("{} → {}{}", summary(breach), enforcementActions.label(action),
                                                   isLoop ? " (kill loop breaker)" : ""));
    countTrigger(breach.app, breach.bytes, now);
    ledger_.clear(breach.app); // it starts from zero, so it does not breach again at once
    const auto acted = Enforcer::pids(processes);
    if (action == EnforcementAction::suspend) {
        replacedPauses_.keep(breach.app, suspended_, acted, table);
        std::erase_if(suspended_, [&](const SuspendedApp& entry) { return entry.app == breach.app; });
    }
    follow(action, std::move(processes), {breach.app, acted, Enforcer::identities(host_, acted), breach.bytes, now});
    untilRecorded.reset();
    tellOfEnforcement(breach, action, count, now);
}

void GuardEngine::tellOfEnforcement(const RuleBreach& breach, EnforcementAction action, std::size_t count, Date now)
{
    if (!settings_.notify) return;
    if (!EnforcementHistory::isLoop(count)) {
        notify(NotificationComposer::enforcedPlan(breach.app, breach.bytes, breach.rule.windowLabel(), action));
        return;
    }
    if (!enforcementHistory_.shouldSendNotice(breach.app, now)) return;
    enforcementHistory_.markNoticed(breach.app, now);
    persistence_.save(enforcementHistory_, Persistence::enforcementHistoryFile);
    notify(NotificationComposer::loopBreakerPlan(breach.app, enforcementHistory_.count(breach.app, now),
                                                 enforcementHistory_.wastedBytes(breach.app, now), budgetStatus_));
}

void GuardEngine::deliverWarnings(std::vector<RuleBreach> breaches, Date now)
{
    if (!settings_.notify) return;
    const auto batch = batcher_.offer(std::move(breaches), now);
    if (!batch) return;
    const NotificationPlan plan = batch->size() == 1 ? NotificationComposer::plan(batch->front(), budgetStatus_)
                                                     : NotificationComposer::mergedPlan(*batch, budgetStatus_);
    if (!plan.title.empty()) notify(plan);
}

void GuardEngine::checkAlwaysBlockedApps(Date now)
{
    for (const std::string& app : settings_.appPolicies.apps(AppPolicy::always)) {
        const std::uint64_t moved = BlockedAppTrigger::usage(app, ledger_, now);
        if (transferWatcher_.isAllowing(app) && !transferWatcher_.stillAllowed(app, moved, now)) {
            append(GuardEvent::Kind::info, app + " finished its transfer — watching it again");
        }
        if (isHeldByUser(app, now) || isCooling(app, now)) continue;
        if (BlockedAppTrigger::isTriggered(moved)) ask(app, moved, now);
    }
}

void GuardEngine::ask(const std::string& app, std::uint64_t moved, Date now)
{
    cooldown_.insert_or_assign(app, now + warningCooldown);
    enforcementHistory_.record(app, moved, now, std::nullopt, std::nullopt, false, EnforcementHistory::Kind::asked);
    persistence_.save(enforcementHistory_, Persistence::enforcementHistoryFile);
    countTrigger(app, moved, now);
    append(GuardEvent::Kind::warning,
           fmt::format("{} reached for the hotspot ({}) — set to always block", app, MenuPresentation::format(moved)));
    if (!settings_.notify) return;
    notify(NotificationComposer::blockedAppPlan(app, moved, budgetStatus_, settings_.wasSeededByPreset(app),
                                                enforcementHistory_.askCount(app, now, repeatedAskSpan)));
}

} // namespace quellon
