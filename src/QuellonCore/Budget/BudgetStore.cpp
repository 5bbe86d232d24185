#include "QuellonCore/Budget/BudgetStore.h"

#include "QuellonCore/Budget/PlanProfile.h"
#include "QuellonCore/Budget/PlanSize.h"
#include "QuellonCore/Support/Checked.h"
#include "QuellonCore/Support/FiledSum.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace quellon {

namespace {

constexpr std::int64_t sampleDays = 7;        ///< How far back the forecast looks.
constexpr double longestForecastDays = 365.0; ///< What lies further ahead is no forecast.
constexpr double secondsPerDay = 86'400.0;

struct Month {
    int year;
    int month;
};

Month next(Month month)
{
    return month.month == 12 ? Month{month.year + 1, 1} : Month{month.year, month.month + 1};
}

Month previous(Month month)
{
    return month.month == 1 ? Month{month.year - 1, 12} : Month{month.year, month.month - 1};
}

std::optional<Date> cycleStartIn(Month month, const BudgetStore& store, const Calendar& calendar)
{
    return calendar.moment({month.year, month.month, static_cast<int>(store.billingCycleStartDay)});
}

/// The month in which the cycle of `now` begins. Compares moments, not days of the month: where a clock is set back
/// over midnight it shows the day before once more, but the cycle has begun.
Month cycleMonth(Date now, const BudgetStore& store, const Calendar& calendar)
{
    const CalendarDay today = calendar.day(now);
    const Month month{today.year, today.month};
    const auto start = cycleStartIn(month, store, calendar);
    if (start && *start > now) return cycleStartIn(previous(month), store, calendar) ? previous(month) : month;
    const auto following = cycleStartIn(next(month), store, calendar);
    return following && *following <= now ? next(month) : month;
}

enum class LastDay { included, excluded };

/// The bytes of all entries from one day to another.
std::uint64_t sum(const std::vector<DayUsage>& days, std::string_view from, std::string_view to, LastDay lastDay)
{
    std::uint64_t total = 0;
    for (const DayUsage& each : days) {
        const bool isInRange = each.day >= from && (lastDay == LastDay::included ? each.day <= to : each.day < to);
        if (isInRange) total = checkedAdd(total, each.bytes);
    }
    return total;
}

/// The bytes of the cycle up to today.
std::uint64_t cycleSum(const BudgetStore& store, Date now, const Calendar& calendar, LastDay today)
{
    const std::string first = BudgetStore::dayKey(store.cycleStart(now, calendar), calendar);
    return sum(store.days, first, BudgetStore::dayKey(now, calendar), today);
}

/// `counted` with the correction, and never below 0.
std::uint64_t corrected(const BudgetStore& store, std::uint64_t counted)
{
    const std::int64_t used = checkedAdd(checkedSigned(counted), store.calibrationOffsetBytes);
    return used > 0 ? static_cast<std::uint64_t>(used) : 0;
}

std::int64_t wholeDaysLeft(Date now, Date end, const Calendar& calendar)
{
    return std::max<std::int64_t>(0, calendar.wholeDays(now, end));
}

auto entryOf(auto& days, std::string_view day)
{
    return std::find_if(days.begin(), days.end(), [day](const DayUsage& each) { return each.day == day; });
}

bool canBeSummed(const BudgetStore& store)
{
    FiledSum sum;
    const std::int64_t offset = store.calibrationOffsetBytes;
    return (offset <= 0 || sum.add(static_cast<std::uint64_t>(offset))) &&
           std::ranges::all_of(store.days, [&sum](const DayUsage& each) { return sum.add(each.bytes); });
}

} // namespace

std::string BudgetStore::dayKey(Date date, const Calendar& calendar)
{
    const CalendarDay day = calendar.day(date);
    return fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day);
}

std::uint64_t BudgetStore::planBytes() const
{
    return checkedWhole(quellon::planBytes(planGB));
}

