#include "ReplayState.h"

#include <date/date.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quellon {

namespace {

OrderedJson value(Date date)
{
    return isoText(date);
}
OrderedJson value(Seconds seconds)
{
    return seconds.count();
}
template <typename T>
OrderedJson value(const T& plain)
{
    return plain;
}

/// Adds a key, when there is something to say.
template <typename T>
void put(OrderedJson& object, const char* key, const std::optional<T>& field)
{
    if (field) object[key] = value(*field);
}

OrderedJson object(const GuardEngine::Dates& dates)
{
    OrderedJson result = OrderedJson::object();
    for (const auto& [app, date] : dates) result[app] = isoText(date);
    return result;
}

OrderedJson object(const std::map<std::string, std::string, std::less<>>& texts)
{
    OrderedJson result = OrderedJson::object();
    for (const auto& [key, text] : texts) result[key] = text;
    return result;
}

OrderedJson object(const MeteredStatus& status)
{
    return {{"isMetered", status.isMetered}, {"interface", status.interface}, {"detail", status.detail}};
}

OrderedJson list(const std::vector<AppUsage>& usage)
{
    OrderedJson result = OrderedJson::array();
    for (const AppUsage& each : usage) {
        result.push_back({{"app", each.app}, {"bytes", each.bytes}, {"pids", each.pids}});
    }
    return result;
}

OrderedJson list(const std::vector<SuspendedApp>& suspended)
{
    OrderedJson result = OrderedJson::array();
    for (const SuspendedApp& each : suspended) {
        result.push_back({{"app", each.app},
                          {"pids", each.pids},
                          {"starts", each.starts},
                          {"bytes", each.bytes},
                          {"at", isoText(each.at)}});
    }
    return result;
}

OrderedJson object(const Capabilities& capabilities)
{
    return {{"edition", appEditions.raw(capabilities.edition)},
            {"sandboxed", capabilities.sandboxed},
            {"canSampleTraffic", capabilities.canSampleTraffic},
            {"canEnforce", capabilities.canEnforce}};
}

OrderedJson object(const BudgetStatus& status)
{
    OrderedJson result = {{"usedBytes", status.usedBytes},
                          {"planBytes", status.planBytes},
                          {"cycleStart", isoText(status.cycleStart)},
                          {"cycleEnd", isoText(status.cycleEnd)},
                          {"daysRemaining", status.daysRemaining}};
    put(result, "projectedExhaustion", status.projectedExhaustion);
    result["unmeasuredGaps"] = status.unmeasuredGaps;
    result["remainingBytes"] = status.remainingBytes();
    result["usedFraction"] = status.usedFraction();
    result["willOverrun"] = status.willOverrun();
    return result;
}

OrderedJson object(const DailyBudgetStatus& status)
{
    return {{"usedTodayBytes", status.usedTodayBytes},
            {"allowanceBytes", status.allowanceBytes},
            {"remainingTodayBytes", status.remainingTodayBytes()},
            {"isOverToday", status.isOverToday()},
            {"usedFraction", status.usedFraction()}};
}

OrderedJson object(const MenuPresentation::AlertBadge& alert)
{
    return {{"app", alert.app}, {"bytes", alert.bytes}, {"firedAt", isoText(alert.firedAt)}, {"unread", alert.unread}};
}

OrderedJson object(const LivenessStats& liveness)
{
    OrderedJson peaks = OrderedJson::array();
    for (const LivenessStats::Peak& peak : liveness.recentPeaks) {
        peaks.push_back(
            {{"app", peak.app}, {"bytes", peak.bytes}, {"windowLabel", peak.windowLabel}, {"at", isoText(peak.at)}});
    }
    OrderedJson result = {{"totalGuardedSeconds", liveness.totalGuardedSeconds},
                          {"recentPeaks", std::move(peaks)},
                          {"triggerCount", liveness.triggerCount}};
    put(result, "lastTriggerAt", liveness.lastTriggerAt);
    return result;
}

OrderedJson object(const SamplingDiagnostics& sampling)
{
    OrderedJson result = OrderedJson::object();
    put(result, "lastDurationSeconds", sampling.lastDurationSeconds);
    result["maxDurationSeconds"] = sampling.maxDurationSeconds.count();
    result["completedTicks"] = sampling.completedTicks;
    result["skippedTicks"] = sampling.skippedTicks;
    put(result, "lastCompletedAt", sampling.lastCompletedAt);
    put(result, "lastSkippedAt", sampling.lastSkippedAt);
    return result;
}

OrderedJson object(const BudgetStore& budget)
{
    OrderedJson days = OrderedJson::array();
    for (const DayUsage& each : budget.days) days.push_back({{"day", each.day}, {"bytes", each.bytes}});
    OrderedJson result = {{"planGB", budget.planGB},
                          {"billingCycleStartDay", std::int64_t{budget.billingCycleStartDay}},
                          {"days", std::move(days)},
                          {"calibrationOffsetBytes", budget.calibrationOffsetBytes}};
    if (const auto& baseline = budget.interfaceBaseline) {
        result["interfaceBaseline"] = {
            {"interface", baseline->interface}, {"totalBytes", baseline->totalBytes}, {"at", isoText(baseline->at)}};
    }
    result["unmeasuredGaps"] = budget.unmeasuredGaps;
    put(result, "lastUnmeasuredGapAt", budget.lastUnmeasuredGapAt);
    return result;
}

OrderedJson object(const BlockedAppTrigger::TransferWatcher::Allowances& allowances)
{
    OrderedJson result = OrderedJson::object();
    for (const auto& [app, allowance] : allowances) {
        OrderedJson& each = result[app] = OrderedJson::object();
        put(each, "quietSince", allowance.quietSince);
        each["lastObservedAt"] = isoText(allowance.lastObservedAt);
    }
    return result;
}

} // namespace

