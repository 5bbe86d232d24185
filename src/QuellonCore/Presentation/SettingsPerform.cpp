#include "QuellonCore/Presentation/SettingsModel.h"

#include "QuellonCore/Budget/PlanSize.h"
#include "QuellonCore/Rules/RuleDerivation.h"
#include "QuellonCore/Support/Checked.h"

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

using namespace SettingsActions;

constexpr double bytesPerMegabyte = 1024.0 * 1024.0;

/// Drops what was typed about a plan; the carrier's word stays.
void forgetDrafts(SettingsState& state)
{
    std::erase_if(state.drafts,
                  [](const auto& draft) { return draft.first.kind != NumberField::Kind::carrierReading; });
}

GuardRule* find(std::vector<GuardRule>& rules, const UUID& id)
{
    const auto found = std::ranges::find(rules, id, &GuardRule::id);
    return found != rules.end() ? &*found : nullptr;
}

/// Carries out one action.
class Performer {
public:
    Performer(GuardEngine& engine, SettingsState& state) : engine_{engine}, state_{state} {}

    bool operator()(const SelectTab& action)
    {
        if (state_.tab == action.tab) return false;
        leavePage();
        state_.tab = action.tab;
        return false;
    }
    bool operator()(const CloseWindow& /*action*/)
    {
        leavePage();
        return false;
    }

    bool operator()(const SelectProfile& action)
    {
        engine_.selectProfile(action.id);
        return false;
    }
    bool operator()(const RenameProfile& action)
    {
        GuardSettings settings = engine_.settings();
        const UUID id = action.plan.value_or(settings.activeProfile().id);
        const auto plan = std::ranges::find(settings.profiles, id, &PlanProfile::id);
        if (plan == settings.profiles.end()) return false;
        plan->name = action.name;
        engine_.setSettings(std::move(settings));
        return false;
    }
    bool operator()(const AddProfile& /*action*/)
    {
        engine_.addProfile("New profile");
        return false;
    }
    bool operator()(const DeleteProfile& action)
    {
        engine_.deleteProfile(action.id);
        return false;
    }
    bool operator()(const SetUsageProfile& action)
    {
        return edit([&](GuardSettings& settings) { settings.profile() = action.profile; });
    }

    bool operator()(const EditNumber& action)
    {
        state_.drafts[action.field] = action.text;
        return false;
    }
    bool operator()(const CommitNumber& action)
    {
        commit(action.field);
        return false;
    }

    bool operator()(const RederiveRules& /*action*/)
    {
        const PlanProfile& plan = engine_.settings().activeProfile();
        auto derived = RuleDerivation::defaultRules(plan.planGB, plan.usageProfile, engine_.host().identifiers);
        state_.pendingRederive = RuleDerivation::pendingChanges(plan.rules, derived);
        if (!state_.pendingRederive.empty()) return false;
        forgetDrafts(state_);
        return edit([&](GuardSettings& settings) { settings.rules() = std::move(derived); });
    }
    bool operator()(const ReplaceRules& /*action*/)
    {
        if (state_.pendingRederive.empty()) return false;
        forgetDrafts(state_);
        rederive();
        state_.pendingRederive.clear();
        return false;
    }
    bool operator()(const KeepRules& /*action*/)
    {
        state_.pendingRederive.clear();
        return false;
    }

    bool operator()(const MatchCarrier& /*action*/)
    {
        const auto draft = state_.drafts.find(carrierField);
        if (draft == state_.drafts.end()) return false;
        const auto reading = NumberField::read(carrierField.kind, draft->second);
        if (!reading.value) return false;
        const Clock& clock = engine_.host().clock;
        BudgetStore budget = engine_.budget();
        budget.calibrate(checkedWhole(planBytes(*reading.value)), clock.now(), clock.calendar());
        engine_.setBudget(std::move(budget));
        state_.drafts.erase(draft);
        return false;
    }
    bool operator()(const ClearCalibration& /*action*/)
    {
        BudgetStore budget = engine_.budget();
        budget.calibrationOffsetBytes = 0;
        engine_.setBudget(std::move(budget));
        state_.drafts.erase(carrierField);
        return false;
    }

