#include "QuellonCore/Engine/GuardEngine.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

const PlanProfile* find(const std::vector<PlanProfile>& plans, const UUID& id)
{
    const auto found = std::find_if(plans.begin(), plans.end(), [&](const PlanProfile& each) { return each.id == id; });
    return found != plans.end() ? &*found : nullptr;
}

} // namespace

/// True when the settings came from a file that did not know of the first run: who has a file is past it.
bool GuardEngine::loadSettings()
{
    auto stored = persistence_.load(Persistence::settingsFile, [this](const Json& json) {
        return GuardSettings::fromJson(json, host_.identifiers);
    });
    const bool isPromoted = stored && !stored->onboarded;
    settings_ = stored ? *std::move(stored) : GuardSettings::defaults(host_.identifiers);
    if (isPromoted) settings_.onboarded = true;
    return isPromoted;
}

void GuardEngine::setSettings(GuardSettings settings)
{
    const GuardSettings previous = std::exchange(settings_, std::move(settings));
    applySettings(previous);
    changed();
}

void GuardEngine::applySettings(const GuardSettings& previous)
{
    setUpLedger();
    protection_.policies = settings_.appPolicies;
    const PlanProfile& former = previous.activeProfile();
    const PlanProfile& plan = settings_.activeProfile();
    if (settings_.activeProfileID != previous.activeProfileID) {
        swapBudget(former, plan);
    } else if (plan.planGB != former.planGB || plan.billingCycleStartDay != former.billingCycleStartDay) {
        BudgetStore budget = budgetStorage_;
        budget.planGB = plan.planGB;
        setBudget(budget);
        budget.billingCycleStartDay = plan.billingCycleStartDay;
        setBudget(std::move(budget));
    }
    persistence_.save(settings_, Persistence::settingsFile);
    refreshBudget(host_.clock.now());
    if (isRunning_) restartTimer();
}

void GuardEngine::setUpLedger()
{
    ledger_.setRetention(settings_.requiredRetention(), host_.clock.now());
    ledger_.setSampleInterval(settings_.sampleInterval);
    ledger_.direction = settings_.direction;
}

void GuardEngine::setBudgetStorage(BudgetStore budget)
{
    budgetStorage_ = std::move(budget);
    refreshBudget(host_.clock.now());
}

void GuardEngine::setBudget(BudgetStore budget)
{
    setBudgetStorage(std::move(budget));
    persistence_.save(budgetStorage_, settings_.activeProfile().budgetFile);
}

void GuardEngine::refreshBudget(Date now)
{
    const Calendar calendar = host_.clock.calendar();
    budgetStatus_ = budgetStorage_.status(now, calendar);
    dailyStatus_ = budgetStorage_.dailyStatus(now, calendar);
    changed();
}

void GuardEngine::advanceBudget(const std::optional<InterfaceCounter>& counter, Date now)
{
    if (!status_.isMetered || !counter) return;
    BudgetStore budget = budgetStorage_;
    budget.accountFor(*counter, status_.interface, now, host_.clock.calendar());
    setBudgetStorage(std::move(budget));
}

BudgetStore GuardEngine::freshBudget(const PlanProfile& plan) const
{
    BudgetStore budget;
    budget.planGB = plan.planGB;
    budget.billingCycleStartDay = plan.billingCycleStartDay;
    return budget;
}

void GuardEngine::swapBudget(const PlanProfile& from, const PlanProfile& to)
{
    persistence_.save(budgetStorage_, from.budgetFile);
    BudgetStore budget = persistence_.load<BudgetStore>(to.budgetFile).value_or(BudgetStore{});
    budget.planGB = to.planGB;
    budget.billingCycleStartDay = to.billingCycleStartDay;
    budget.interfaceBaseline.reset(); // what moved between two uses of a plan is not its own
    setBudgetStorage(std::move(budget));
    persistence_.save(budgetStorage_, to.budgetFile);
}

void GuardEngine::selectProfile(const UUID& id)
{
    const PlanProfile* plan = find(settings_.profiles, id);
    if (plan == nullptr || id == settings_.activeProfileID) return;
    const std::string name = plan->name;
    if (status_.isMetered && !status_.interface.empty()) {
        GuardSettings settings = settings_;
        settings.lastProfileByInterface.insert_or_assign(status_.interface, id);
        setSettings(std::move(settings));
    }
    GuardSettings settings = settings_;
    settings.activeProfileID = id;
    setSettings(std::move(settings));
    append(GuardEvent::Kind::info, fmt::format("Switched to plan profile \"{}\"", name));
}

UUID GuardEngine::addProfile(std::string_view named)
{
    GuardSettings settings = settings_;
    const UUID id =
        settings.profiles.emplace_back(PlanProfile::makeAdditional(std::string{named}, host_.identifiers)).id;
    setSettings(std::move(settings));
    selectProfile(id);
    return id;
}

void GuardEngine::deleteProfile(const UUID& id)
{
    const PlanProfile* found = find(settings_.profiles, id);
    const auto isDeleted = [&](const PlanProfile& each) { return each.id == id; };
    const auto other = std::find_if_not(settings_.profiles.begin(), settings_.profiles.end(), isDeleted);
    if (found == nullptr || other == settings_.profiles.end()) return;
    const PlanProfile plan = *found;
    if (id == settings_.activeProfileID) selectProfile(UUID{other->id});
    GuardSettings settings = settings_;
    std::erase_if(settings.profiles, isDeleted);
    setSettings(settings);
    std::erase_if(settings.lastProfileByInterface, [&](const auto& memory) { return memory.second == id; });
    setSettings(std::move(settings));
    if (plan.budgetFile != Persistence::budgetFile) persistence_.remove(plan.budgetFile);
    append(GuardEvent::Kind::info, fmt::format("Deleted plan profile \"{}\"", plan.name));
}

} // namespace quellon