Date BudgetStore::cycleStart(Date now, const Calendar& calendar) const
{
    return cycleStartIn(cycleMonth(now, *this, calendar), *this, calendar).value_or(now);
}

Date BudgetStore::cycleEnd(Date now, const Calendar& calendar) const
{
    const Month month = cycleMonth(now, *this, calendar);
    const auto end = cycleStartIn(next(month), *this, calendar);
    return end ? *end : cycleStartIn(month, *this, calendar).value_or(now);
}

std::int64_t BudgetStore::unmeasuredGapsInCycleAt(Date now, const Calendar& calendar) const
{
    return lastUnmeasuredGapAt && *lastUnmeasuredGapAt >= cycleStart(now, calendar) ? unmeasuredGaps : 0;
}

BudgetStatus BudgetStore::status(Date now, const Calendar& calendar) const
{
    BudgetStatus status;
    status.usedBytes = corrected(*this, cycleSum(*this, now, calendar, LastDay::included));
    status.planBytes = planBytes();
    status.cycleStart = cycleStart(now, calendar);
    status.cycleEnd = cycleEnd(now, calendar);
    status.daysRemaining = static_cast<int>(wholeDaysLeft(now, status.cycleEnd, calendar));
    status.projectedExhaustion = projectExhaustion(status.usedBytes, now, calendar);
    status.unmeasuredGaps = unmeasuredGapsInCycleAt(now, calendar);
    return status;
}

std::optional<Date> BudgetStore::projectExhaustion(std::uint64_t used, Date now, const Calendar& calendar) const
{
    const std::uint64_t plan = planBytes();
    if (plan <= used) return now;

    const std::string firstDay = dayKey(calendar.addingDays(now, -sampleDays).value_or(now), calendar);
    std::uint64_t total = 0;
    std::size_t count = 0;
    for (const DayUsage& each : days) {
        if (each.day < firstDay) continue;
        total = checkedAdd(total, each.bytes);
        ++count;
    }
    if (total == 0) return std::nullopt;

    const double average = static_cast<double>(total) / static_cast<double>(count);
    const double daysLeft = static_cast<double>(plan - used) / average;
    if (daysLeft >= longestForecastDays) return std::nullopt;
    return calendar.addingSeconds(now, static_cast<std::int64_t>(daysLeft * secondsPerDay));
}

DailyBudgetStatus BudgetStore::dailyStatus(Date now, const Calendar& calendar) const
{
    DailyBudgetStatus status;
    const auto today = entryOf(days, dayKey(now, calendar));
    if (today != days.end()) status.usedTodayBytes = today->bytes;

    // Today's traffic is left out, so that the share does not shrink while it is used.
    const std::uint64_t before = corrected(*this, cycleSum(*this, now, calendar, LastDay::excluded));
    const std::uint64_t plan = planBytes();
    const std::uint64_t left = plan > before ? plan - before : 0;
    const std::int64_t daysLeft = wholeDaysLeft(now, cycleEnd(now, calendar), calendar) + 1;
    status.allowanceBytes = left / static_cast<std::uint64_t>(daysLeft);
    return status;
}

void BudgetStore::add(std::uint64_t bytes, Date at, const Calendar& calendar)
{
    if (bytes == 0) return;
    std::string day = dayKey(at, calendar);
    const auto entry = entryOf(days, day);
    if (entry != days.end())
        entry->bytes = checkedAdd(entry->bytes, bytes);
    else
        days.push_back({std::move(day), bytes});
    pruneOldDays(at, calendar);
}

void BudgetStore::pruneOldDays(Date now, const Calendar& calendar)
{
    if (days.size() <= keptDays) return;
    const auto past = calendar.addingDays(now, -static_cast<std::int64_t>(keptDays));
    const std::string cutoff = dayKey(past.value_or(now), calendar);
    std::erase_if(days, [&cutoff](const DayUsage& each) { return each.day < cutoff; });
}

