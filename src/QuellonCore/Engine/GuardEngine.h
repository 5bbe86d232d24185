#pragma once

#include "QuellonCore/Budget/BudgetStatus.h"
#include "QuellonCore/Budget/BudgetStore.h"
#include "QuellonCore/Diagnostics/SamplingDiagnostics.h"
#include "QuellonCore/Enforcement/EnforcementHistory.h"
#include "QuellonCore/Enforcement/Enforcer.h"
#include "QuellonCore/Enforcement/ReplacedPauses.h"
#include "QuellonCore/Enforcement/SuspendedApp.h"
#include "QuellonCore/Engine/GuardEvent.h"
#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Knowledge/ExplanationCache.h"
#include "QuellonCore/Knowledge/ExplanationFetching.h"
#include "QuellonCore/Knowledge/ExplanationStore.h"
#include "QuellonCore/Measurement/AppUsage.h"
#include "QuellonCore/Measurement/Capabilities.h"
#include "QuellonCore/Measurement/InterfaceCounter.h"
#include "QuellonCore/Measurement/InterfaceNames.h"
#include "QuellonCore/Measurement/MeteredStatus.h"
#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Notifications/NotificationBatcher.h"
#include "QuellonCore/Notifications/NotificationCapability.h"
#include "QuellonCore/Notifications/NotificationPlan.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Presentation/AppActionSummary.h"
#include "QuellonCore/Presentation/LivenessStats.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Rules/BlockedAppTrigger.h"
#include "QuellonCore/Rules/ProtectionPolicy.h"
#include "QuellonCore/Rules/RuleBreach.h"
#include "QuellonCore/Settings/GuardSettings.h"
#include "QuellonCore/UpdateCheck/UpdateChecker.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quellon {

/// The one object that owns all live state of the guard. It lives on the main thread; only the collection of a tick's
/// inputs leaves it. Views read its fields, call its operations, and are told once a turn that something changed.
class GuardEngine {
public:
    /// A moment per application label.
    using Dates = std::map<std::string, Date, std::less<>>;

    /// How an engine begins.
    struct Options {
        std::optional<Capabilities> capabilities; ///< Absent: detected from the environment for the `pro` edition.
        bool autoStart = true;                    ///< Whether construction ends with `start`.
        /// Where composed notifications go; called on the main thread. May be empty.
        std::function<void(const NotificationPlan&)> notifier;
        /// Told of each line of the activity log as it is added; called on the main thread. May be empty.
        std::function<void(const GuardEvent&)> onEvent;
        /// After how many seconds the watchdog of a freeze thaws it.
        int autoResumeSeconds = Enforcer::autoResumeSeconds;
        std::optional<UpdateCheckContext> updateCheck; ///< Absent: never looks for a newer version.
        std::optional<ExplainContext> explain;         ///< Absent: looks nothing up online.
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
    static constexpr Seconds shortestInterval{0.1};
    /// The least time between two rounds of `persist` by ticks.
    static constexpr Seconds persistInterval{30.0};
    /// For how long an application is left alone after the guard has stepped in.
    static constexpr Seconds enforcementCooldown{10.0};
    /// For how long an application is left alone after a warning, a silent record, or an ask.
    static constexpr Seconds warningCooldown{300.0};
    /// The span in which asks about one application are counted for the wording of the next.
    static constexpr Seconds repeatedAskSpan{3600.0};
    /// How long warnings are gathered before they go out.
    static constexpr Seconds batchWindow{5.0};
    /// How many processes a list of what an earlier run left frozen may name. A longer one is refused: to look at each
    /// would keep the start waiting, and no desktop's applications are so many processes.
    static constexpr std::size_t mostOrphans = 4'096;
    /// Shares of the long and of the short threshold that make a chronic application.
    static constexpr double chronicLongRatio = 0.5;
    static constexpr double chronicShortRatio = 0.2;

    /// Reads the state files, thaws what an earlier run left frozen, and starts when `options.autoStart` is set. Blocks
    /// for the system's tools: the names of the interfaces, the guard's ancestors, and whether a process that was
    /// frozen is still the same. A file that is missing or unreadable gives the defaults. Settings of an older layout
    /// are written anew.
    GuardEngine(Host host, Options options);
    explicit GuardEngine(Host host) : GuardEngine(std::move(host), Options{}) {}
    ~GuardEngine();
    GuardEngine(const GuardEngine&) = delete;
    GuardEngine& operator=(const GuardEngine&) = delete;