std::string isoText(Date date)
{
    using std::chrono::milliseconds;
    using Moment = date::sys_time<milliseconds>;
    constexpr Moment first = date::sys_days{date::year{1} / 1 / 1};
    constexpr Moment last = date::sys_days{date::year{9999} / 12 / 31} + std::chrono::hours{24} - milliseconds{1};
    constexpr double perSecond = 1'000.0;
    const double count = (date.time_since_epoch() + referenceDateSince1970).count() * perSecond;
    const double held = std::clamp(count, static_cast<double>(first.time_since_epoch().count()),
                                   static_cast<double>(last.time_since_epoch().count()));
    return date::format("%FT%TZ", Moment{milliseconds{std::llround(held)}});
}

OrderedJson replayState(const GuardEngine& engine)
{
    OrderedJson state = {{"status", object(engine.status())}};
    put(state, "idleTetherInterface", engine.idleTetherInterface());
    state["interfaceNames"] = object(engine.interfaceNames());
    state["usage"] = list(engine.usage());
    state["chronic"] = engine.chronic();
    state["suspended"] = list(engine.suspended());
    state["isRunning"] = engine.isRunning();
    state["capabilities"] = object(engine.capabilities());
    if (engine.budgetStatus()) state["budgetStatus"] = object(*engine.budgetStatus());
    if (engine.dailyStatus()) state["dailyStatus"] = object(*engine.dailyStatus());
    state["snoozedUntil"] = object(engine.snoozedUntil());
    if (engine.lastAlert()) state["lastAlert"] = object(*engine.lastAlert());
    state["liveness"] = object(engine.liveness());
    put(state, "lastSampleFailureAt", engine.lastSampleFailureAt());
    state["protectedReasons"] = object(engine.protectedReasons());
    state["explainInFlight"] = engine.explainInFlight();
    state["explainFailures"] = object(engine.explainFailures());
    put(state, "detailApp", engine.detailApp());
    if (const auto& update = engine.availableUpdate()) {
        state["availableUpdate"] = {{"version", update->version}, {"downloadURL", update->downloadURL}};
    }
    state["sampling"] = object(engine.sampling());
    state["budget"] = object(engine.budget());
    state["isTicking"] = engine.isTicking();
    state["cooldown"] = object(engine.cooldown());
    state["allowances"] = object(engine.transferWatcher().allowances());
    return state;
}

} // namespace quellon