    bool operator()(const SetRuleEnabled& action)
    {
        return editRule(action.rule, [&](GuardRule& rule) { rule.enabled = action.enabled; });
    }
    bool operator()(const SetRuleLevel& action)
    {
        return editRule(action.rule, [&](GuardRule& rule) { rule.level = action.level; });
    }
    bool operator()(const AddRule& action)
    {
        constexpr Seconds hour{3'600.0};
        const double share = action.window >= hour ? 0.35 : 0.045;
        GuardRule rule;
        rule.id = engine_.host().identifiers.next();
        rule.windowSeconds = action.window;
        rule.thresholdBytes = checkedWhole(static_cast<double>(engine_.settings().dailyBudgetBytes()) * share);
        rule.level = ActionLevel::notify;
        return edit([&](GuardSettings& settings) { settings.rules().push_back(rule); });
    }
    bool operator()(const SetEnforcementAction& action)
    {
        return edit([&](GuardSettings& settings) { settings.enforcementAction = action.action; });
    }

    bool operator()(const SetPolicy& action)
    {
        return edit([&](GuardSettings& settings) { settings.setPolicy(action.policy, action.app); });
    }
    bool operator()(const RemovePolicy& action)
    {
        return edit([&](GuardSettings& settings) { settings.appPolicies.remove(action.app); });
    }
    bool operator()(const AddDevTools& /*action*/)
    {
        return edit([](GuardSettings& settings) { settings.addDevToolPresets(); });
    }
    bool operator()(const OpenPicker& /*action*/)
    {
        state_.query.clear();
        state_.showingPicker = true;
        return false;
    }
    bool operator()(const FilterPicker& action)
    {
        state_.query = action.query;
        return false;
    }
    bool operator()(const PickPolicy& action)
    {
        edit([&](GuardSettings& settings) { settings.setPolicy(action.policy, action.app); });
        state_.showingPicker = false;
        return false;
    }
    bool operator()(const ClosePicker& /*action*/)
    {
        state_.showingPicker = false;
        return false;
    }

    bool operator()(const OpenDetails& action)
    {
        state_.askingConsent.reset();
        engine_.setDetailApp(action.app);
        return false;
    }
    bool operator()(const CloseDetails& /*action*/)
    {
        state_.askingConsent.reset();
        engine_.setDetailApp(std::nullopt);
        return false;
    }
    bool operator()(const ExplainOnline& action)
    {
        if (engine_.settings().explainConsent == UpdateCheckConsent::granted)
            engine_.requestExplanation(action.app);
        else
            state_.askingConsent = action.app;
        return false;
    }
    bool operator()(const AnswerExplainConsent& action)
    {
        state_.askingConsent.reset();
        engine_.answerExplainConsent(action.granted);
        if (action.granted) engine_.requestExplanation(action.app);
        return false;
    }
    bool operator()(const UnmuteAsks& action)
    {
        engine_.unmuteAsks(action.app);
        return false;
    }
    bool operator()(const ResumeWatching& action)
    {
        engine_.resumeWatching(action.app);
        return false;
    }

    bool operator()(const ShowCopied& action)
    {
        state_.copied = action.copied;
        return false;
    }

    bool operator()(const SetStartAtLogin& /*action*/) { return false; }

    bool operator()(const StartGuarding& /*action*/)
    {
        for (const auto kind : {NumberField::Kind::planSize, NumberField::Kind::startDay}) {
            const NumberField field{kind, {}};
            commit(field);
            if (state_.drafts.contains(field)) return false;
        }
        rederive();
        edit([](GuardSettings& settings) { settings.onboarded = true; });
        return true;
    }

private:
    static constexpr NumberField carrierField{NumberField::Kind::carrierReading, {}};

    /// Changes a copy of the settings and assigns it. False, so that it can end an action.
    template <typename Change>
    bool edit(const Change& change)
    {
        GuardSettings settings = engine_.settings();
        change(settings);
        engine_.setSettings(std::move(settings));
        return false;
    }
    template <typename Change>
    bool editRule(const UUID& id, const Change& change)
    {
        GuardSettings settings = engine_.settings();
        GuardRule* rule = find(settings.rules(), id);
        if (rule == nullptr) return false;
        change(*rule);
        engine_.setSettings(std::move(settings));
        return false;
    }
    void rederive()
    {
        edit([&](GuardSettings& settings) { settings.rederiveRules(engine_.host().identifiers); });
    }

    /// The number that the field has without a draft; absent when it has none.
    [[nodiscard]] std::optional<double> present(const NumberField& field) const
    {
        GuardSettings settings = engine_.settings();
        switch (field.kind) {
        case NumberField::Kind::planSize:
            return settings.planGB();
        case NumberField::Kind::startDay:
            return static_cast<double>(settings.billingCycleStartDay());
        case NumberField::Kind::ruleLimit:
            if (const GuardRule* rule = find(settings.rules(), field.rule)) {
                return static_cast<double>(rule->thresholdBytes) / bytesPerMegabyte;
            }
            break;
        case NumberField::Kind::carrierReading:
            break;
        }
        return std::nullopt;
    }

    /// Lets what was typed take effect. What is refused stays as it is typed; the carrier's word waits for its button.
    void commit(const NumberField& field)
    {
        const auto draft = state_.drafts.find(field);
        if (draft == state_.drafts.end() || field.kind == NumberField::Kind::carrierReading) return;
        const auto before = present(field);
        const auto reading = NumberField::read(field.kind, draft->second);
        if (before && !reading.value) return;
        // A text that was left as it stood must not round the value that it stands for.
        const bool isSame = !before || NumberField::text(*before) == draft->second;
        state_.drafts.erase(draft);
        if (!isSame) set(field, *reading.value);
    }

    /// What stood on the page goes with it.
    void leavePage()
    {
        commitAll();
        forgetDrafts(state_);
        state_.pendingRederive.clear();
        state_.showingPicker = false;
        state_.query.clear();
        state_.copied = false;
    }

    /// For a page that is left by other means than its fields.
    void commitAll()
    {
        const auto typed = state_.drafts;
        for (const auto& draft : typed) commit(draft.first);
    }

    void set(const NumberField& field, double value)
    {
        edit([&](GuardSettings& settings) {
            if (field.kind == NumberField::Kind::planSize)
                settings.planGB() = value;
            else if (field.kind == NumberField::Kind::startDay)
                settings.billingCycleStartDay() = checkedWholeSigned(value);
            else if (GuardRule* rule = find(settings.rules(), field.rule))
                rule->thresholdBytes = checkedWhole(value * bytesPerMegabyte);
        });
    }

    GuardEngine& engine_;
    SettingsState& state_;
};

} // namespace

void settle(const GuardEngine& engine, SettingsState& state)
{
    const UUID& plan = engine.settings().activeProfile().id;
    if (state.plan != plan) {
        forgetDrafts(state);
        state.pendingRederive.clear();
        state.plan = plan;
    }
    if (state.askingConsent != engine.detailApp()) state.askingConsent.reset();
}

bool perform(const SettingsAction& action, GuardEngine& engine, SettingsState& state)
{
    settle(engine, state);
    return std::visit(Performer{engine, state}, action);
}

} // namespace quellon