    /// Starts the timer and queues a first tick. Does nothing while running.
    void start();
    /// Stops the timer, thaws everything, empties the ledger and saves, also while nothing is running. A tick in flight
    /// still applies.
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
    void setSettings(GuardSettings settings);
    /// Replaces the active plan's budget, and saves it.
    void setBudget(BudgetStore budget);
    /// Derives `budgetStatus` and `dailyStatus` anew.
    void refreshBudget(Date now);
    /// Makes another plan the active one, and remembers it for the metered interface that the machine is on. Does
    /// nothing for the active plan and for an unknown id.
    void selectProfile(const UUID& id);
    /// Adds a plan with the defaults, makes it the active one, and returns its id.
    UUID addProfile(std::string_view named);
    /// Removes a plan and its budget; the first other plan becomes active if need be. The last plan, and one that does
    /// not exist, is left alone. "budget.json" is never removed.
    void deleteProfile(const UUID& id);

    /// The user's own order: acts at once on every process of these applications that is not protected. Reads the
    /// process table, and blocks for it. Other than a breach it leaves history, counts and ledger alone.
    void enforceNow(const std::vector<std::string>& apps, EnforcementAction action);
    /// Thaws the application and holds it back from the rules for so many minutes, those of the settings when absent;
    /// not at all for 0 or less.
    void resume(const SuspendedApp& entry, std::optional<double> snoozeMinutes = {});
    /// `resume` for each paused application that is named.
    void resumeApps(const std::vector<std::string>& named, std::optional<double> snoozeMinutes = {});
    /// Thaws everything, and ends all cool-downs. `silent` leaves the line in the activity log out.
    void resumeAll(bool silent);
    /// Holds an application back from the rules for so many minutes, those of the settings when absent. Ends the
    /// program when the minutes are no whole number of 64 bits.
    void snooze(std::string_view app, std::optional<double> minutes = {});

    /// Holds an application back until its present transfer has ended.
    void allowUntilTransferEnds(std::string_view app, Date now);
    /// Ends that.
    void resumeWatching(std::string_view app);
    /// No asking about the application before the coming midnight, which is returned.
    Date muteAsks(std::string_view app, Date now);
    void unmuteAsks(std::string_view app);
    /// The end of a mute; absent when there is none or it is over.
    [[nodiscard]] std::optional<Date> muteDeadline(std::string_view app, Date now) const;
    /// Whether the user has put the application aside in any way.
    [[nodiscard]] bool isHeldByUser(std::string_view app, Date now) const;
    /// The applications of the ledger that moved most, at most so many.
    [[nodiscard]] std::vector<AppUsage> recentlySeenApps(std::size_t limit) const;
    /// What the ledger says of one application.
    [[nodiscard]] std::uint64_t totalBytes(std::string_view app, Seconds window, Date at) const;
    /// What the guard has done to one application, and how it stands.
    [[nodiscard]] AppActionSummary actionSummary(std::string_view app, Date now) const;

    /// The user's answer to whether the guard may look for a newer version. Saves the settings. A yes queues a check,
    /// which is what it returns.
    bool answerUpdateCheckConsent(bool granted);
    /// Asks for a newer version, if the user agreed and has not been told within the day. Notes the check in the
    /// settings when its reply has come, whatever it was.
    void checkForUpdatesIfAllowed(Date now);
    /// Closes the notice, until a check finds the update again.
    void dismissAvailableUpdate();
    /// The user's answer to whether applications may be looked up online. Saves the settings. Starts no lookup.
    void answerExplainConsent(bool granted);
    /// Looks one application up online, unless the user has not agreed, it is known, or the lookup is under way.
    /// Returns whether a lookup was queued. Its answer is kept and saved, its failure is in `explainFailures`.
    bool requestExplanation(const std::string& app);

    /// The user has seen the latest alert.
    void markAlertsSeen();
    /// The user asks for the details of an application, or for nobody's.
    void setDetailApp(std::optional<std::string> app);
    /// Whether warnings can reach the user; the notification layer keeps it up to date.
    void setNotificationCapability(const NotificationCapability& capability);

