#include "QuellonCore/Budget/ProfileAutoSwitch.h"
#include "QuellonCore/Diagnostics/GuardLog.h"
#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Measurement/MeteredNetwork.h"
#include "QuellonCore/Measurement/NettopParser.h"
#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Measurement/Shell.h"
#include "QuellonCore/Measurement/TetherDetector.h"
#include "QuellonCore/Rules/RuleEvaluator.h"
#include "QuellonCore/Support/Text.h"

#include <fmt/format.h>

#include <utility>

namespace quellon {

void GuardEngine::tick()
{
    if (isTicking_) {
        sampling_.recordSkipped(host_.clock.now());
        host_.log.write(GuardLog::sampling, LogLevel::info, "tick skipped — previous round still running");
        changed();
        return;
    }
    isTicking_ = true;
    const Date startedAt = host_.clock.now();
    // By value: the work may outlive this engine, though not its host.
    const auto collect = [host = host_, meteredOnly = settings_.meteredOnly,
                          canSample = capabilities_.canSampleTraffic] {
        return collectInputs(host, meteredOnly, canSample);
    };
    Shell::offMain<TickInputs>(
        host_, collect, [this, startedAt, alive = std::weak_ptr<const bool>{alive_}](TickInputs inputs) {
            if (alive.expired()) return;
            const Date now = host_.clock.now();
            if (inputs.sampled && std::exchange(failsNextSample_, false)) inputs.nettopCSV.reset();
            sampling_.recordCompleted(now - startedAt, now);
            host_.log.write(GuardLog::sampling, LogLevel::info,
                            fmt::format("collected in {:.2f}s · sampled={} · nettop={}", (now - startedAt).count(),
                                        inputs.sampled, inputs.nettopCSV ? "ok" : "FAILED"));
            apply(inputs);
            isTicking_ = false;
        });
}

GuardEngine::TickInputs GuardEngine::collectInputs(const Host& host, bool meteredOnly, bool canSample)
{
    constexpr auto& gateways = MeteredNetwork::defaultHotspotGateways;
    TickInputs inputs;
    inputs.status = MeteredNetwork::current(host, gateways);
    if (inputs.status.isMetered) {
        inputs.interfaceCounter = InterfaceCounter::current(host, inputs.status.interface);
    } else {
        inputs.idleTether = TetherDetector::current(host, inputs.status.interface, gateways);
    }
    inputs.sampled = inputs.status.isMetered || !meteredOnly;
    if (inputs.sampled && canSample) {
        inputs.nettopCSV = Shell::nettop(host);
        inputs.psOutput = Shell::run(host, host.platform.tool(ToolRole::ps)).value_or("");
    }
    inputs.timedOutCommands = Shell::drainTimeouts();
    return inputs;
}

void GuardEngine::apply(const TickInputs& inputs)
{
    const std::string formerInterface = std::exchange(status_, inputs.status).interface;
    idleTetherInterface_ = inputs.idleTether;
    interfaceCounter_ = inputs.interfaceCounter;
    changed();
    for (const std::string& command : inputs.timedOutCommands) {
        append(GuardEvent::Kind::warning, fmt::format("{} 超时未返回，本轮采样已跳过", lastPathComponent(command)));
    }
    if (status_.interface != formerInterface) applyInterfaceChange();
    if (!inputs.sampled) {
        // Nobody watches now: what moves until the next sample must not be mistaken for a burst.
        ledger_.resetBaseline();
        usage_ = ledger_.totals(settings_.primaryWindow(), host_.clock.now());
        return;
    }
    advanceBudget(inputs.interfaceCounter, host_.clock.now());
    if (!capabilities_.canSampleTraffic) {
        usage_.clear();
        return;
    }
    applySample(inputs, host_.clock.now());
}

void GuardEngine::applyInterfaceChange()
{
    ledger_.resetAll();
    if (!status_.interface.empty()) {
        append(GuardEvent::Kind::info, (status_.isMetered ? "📶 " : "🏠 ") + status_.detail);
    }
    restartTimer();

    const auto id = ProfileAutoSwitch::decide(status_.interface, status_.isMetered, settings_.lastProfileByInterface,
                                              settings_.activeProfileID, settings_.profiles);
    if (!id) return;
    GuardSettings settings = settings_;
    settings.activeProfileID = *id;
    setSettings(std::move(settings));
    append(GuardEvent::Kind::info, fmt::format("Switched to plan profile \"{}\" (remembered for {})",
                                               settings_.activeProfile().name, status_.interface));
}

void GuardEngine::applySample(const TickInputs& inputs, Date now)
{
    const auto table = ProcessTable::parse(inputs.psOutput);
    if (inputs.nettopCSV) {
        const auto samples = NettopParser::parse(*inputs.nettopCSV, status_.interface);
        ledger_.ingest(samples, now, [&table](std::int32_t pid) { return table.find(pid); });
    } else {
        lastSampleFailureAt_ = now;
        host_.log.write(GuardLog::sampling, LogLevel::error,
                        "per-app sample unavailable — ledger gets no data this round");
    }
    usage_ = ledger_.totals(settings_.primaryWindow(), now);
    chronic_ = RuleEvaluator::chronicApps(
        settings_.rules(), [&](Seconds window) { return ledger_.totals(window, now); }, chronicLongRatio,
        chronicShortRatio);
    recordLiveness(now);
    std::erase_if(snoozedUntil_, [now](const auto& each) { return !(each.second > now); });
    expireMutes(now);
    evaluate(table, now);
    pruneSuspended();
    refreshBudget(now);
    if (now - lastPersistAt_ >= persistInterval) {
        lastPersistAt_ = now;
        persist();
    }
}

void GuardEngine::recordLiveness(Date now)
{
    liveness_.recordGuardedTime(lastLivenessTickAt_, now);
    lastLivenessTickAt_ = now;
    for (const GuardRule& rule : settings_.rules()) {
        if (!rule.enabled) continue;
        const auto totals = ledger_.totals(rule.windowSeconds, now);
        if (totals.empty()) continue;
        liveness_.record(totals.front().app, totals.front().bytes, rule.windowLabel(), now);
    }
}

} // namespace quellon
