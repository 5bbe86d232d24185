#pragma once

#include "QuellonCore/Budget/BudgetStatus.h"
#include "QuellonCore/Presentation/DateTexts.h"
#include "QuellonCore/Presentation/Tint.h"
#include "QuellonCore/Support/Calendar.h"

#include <optional>
#include <string>
#include <string_view>

/// Where the plan stands, in words.
namespace quellon::BudgetPresentation {

using quellon::Tint;

inline constexpr std::string_view monthTitle = "This month";
inline constexpr std::string_view todayTitle = "Today";
/// Stands before `Today::rest` and before `Row::runsOut`.
inline constexpr std::string_view separator = "·";
/// Of `Row::runsOut`, and of `Row::gaps`.
inline constexpr Tint runsOutTint = Tint::red;
inline constexpr Tint gapsTint = Tint::orange;

/// Today's share of the plan.
struct Today {
    std::string amounts; ///< "120.0 MB / 341.3 MB".
    std::string rest;    ///< "221.3 MB left today" or "over today's pace"; empty without a share.
    Tint tint = Tint::secondary;
    bool operator==(const Today&) const = default;
};

/// The billing cycle.
struct Row {
    std::string amounts;   ///< "1.20 GB / 10.00 GB".
    double fraction = 0.0; ///< Of the plan used, 0 to 1.
    Tint tint = Tint::green;
    std::string rest;                   ///< "8.80 GB left · 12d to reset".
    std::optional<std::string> runsOut; ///< "runs out Mar 20"; when that is before the cycle's end.
    std::optional<Today> today;
    std::optional<std::string> gaps; ///< Told when traffic could not be counted.
    bool operator==(const Row&) const = default;
};

/// The texts for a plan and, where there is one, for the day. The calendar tells the day on which the plan runs out,
/// and `dates` how it is written.
[[nodiscard]] Row row(const BudgetStatus& status, const std::optional<DailyBudgetStatus>& daily,
                      const Calendar& calendar, const DateTexts& dates = {});

} // namespace quellon::BudgetPresentation