    /// For trying things out by hand, on state that is nobody's: the next traffic sample counts as failed.
    void failNextSample() { failsNextSample_ = true; }
    /// For the same: freezes from now on are thawed by their watchdog after so many seconds.
    void setAutoResumeSeconds(int seconds) { autoResumeSeconds_ = seconds; }

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
    /// The active plan's budget.
    [[nodiscard]] const BudgetStore& budget() const { return budgetStorage_; }
    [[nodiscard]] const std::optional<BudgetStatus>& budgetStatus() const { return budgetStatus_; }
    [[nodiscard]] const std::optional<DailyBudgetStatus>& dailyStatus() const { return dailyStatus_; }
    /// Slow but steady applications, as of the latest sample.
    [[nodiscard]] const std::set<std::string>& chronic() const { return chronic_; }
    /// The applications that the guard holds frozen, in freezing order.
    [[nodiscard]] const std::vector<SuspendedApp>& suspended() const { return suspended_; }
    [[nodiscard]] const Dates& snoozedUntil() const { return snoozedUntil_; }
    /// Until when a new breach of an application is ignored.
    [[nodiscard]] const Dates& cooldown() const { return cooldown_; }
    [[nodiscard]] const BlockedAppTrigger::TransferWatcher& transferWatcher() const { return transferWatcher_; }
    /// The latest alert; absent before the first.
    [[nodiscard]] const std::optional<MenuPresentation::AlertBadge>& lastAlert() const { return lastAlert_; }
    [[nodiscard]] const LivenessStats& liveness() const { return liveness_; }
    [[nodiscard]] const EnforcementHistory& enforcementHistory() const { return enforcementHistory_; }
    /// Why an application was recorded silently.
    [[nodiscard]] const std::map<std::string, std::string, std::less<>>& protectedReasons() const
    {
        return protectedReasons_;
    }
    /// What is known of an application: by the pack, or else by the lookup service.
    [[nodiscard]] std::optional<AppExplanation> explanation(std::string_view app) const;
    /// Whether a lookup of the application may be offered, whatever the user has said to lookups so far.
    [[nodiscard]] bool canRequestExplanation(std::string_view app) const;
    /// Whether the user is to be asked before the first lookup.
    [[nodiscard]] bool showsExplainConsentPrompt() const;
    /// Whether the user is to be asked about the check for updates.
    [[nodiscard]] bool showsUpdateConsentPrompt() const;
    /// The newer version that a check of this run has found; absent when none has, and once it was dismissed.
    [[nodiscard]] const std::optional<AvailableUpdate>& availableUpdate() const { return availableUpdate_; }
    /// The answers of the lookup service, of former runs too.
    [[nodiscard]] const ExplanationCache& cloudExplanations() const { return cloudExplanations_; }
    /// The applications whose lookups are under way.
    [[nodiscard]] const std::set<std::string>& explainInFlight() const { return explainInFlight_; }
    /// What the user is told of a lookup that failed, per application.
    [[nodiscard]] const std::map<std::string, std::string, std::less<>>& explainFailures() const
    {
        return explainFailures_;
    }
    /// The application whose details are asked for.
    [[nodiscard]] const std::optional<std::string>& detailApp() const { return detailApp_; }
    [[nodiscard]] const NotificationCapability& notificationCapability() const { return notificationCapability_; }
    /// How the guard steps in here: what the settings say, or `warn` where it may not.
    [[nodiscard]] EnforcementAction effectiveAction() const;
    /// What stands in the menu bar or tray.
    [[nodiscard]] MenuPresentation::MenuBar menuBar(Date now) const;
    [[nodiscard]] const UsageLedger& ledger() const { return ledger_; }
    [[nodiscard]] const SamplingDiagnostics& sampling() const { return sampling_; }
    /// True when a tether is idle and the user has not closed the hint about it.
    [[nodiscard]] bool showsTetherHint() const;
    [[nodiscard]] const Host& host() const { return host_; }

private:
    // The order of things.
    void restartTimer();
    void changed();
    void applyInterfaceChange();
    void applySample(const TickInputs& inputs, Date now);
    void recordLiveness(Date now);
    /// `work` for the run loop, which does nothing once the engine is gone.
    RunLoop::Work whileAlive(std::function<void()> work);

