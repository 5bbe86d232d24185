#include "QuellonCore/Budget/BudgetStatus.h"

#include <algorithm>

namespace quellon {

double BudgetStatus::usedFraction() const
{
    if (planBytes == 0) return 0.0;
    return std::min(1.0, static_cast<double>(usedBytes) / static_cast<double>(planBytes));
}

double DailyBudgetStatus::usedFraction() const
{
    if (allowanceBytes == 0) return usedTodayBytes > 0 ? 1.0 : 0.0;
    return std::min(1.0, static_cast<double>(usedTodayBytes) / static_cast<double>(allowanceBytes));
}

} // namespace quellon
