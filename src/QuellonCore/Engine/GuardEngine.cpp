#include "QuellonCore/Engine/GuardEngine.h"

#include <fmt/format.h>

#include <algorithm>

namespace quellon {

namespace {

constexpr std::string_view uncheckedDetail = "Not checked yet";

} // namespace

GuardEngine::Observation::Observation(GuardEngine& engine, std::function<void()> changed)
    : engine_(engine), changed_(std::move(changed))
{
    engine_.observations_.push_back(this);
}

GuardEngine::Observation::~Observation()
{
    // Set to nothing instead of erased: the engine may be walking the list at this moment.
    std::replace(engine_.observations_.begin(), engine_.observations_.end(), this, static_cast<Observation*>(nullptr));
}

GuardEngine::GuardEngine(Host host, Options options)
    : host_(std::move(host)),
      persistence_(host_),
      status_{false, "", std::string{uncheckedDetail}},
      interfaceNames_(InterfaceNames::current(host_)),
      capabilities_(options.capabilities ? *options.capabilities
                                         : Capabilities::detect(AppEdition::pro, host_.processes)),
      cloudExplanations_(
          persistence_.load<ExplanationCache>(Persistence::explanationsFile).value_or(ExplanationCache{})),
      ledger_(GuardSettings::leastRetention, settings_.sampleInterval, settings_.direction),
      selfPIDs_(Enforcer::selfPIDChain(host_)),
      protection_(ProtectionPolicy::default_(host_.platform)),
      notifier_(std::move(options.notifier)),
      onEvent_(std::move(options.onEvent)),
      autoResumeSeconds_(options.autoResumeSeconds),
      explanationStore_(ExplanationStore::forPlatform(host_.platform)),
      updateCheck_(std::move(options.updateCheck)),
      explain_(std::move(options.explain))
{
    const bool isPromoted = loadSettings();
    protection_.policies = settings_.appPolicies;
    const PlanProfile& plan = settings_.activeProfile();
    auto budget = persistence_.load<BudgetStore>(plan.budgetFile);
    budgetStorage_ = budget ? *std::move(budget) : freshBudget(plan);
    setUpLedger();
    if (auto saved = persistence_.load<UsageLedger::Snapshot>(Persistence::ledgerFile)) {
        ledger_.restore(std::move(saved->buckets), host_.clock.now());
    }
    liveness_ = persistence_.load<LivenessStats>(Persistence::livenessFile).value_or(LivenessStats{});
    enforcementHistory_ =
        persistence_.load<EnforcementHistory>(Persistence::enforcementHistoryFile).value_or(EnforcementHistory{});
    recoverOrphansFromPreviousRun();
    refreshBudget(host_.clock.now());
    if (isPromoted) persistence_.save(settings_, Persistence::settingsFile);
    if (settings_.migratedFromLegacyPlan) {
        GuardSettings settings = settings_;
        settings.migratedFromLegacyPlan = false;
        setSettings(std::move(settings));
        persistence_.save(settings_, Persistence::settingsFile);
    }
    if (options.autoStart) start();
}

GuardEngine::~GuardEngine() = default;

void GuardEngine::start()
{
    if (isRunning_) return;
    isRunning_ = true;
    append(GuardEvent::Kind::info,
           fmt::format("{} started · {} rules", displayName(capabilities_.edition), settings_.enabledRuleCount()));
    if (const auto reason = capabilities_.enforcementBlockedReason()) {
        append(GuardEvent::Kind::warning, std::string{*reason});
    }
    if (!capabilities_.canSampleTraffic) {
        if (const auto reason = capabilities_.samplingBlockedReason()) {
            append(GuardEvent::Kind::warning, std::string{*reason});
        }
    }
    restartTimer();
    host_.runLoop.post(whileAlive([this] { tick(); }));
    postUpdateCheck();
}

void GuardEngine::stop()
{
    isRunning_ = false;
    timer_.reset();
    resumeAll(true);
    ledger_.resetAll();
    usage_.clear();
    chronic_.clear();
    persist();
    append(GuardEvent::Kind::info, "Guard stopped");
}

void GuardEngine::restartTimer()
{
    timer_.reset();
    const bool idle = !status_.isMetered && settings_.meteredOnly;
    // No settings of a file may set the timer spinning.
    timer_ = host_.runLoop.every(idle ? idleInterval : std::max(shortestInterval, settings_.sampleInterval),
                                 [this] { host_.runLoop.post(whileAlive([this] { tick(); })); });
}

void GuardEngine::persist()
{
    persistence_.save(ledger_.snapshot(), Persistence::ledgerFile);
    persistence_.save(budgetStorage_, settings_.activeProfile().budgetFile);
    persistence_.save(liveness_, Persistence::livenessFile);
}

void GuardEngine::append(GuardEvent::Kind kind, std::string message)
{
    events_.push_front({host_.identifiers.next(), host_.clock.now(), kind, std::move(message)});
    if (events_.size() > eventCapacity) events_.resize(eventCapacity);
    if (onEvent_) onEvent_(events_.front());
    changed();
}

bool GuardEngine::showsTetherHint() const
{
    return idleTetherInterface_ && !settings_.tetherHintDismissed;
}

void GuardEngine::markAlertsSeen()
{
    if (!lastAlert_) return;
    lastAlert_->unread = false;
    changed();
}

void GuardEngine::setDetailApp(std::optional<std::string> app)
{
    detailApp_ = std::move(app);
    changed();
}

void GuardEngine::setNotificationCapability(const NotificationCapability& capability)
{
    notificationCapability_ = capability;
    changed();
}

MenuPresentation::MenuBar GuardEngine::menuBar(Date now) const
{
    MenuPresentation::MenuBarState state;
    state.isRunning = isRunning_;
    state.isMetered = status_.isMetered;
    state.meteredOnly = settings_.meteredOnly;
    state.suspendedCount = suspended_.size();
    state.alert = lastAlert_;
    if (budgetStatus_) state.budgetFraction = budgetStatus_->usedFraction();
    state.idleTether = showsTetherHint();
    return MenuPresentation::menuBar(state, now);
}

void GuardEngine::changed()
{
    if (tellsObservers_) return;
    tellsObservers_ = true;
    host_.runLoop.post(whileAlive([this] {
        tellsObservers_ = false;
        // By index: an observer may bring another one into being. A copy: it may also end itself.
        for (std::size_t i = 0; i < observations_.size(); ++i) {
            if (observations_[i] == nullptr) continue;
            const auto changed = observations_[i]->changed_;
            changed();
        }
        std::erase(observations_, nullptr);
    }));
}

RunLoop::Work GuardEngine::whileAlive(std::function<void()> work)
{
    return [alive = std::weak_ptr<const bool>{alive_}, work = std::move(work)] {
        if (!alive.expired()) work();
    };
}

} // namespace quellon
