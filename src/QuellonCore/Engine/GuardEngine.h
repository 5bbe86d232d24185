#pragma once

#include "QuellonCore/Diagnostics/SamplingDiagnostics.h"
#include "QuellonCore/Engine/GuardEvent.h"
#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Measurement/AppUsage.h"
#include "QuellonCore/Measurement/Capabilities.h"
#include "QuellonCore/Measurement/InterfaceCounter.h"
#include "QuellonCore/Measurement/InterfaceNames.h"
#include "QuellonCore/Measurement/MeteredStatus.h"
#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Settings/GuardSettings.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quellon {

/// The one object that owns all live state of the guard. It lives on the main thread; only the collection of a tick's
/// inputs leaves it. Views read its fields, call its operations, and are told once a turn that something changed.
class GuardEngine {
public:
    /// How an engine begins.
    struct Options {
        std::optional<Capabilities> capabilities; ///< Absent: detected from the environment for the `pro` edition.
        bool autoStart = true;                    ///< Whether construction ends with `start`.
    };

    /// Everything a tick needs of the world, gathered on a background thread.
    struct TickInputs {
        MeteredStatus status;
        std::optional<std::string> idleTether;            ///< Only looked for while not metered.
        std::optional<InterfaceCounter> interfaceCounter; ///< Only read while metered.
        std::optional<std::string> nettopCSV;             ///< Absent when the sample failed or was not taken.
        std::string psOutput;                             ///< Empty when it failed or was not asked for.
        bool sampled = false;                      ///< False only for a metered-only guard off a metered network.
        std::vector<std::string> timedOutCommands; ///< Paths of the commands that timed out since the last tick.
        bool operator==(const TickInputs&) const = default;
    };

    /// What keeps an observer told; its destruction ends that, also from within the call. It must not outlive the
    /// engine.
    class Observation {
    public:
        /// From now on `changed` is called in the turn after each turn that changed something.
        Observation(GuardEngine& engine, std::function<void()> changed);
        ~Observation();
        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;

    private:
        friend class GuardEngine;
        GuardEngine& engine_;
        std::function<void()> changed_;
    };

    /// How many lines the activity log holds at most.
    static constexpr std::size_t eventCapacity = 200;
    /// The timer's interval while a metered-only guard is off a metered network.
    static constexpr Seconds idleInterval{30.0};
    /// The timer's least interval, whatever the settings say.
    static constexpr Seconds shortestInterval{1.0};
    /// The least time between two rounds of `persist` by ticks.
    static constexpr Seconds persistInterval{30.0};

    /// Reads the state files and the names of the interfaces (blocking for at most four seconds), and starts when
    /// `options.autoStart` is set. A file that is missing or unreadable gives the defaults. Settings of an older layout
    /// are written anew.
    GuardEngine(Host host, Options options);
    explicit GuardEngine(Host host) : GuardEngine(std::move(host), Options{}) {}
    ~GuardEngine();
    GuardEngine(const GuardEngine&) = delete;
    GuardEngine& operator=(const GuardEngine&) = delete;

    /// Starts the timer and queues a first tick. Does nothing while running.
    void start();
    /// Stops the timer, empties the ledger and saves, also while nothing is running. A tick in flight still applies.
    void stop();
    /// Starts one round: collects off the main thread, then applies. Dropped and counted while a round still runs.
    void tick();
    /// Takes over one round of inputs, in a fixed order.
    void apply(const TickInputs& inputs);
    /// Saves what ticks change.
    void persist();
    /// Adds a line to the front of the activity log and drops what is beyond `eventCapacity`.
    void append(GuardEvent::Kind kind, std::string message);
    /// Replaces the settings, which take effect at once and are saved, whether or not a value changed. They must have
    /// a plan.
    void setSettings(const GuardSettings& settings);

    /// Gathers the inputs of a tick. Blocks for as long as the tools take, reads no engine state; any thread.
    [[nodiscard]] static TickInputs collectInputs(const Host& host, bool meteredOnly, bool canSample);

    /// The latest verdict on the default route.
    [[nodiscard]] const MeteredStatus& status() const { return status_; }
    /// Interface on which a phone is tethered while the default route goes elsewhere.
    [[nodiscard]] const std::optional<std::string>& idleTetherInterface() const { return idleTetherInterface_; }
    /// The latest reading of the default route's counters; absent while not metered or not readable.
    [[nodiscard]] const std::optional<InterfaceCounter>& interfaceCounter() const { return interfaceCounter_; }
    /// What the system calls its devices, as of construction.
    [[nodiscard]] const InterfaceNames::Map& interfaceNames() const { return interfaceNames_; }
    /// Per-application totals over `settings().primaryWindow()`, largest first, as of the latest tick.
    [[nodiscard]] const std::vector<AppUsage>& usage() const { return usage_; }
    /// The activity log, newest first, at most `eventCapacity` lines.
    [[nodiscard]] const std::deque<GuardEvent>& events() const { return events_; }
    /// True between `start` and `stop`.
    [[nodiscard]] bool isRunning() const { return isRunning_; }
    /// True from the start of a round's collection to the end of its `apply`.
    [[nodiscard]] bool isTicking() const { return isTicking_; }
    [[nodiscard]] const Capabilities& capabilities() const { return capabilities_; }
    /// When the traffic sample last gave nothing.
    [[nodiscard]] std::optional<Date> lastSampleFailureAt() const { return lastSampleFailureAt_; }
    [[nodiscard]] const GuardSettings& settings() const { return settings_; }
    [[nodiscard]] const UsageLedger& ledger() const { return ledger_; }
    [[nodiscard]] const SamplingDiagnostics& sampling() const { return sampling_; }
    /// True when a tether is idle and the user has not closed the hint about it.
    [[nodiscard]] bool showsTetherHint() const;
    [[nodiscard]] const Host& host() const { return host_; }

private:
    void restartTimer();
    void changed();
    void setUpLedger();
    void applySettings();
    void applyInterfaceChange();
    void applySample(const TickInputs& inputs, Date now);
    /// `work` for the run loop, which does nothing once the engine is gone.
    RunLoop::Work whileAlive(std::function<void()> work);

    Host host_;
    Persistence persistence_;
    MeteredStatus status_;
    std::optional<std::string> idleTetherInterface_;
    std::optional<InterfaceCounter> interfaceCounter_;
    InterfaceNames::Map interfaceNames_;
    std::vector<AppUsage> usage_;
    std::deque<GuardEvent> events_;
    bool isRunning_ = false;
    Capabilities capabilities_;
    std::optional<Date> lastSampleFailureAt_;
    GuardSettings settings_;
    UsageLedger ledger_;
    SamplingDiagnostics sampling_;

    RunLoop::Handle timer_;
    bool isTicking_ = false;
    Date lastPersistAt_ = distantPast;
    std::vector<Observation*> observations_;
    bool tellsObservers_ = false;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

} // namespace quellon
