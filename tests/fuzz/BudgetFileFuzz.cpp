#include "QuellonCore/Budget/BudgetStore.h"
#include "StateFile.h"

#include <vector>

namespace {

using namespace quellon;

/// Ordinary moments, the far ends of time, and those that the file itself names.
std::vector<Date> moments(const BudgetStore& store)
{
    std::vector<Date> result;
    for (const double seconds : {0.0, 795'261'600.25, -1e18, 1e18, 1e300}) result.emplace_back(Seconds{seconds});
    if (store.interfaceBaseline) result.push_back(store.interfaceBaseline->at);
    if (store.lastUnmeasuredGapAt) result.push_back(*store.lastUnmeasuredGapAt);
    return result;
}

void useAt(BudgetStore store, Date now, const Calendar& calendar)
{
    constexpr std::uint64_t actual = 1'000'000'007;
    FUZZ_CHECK(store.cycleStart(now, calendar) <= store.cycleEnd(now, calendar));
    const BudgetStatus status = store.status(now, calendar);
    FUZZ_CHECK(status.planBytes == store.planBytes());
    FUZZ_CHECK(status.usedFraction() >= 0.0 && status.usedFraction() <= 1.0);
    FUZZ_CHECK(status.daysRemaining >= 0);
    FUZZ_CHECK(store.dailyStatus(now, calendar).allowanceBytes <= status.planBytes);
    store.calibrate(actual, now, calendar);
    FUZZ_CHECK(store.status(now, calendar).usedBytes == actual);
    store.add(1, now, calendar);
    // The first month of all years has days before its cycle.
    const bool isInCycle = calendar.day(store.cycleStart(now, calendar)) <= calendar.day(now);
    const std::uint64_t added = isInCycle ? 1 : 0;
    FUZZ_CHECK(store.status(now, calendar).usedBytes == actual + added);
    static_cast<void>(store.accountFor({.inBytes = 5, .outBytes = 7}, "en0", now, calendar));
    FUZZ_CHECK(store.interfaceBaseline && store.interfaceBaseline->totalBytes == 12);
    store.recordUnmeasuredGap(now, calendar);
    FUZZ_CHECK(store.lastUnmeasuredGapAt == now);
    static_cast<void>(store.status(now, calendar));
}

void useBudget(const BudgetStore& store)
{
    static const Calendar calendars[] = {Calendar{}, Calendar{"America/Santiago"}, Calendar{"Pacific/Apia"}};
    FUZZ_CHECK(store.billingCycleStartDay >= 1 && store.billingCycleStartDay <= 28);
    for (const Calendar& calendar : calendars) {
        for (const Date now : moments(store)) useAt(store, now, calendar);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    quellon::fuzz::checkStateFile(data, size, quellon::fromJson<quellon::BudgetStore>, useBudget);
    return 0;
}