    // Settings, plans and budget.
    bool loadSettings();
    void applySettings(const GuardSettings& previous);
    void setUpLedger();
    void setBudgetStorage(BudgetStore budget);
    void advanceBudget(const std::optional<InterfaceCounter>& counter, Date now);
    void swapBudget(const PlanProfile& from, const PlanProfile& to);
    [[nodiscard]] BudgetStore freshBudget(const PlanProfile& plan) const;

    // The pass over the rules, and the one over the applications that are always blocked.
    struct Targets;
    void evaluate(const ProcessTable::Entries& table, Date now);
    void checkAlwaysBlockedApps(Date now);
    [[nodiscard]] bool isCooling(std::string_view app, Date now) const;
    void respond(const RuleBreach& breach, const Targets& targets, const ProcessTable::Entries& table,
                 std::vector<RuleBreach>& warnings, Date now);
    void enforce(const RuleBreach& breach, const std::vector<std::int32_t>& targets, const ProcessTable::Entries& table,
                 Date now);
    void tellOfEnforcement(const RuleBreach& breach, EnforcementAction action, std::size_t count, Date now);
    void countTrigger(std::string_view app, std::uint64_t bytes, Date now);
    void deliverWarnings(std::vector<RuleBreach> breaches, Date now);
    void ask(const std::string& app, std::uint64_t moved, Date now);
    void notify(const NotificationPlan& plan) const;

    // What may use the network.
    void postUpdateCheck();
    void takeOver(const UpdateCheckResult& result);
    void takeOver(const std::string& app, const ExplanationFetching::Result& result);

    // What is frozen, and what is held.
    void follow(EnforcementAction action, Enforcer::Processes processes, SuspendedApp entry);
    void setSnooze(std::string_view app, double minutes);
    void pruneSuspended();
    void recoverOrphansFromPreviousRun();
    void expireMutes(Date now);

    Host host_;
    Persistence persistence_;
    MeteredStatus status_;
    std::optional<std::string> idleTetherInterface_;
    std::optional<InterfaceCounter> interfaceCounter_;
    InterfaceNames::Map interfaceNames_;
    std::vector<AppUsage> usage_;
    std::set<std::string> chronic_;
    std::deque<GuardEvent> events_;
    std::vector<SuspendedApp> suspended_;
    ReplacedPauses replacedPauses_{host_};
    bool isRunning_ = false;
    Capabilities capabilities_;
    std::optional<BudgetStatus> budgetStatus_;
    std::optional<DailyBudgetStatus> dailyStatus_;
    Dates snoozedUntil_;
    std::optional<MenuPresentation::AlertBadge> lastAlert_;
    LivenessStats liveness_;
    std::optional<Date> lastSampleFailureAt_;
    std::map<std::string, std::string, std::less<>> protectedReasons_;
    ExplanationCache cloudExplanations_;
    std::set<std::string> explainInFlight_;
    std::map<std::string, std::string, std::less<>> explainFailures_;
    std::optional<std::string> detailApp_;
    std::optional<AvailableUpdate> availableUpdate_;
    GuardSettings settings_;
    BudgetStore budgetStorage_;
    UsageLedger ledger_;
    SamplingDiagnostics sampling_;
    NotificationCapability notificationCapability_;

    Dates cooldown_;
    RunLoop::Handle timer_;
    bool isTicking_ = false;
    bool failsNextSample_ = false;
    Date lastPersistAt_ = distantPast;
    std::optional<Date> lastLivenessTickAt_;
    std::set<std::int32_t> selfPIDs_;
    ProtectionPolicy protection_;
    std::function<void(const NotificationPlan&)> notifier_;
    std::function<void(const GuardEvent&)> onEvent_;
    int autoResumeSeconds_;
    ExplanationStore explanationStore_;
    std::optional<UpdateCheckContext> updateCheck_;
    std::optional<ExplainContext> explain_;
    NotificationBatcher batcher_{batchWindow};
    EnforcementHistory enforcementHistory_;
    BlockedAppTrigger::TransferWatcher transferWatcher_;
    std::vector<Observation*> observations_;
    bool tellsObservers_ = false;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

} // namespace quellon
