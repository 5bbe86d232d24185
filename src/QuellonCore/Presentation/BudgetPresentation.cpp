#include "QuellonCore/Presentation/BudgetPresentation.h"

#include "QuellonCore/Presentation/MenuPresentation.h"

#include <fmt/format.h>

namespace quellon::BudgetPresentation {

namespace {

using MenuPresentation::format;

Tint cycleTint(const BudgetStatus& status)
{
    constexpr double yellowFrom = 0.7;
    constexpr double redFrom = 0.9;
    if (status.willOverrun()) return Tint::red;
    if (status.planBytes == 0) return Tint::green;
    const double fraction = status.usedFraction();
    if (fraction < yellowFrom) return Tint::green;
    return fraction < redFrom ? Tint::yellow : Tint::red;
}

Tint todayTint(const DailyBudgetStatus& daily)
{
    constexpr double yellowFrom = 0.85;
    if (daily.isOverToday()) return Tint::orange;
    return daily.usedFraction() >= yellowFrom ? Tint::yellow : Tint::secondary;
}

Today today(const DailyBudgetStatus& daily)
{
    Today result;
    result.amounts = fmt::format("{} / {}", format(daily.usedTodayBytes), format(daily.allowanceBytes));
    result.tint = todayTint(daily);
    if (daily.allowanceBytes == 0) return result;
    result.rest =
        daily.isOverToday() ? "over today's pace" : fmt::format("{} left today", format(daily.remainingTodayBytes()));
    return result;
}

} // namespace

Row row(const BudgetStatus& status, const std::optional<DailyBudgetStatus>& daily, const Calendar& calendar,
        const DateTexts& dates)
{
    Row result;
    result.amounts = fmt::format("{} / {}", format(status.usedBytes), format(status.planBytes));
    result.fraction = status.usedFraction();
    result.tint = cycleTint(status);
    result.rest = fmt::format("{} left · {}d to reset", format(status.remainingBytes()), status.daysRemaining);
    if (status.willOverrun()) {
        result.runsOut = fmt::format("runs out {}", dates.monthAndDay(calendar.day(*status.projectedExhaustion)));
    }
    if (daily) result.today = today(*daily);
    if (status.unmeasuredGaps >= 1) {
        result.gaps = fmt::format("at least — {} gap(s) couldn't be measured", status.unmeasuredGaps);
    }
    return result;
}

} // namespace quellon::BudgetPresentation
