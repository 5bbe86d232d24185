#include "QuellonCore/Presentation/BudgetPresentation.h"

#include "QuellonCore/Presentation/MenuPresentation.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>

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

std::string monthAndDay(Date date, const Calendar& calendar)
{
    constexpr std::array<std::string_view, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const CalendarDay day = calendar.day(date);
    return fmt::format("{} {}", months[static_cast<std::size_t>(day.month - 1)], day.day);
}

} // namespace

Row row(const BudgetStatus& status, const std::optional<DailyBudgetStatus>& daily, const Calendar& calendar)
{
    Row result;
    result.amounts = fmt::format("{} / {}", format(status.usedBytes), format(status.planBytes));
    result.fraction = status.usedFraction();
    result.tint = cycleTint(status);
    result.rest = fmt::format("{} left · {}d to reset", format(status.remainingBytes()), status.daysRemaining);
    if (status.willOverrun()) {
        result.runsOut = fmt::format("runs out {}", monthAndDay(*status.projectedExhaustion, calendar));
    }
    if (daily) result.today = today(*daily);
    if (status.unmeasuredGaps >= 1) {
        result.gaps = fmt::format("at least — {} gap(s) couldn't be measured", status.unmeasuredGaps);
    }
    return result;
}

} // namespace quellon::BudgetPresentation