std::uint64_t BudgetStore::accountFor(const InterfaceCounter& counter, std::string_view interface, Date at,
                                      const Calendar& calendar)
{
    const auto former =
        std::exchange(interfaceBaseline, InterfaceReading{std::string{interface}, counter.totalBytes(), at});
    // What an interface carried before its first reading can't be known; the interface of the last one may be gone.
    if (!former || former->interface != interface) return 0;

    // A lower count means a restart, or a rebuilt interface. Traffic since an earlier cycle belongs partly to that.
    const bool wentBack = interfaceBaseline->totalBytes < former->totalBytes;
    if (wentBack || former->at < cycleStart(at, calendar)) {
        recordUnmeasuredGap(at, calendar);
        return 0;
    }
    const std::uint64_t delta = interfaceBaseline->totalBytes - former->totalBytes;
    add(delta, at, calendar);
    return delta;
}

void BudgetStore::recordUnmeasuredGap(Date at, const Calendar& calendar)
{
    if (lastUnmeasuredGapAt && *lastUnmeasuredGapAt < cycleStart(at, calendar)) unmeasuredGaps = 0;
    if (unmeasuredGaps < std::numeric_limits<std::int64_t>::max()) ++unmeasuredGaps;
    lastUnmeasuredGapAt = at;
}

void BudgetStore::calibrate(std::uint64_t actualUsedBytes, Date now, const Calendar& calendar)
{
    const std::uint64_t counted = cycleSum(*this, now, calendar, LastDay::included);
    calibrationOffsetBytes = checkedSubtract(checkedSigned(actualUsedBytes), checkedSigned(counted));
}

std::optional<DayUsage> DayUsage::fromJson(const Json& json)
{
    JsonFields fields{json};
    DayUsage usage;
    fields.required("day", usage.day);
    fields.required("bytes", usage.bytes);
    return fields.result(std::move(usage));
}

Json DayUsage::toJson() const
{
    Json json = Json::object();
    putField(json, "day", day);
    putField(json, "bytes", bytes);
    return json;
}

std::optional<InterfaceReading> InterfaceReading::fromJson(const Json& json)
{
    JsonFields fields{json};
    InterfaceReading reading;
    fields.required("interface", reading.interface);
    fields.required("totalBytes", reading.totalBytes);
    fields.required("at", reading.at);
    return fields.result(std::move(reading));
}

Json InterfaceReading::toJson() const
{
    Json json = Json::object();
    putField(json, "interface", interface);
    putField(json, "totalBytes", totalBytes);
    putField(json, "at", at);
    return json;
}

std::optional<BudgetStore> BudgetStore::fromJson(const Json& json)
{
    JsonFields fields{json};
    BudgetStore store;
    std::int64_t startDay = store.billingCycleStartDay;
    fields.defaulted("planGB", store.planGB);
    fields.defaulted("billingCycleStartDay", startDay);
    fields.defaulted("days", store.days);
    fields.defaulted("calibrationOffsetBytes", store.calibrationOffsetBytes);
    fields.defaulted("interfaceBaseline", store.interfaceBaseline);
    fields.defaulted("unmeasuredGaps", store.unmeasuredGaps);
    fields.defaulted("lastUnmeasuredGapAt", store.lastUnmeasuredGapAt);
    store.billingCycleStartDay = startDay;
    fields.require(PlanProfile::canHold(store.planGB) && canBeSummed(store));
    return fields.result(std::move(store));
}

Json BudgetStore::toJson() const
{
    Json json = Json::object();
    putField(json, "planGB", planGB);
    putField(json, "billingCycleStartDay", std::int64_t{billingCycleStartDay});
    putField(json, "days", days);
    putField(json, "calibrationOffsetBytes", calibrationOffsetBytes);
    putField(json, "interfaceBaseline", interfaceBaseline);
    putField(json, "unmeasuredGaps", unmeasuredGaps);
    putField(json, "lastUnmeasuredGapAt", lastUnmeasuredGapAt);
    return json;
}

} // namespace quellon
