#pragma once

#include "QuellonCore/Host/IdentifierSource.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Rules/GuardRule.h"
#include "QuellonCore/Rules/UsageProfile.h"
#include "QuellonCore/Support/Json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// One data plan of the user's: what it allows, what one application may take of it, and where its budget is kept. No
/// two plans should share a `budgetFile`.
struct PlanProfile {
    static constexpr const char* defaultName = "My plan";

    UUID id; ///< Never changes.
    std::string name = defaultName;
    double planGB = 30.0;                  ///< In gigabytes of 1024 × 1024 × 1024 bytes.
    std::int64_t billingCycleStartDay = 1; ///< The day of the month on which a cycle begins, as the user gave it.
    UsageProfile usageProfile = UsageProfile::developer;
    std::vector<GuardRule> rules;
    std::string budgetFile{Persistence::budgetFile}; ///< Its name in the state folder.

    /// A plan with a new identifier on "budget.json". Without `rules` it gets the default ones of its size and usage
    /// profile; that ends the program for a `planGB` that `canHold` refuses.
    [[nodiscard]] static PlanProfile makeDefault(std::string name, double planGB, std::int64_t billingCycleStartDay,
                                                 UsageProfile usageProfile, std::optional<std::vector<GuardRule>> rules,
                                                 IdentifierSource& ids);

    /// A further plan: all defaults, with a new identifier and the budget file "budget-{identifier}.json".
    [[nodiscard]] static PlanProfile makeAdditional(std::string name, IdentifierSource& ids);

    /// Whether a plan can be of this size: its bytes must be more than -1 and less than 2^64.
    [[nodiscard]] static bool canHold(double planGB);

    /// Each key may be missing: the identifier is then a new one, and the rules are derived from the size and usage
    /// profile that the plan has. A `budgetFile` that is not `Persistence::isFreeForBudgets`, which would put the
    /// budget in the place of something else, becomes that of a further plan. Absent for a size that `canHold` refuses.
    [[nodiscard]] static std::optional<PlanProfile> fromJson(const Json& json, IdentifierSource& ids);
    /// All keys.
    [[nodiscard]] Json toJson() const;

    bool operator==(const PlanProfile&) const = default;
};

} // namespace quellon
