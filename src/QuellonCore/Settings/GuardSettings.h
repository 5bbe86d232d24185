#pragma once

#include "QuellonCore/Budget/PlanProfile.h"
#include "QuellonCore/Budget/ProfileAutoSwitch.h"
#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Measurement/CountDirection.h"
#include "QuellonCore/Rules/AppPolicyTable.h"
#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"
#include "QuellonCore/UpdateCheck/UpdateCheckConsent.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What the user has chosen, stored as "settings.json". Views edit a copy and assign it to the engine. A value comes
/// from `defaults` or `fromJson`; one that was merely constructed has no plan until it is normalized, and whatever
/// needs the active plan ends the program on it.
struct GuardSettings {
    /// What the ledger keeps at least.
    static constexpr Seconds leastRetention{3'600.0};

    std::vector<PlanProfile> profiles; ///< Never empty once normalized.
    UUID activeProfileID;              ///< Names one of `profiles` once normalized.
    ProfileAutoSwitch::Memory lastProfileByInterface;
    /// True from reading a file of the single-plan layout until its settings were written anew. Never in a file.
    bool migratedFromLegacyPlan = false;
    Seconds sampleInterval{5.0}; ///< Pace of the tick while traffic is sampled.
    CountDirection direction = CountDirection::both;
    bool meteredOnly = true; ///< Watch only while on a metered network.
    bool notify = true;      ///< Send notifications at all.
    EnforcementAction enforcementAction = EnforcementAction::suspend;
    double snoozeMinutes = 15.0;
    AppPolicyTable appPolicies;
    std::map<std::string, Date, std::less<>> mutedAsksUntil; ///< Until when asks about an application stay muted.
    /// The applications whose policy came from the developer-tool presets and not from the user.
    std::set<std::string, std::less<>> presetSeededApps;
    /// What an older list says must never be touched; reading folds it into `appPolicies` and keeps it.
    std::vector<std::string> protectedExtra;
    bool onboarded = false;           ///< The first-run flow is behind the user.
    bool tetherHintDismissed = false; ///< The user closed the hint about an idle tether.
    UpdateCheckConsent updateCheckConsent = UpdateCheckConsent::unasked;
    std::optional<Date> updateLastCheckedAt;
    UpdateCheckConsent explainConsent = UpdateCheckConsent::unasked; ///< To looking applications up online.

    /// The settings of a first start: one default plan.
    [[nodiscard]] static GuardSettings defaults(IdentifierSource& ids);

    /// Each key may be missing. A wrong type or an unknown text in any key that is read makes the whole absent, and so
    /// does the size of a plan that `PlanProfile::canHold` refuses; unknown keys are ignored. Without a plan in
    /// "profiles" the keys of the single-plan layout give the one plan, otherwise those are not looked at.
    [[nodiscard]] static std::optional<GuardSettings> fromJson(const Json& json, IdentifierSource& ids);
    /// All keys, the date of the update check only when there was one. Older versions find the active plan in the keys
    /// of the single-plan layout.
    [[nodiscard]] Json toJson() const;

    /// Makes the parts agree: at least one plan (a default one if need be), an active plan that exists, and no memory
    /// of plans that don't.
    void normalize(IdentifierSource& ids);

    /// The plan that `activeProfileID` names, or else the first.
    [[nodiscard]] PlanProfile& activeProfile();
    [[nodiscard]] const PlanProfile& activeProfile() const;

    /// The fields of the active plan.
    [[nodiscard]] double& planGB() { return activeProfile().planGB; }
    [[nodiscard]] double planGB() const { return activeProfile().planGB; }
    [[nodiscard]] std::int64_t& billingCycleStartDay() { return activeProfile().billingCycleStartDay; }
    [[nodiscard]] std::int64_t billingCycleStartDay() const { return activeProfile().billingCycleStartDay; }
    [[nodiscard]] UsageProfile& profile() { return activeProfile().usageProfile; }
    [[nodiscard]] UsageProfile profile() const { return activeProfile().usageProfile; }
    [[nodiscard]] std::vector<GuardRule>& rules() { return activeProfile().rules; }
    [[nodiscard]] const std::vector<GuardRule>& rules() const { return activeProfile().rules; }

    /// The rule that the tables show: of the enabled rules of the active plan the first with the shortest window. Null
    /// when none is enabled; otherwise it lives as long as the settings are left alone.
    [[nodiscard]] const GuardRule* primaryRule() const;

    /// The window that the tables show: the shortest window of an enabled rule; 60 seconds when no rule is enabled.
    [[nodiscard]] Seconds primaryWindow() const;

    /// How much history the ledger must keep: the longest window of an enabled rule, but at least 3600 seconds.
    [[nodiscard]] Seconds requiredRetention() const;

    /// How many rules of the active plan are enabled.
    [[nodiscard]] std::size_t enabledRuleCount() const;

    /// A thirtieth of the plan, as screens show it; it doesn't look at the calendar. Ends the program for a size that
    /// `PlanProfile::canHold` refuses.
    [[nodiscard]] std::uint64_t dailyBudgetBytes() const;

    /// Gives the active plan the default rules of its present size and usage profile.
    void rederiveRules(IdentifierSource& ids);

    /// The user's word on `app`, which is from now on no longer the presets'.
    void setPolicy(AppPolicy policy, std::string_view app);

    /// Blocks the developer tools about which the user has said nothing.
    void addDevToolPresets();

    /// Whether `app` is blocked on hotspots by the presets and not by the user.
    [[nodiscard]] bool wasSeededByPreset(std::string_view app) const;

    bool operator==(const GuardSettings&) const = default;
};

} // namespace quellon
