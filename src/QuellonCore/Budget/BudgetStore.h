#pragma once

#include "QuellonCore/Budget/BudgetStatus.h"
#include "QuellonCore/Measurement/InterfaceCounter.h"
#include "QuellonCore/Support/Calendar.h"
#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What one local day used.
struct DayUsage {
    std::string day; ///< The day's key, as `BudgetStore::dayKey` makes it.
    std::uint64_t bytes = 0;

    /// Both keys are required.
    [[nodiscard]] static std::optional<DayUsage> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const DayUsage&) const = default;
};

/// An interface's counter at one moment.
struct InterfaceReading {
    std::string interface;
    std::uint64_t totalBytes = 0; ///< Received plus sent.
    Date at;

    /// All three keys are required.
    [[nodiscard]] static std::optional<InterfaceReading> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const InterfaceReading&) const = default;
};

/// The data ledger of one plan: bytes per local day, taken from the interface's own counters as the carrier takes
/// them. Every question is put with the time and the calendar that it is put in.
///
/// A cycle begins with the first moment of its start day and lasts until the next begins, so that every moment lies in
/// exactly one. Sums that do not fit a signed 64-bit number end the program.
struct BudgetStore {
    using InterfaceReading = quellon::InterfaceReading;

    /// A day that every month has. Behaves like a whole number that never leaves 1 to 28.
    class StartDay {
    public:
        static constexpr std::int64_t first = 1;
        static constexpr std::int64_t last = 28;

        /// The nearest day to `day`.
        constexpr StartDay(std::int64_t day = first) : day_(std::clamp(day, first, last)) {}
        constexpr operator std::int64_t() const { return day_; }

    private:
        std::int64_t day_;
    };

    /// With more entries than this, those of days that lie further back than this many days go.
    static constexpr std::size_t keptDays = 400;

    double planGB = 30.0;                    ///< The allowance, in gigabytes of 1024 x 1024 x 1024 bytes.
    StartDay billingCycleStartDay;           ///< The day of the month that a cycle begins with.
    std::vector<DayUsage> days;              ///< One entry per day with traffic, in time order.
    std::int64_t calibrationOffsetBytes = 0; ///< Added to what was counted, in every cycle, until the next `calibrate`.
    std::optional<InterfaceReading> interfaceBaseline; ///< The last reading.
    std::int64_t unmeasuredGaps = 0;                   ///< How many gaps the cycle of `lastUnmeasuredGapAt` had.
    std::optional<Date> lastUnmeasuredGapAt;           ///< When the last gap was noticed.

    /// The local day of `date` as "2026-03-01". The order of these texts is that of the days.
    [[nodiscard]] static std::string dayKey(Date date, const Calendar& calendar);

    /// The plan in bytes, a fraction dropped. Ends the program when that is not finite, is -1 or less, or 2^64 or more.
    [[nodiscard]] std::uint64_t planBytes() const;

    /// The first moment of the cycle that `now` lies in. In the first month of all years, before its start day, that
    /// start day.
    [[nodiscard]] Date cycleStart(Date now, const Calendar& calendar) const;

    /// The first moment of the cycle that follows; `cycleStart` itself behind the last month of all years.
    [[nodiscard]] Date cycleEnd(Date now, const Calendar& calendar) const;

    /// How many gaps the cycle of `now` has had up to now.
    [[nodiscard]] std::int64_t unmeasuredGapsInCycleAt(Date now, const Calendar& calendar) const;

    /// Where the cycle stands.
    [[nodiscard]] BudgetStatus status(Date now, const Calendar& calendar) const;

    /// When a plan of which `used` is gone will be used up: `now` when it is; absent when nothing was used in the last
    /// 7 days, or when it lasts for 365 days or more. Goes by the average of those of the last 7 days, and of today,
    /// that had traffic.
    [[nodiscard]] std::optional<Date> projectExhaustion(std::uint64_t used, Date now, const Calendar& calendar) const;

    /// Today's share: what the plan held when the day began, spread evenly over the days that were left. (At the very
    /// first moment of a day, the day before is still among them.)
    [[nodiscard]] DailyBudgetStatus dailyStatus(Date now, const Calendar& calendar) const;

    /// Adds to the day of `at`, and forgets days that are too old. 0 bytes make no entry.
    void add(std::uint64_t bytes, Date at, const Calendar& calendar);

    /// Removes entries from more than 400 days before `now`, once there are more than 400.
    void pruneOldDays(Date now, const Calendar& calendar);

    /// Adds what `interface` has carried since the last reading, and returns it. Counts nothing on another interface
    /// than then; nor when the counter went back or the last reading is of an earlier cycle, which is a gap.
    std::uint64_t accountFor(const InterfaceCounter& counter, std::string_view interface, Date at,
                             const Calendar& calendar);

    /// Notes that traffic could not be counted.
    void recordUnmeasuredGap(Date at, const Calendar& calendar);

    /// Makes `status` report what the carrier says. The correction stays in force until the next one.
    void calibrate(std::uint64_t actualUsedBytes, Date now, const Calendar& calendar);

    /// A missing key leaves the default above; a start day outside of 1 to 28 is brought to the nearest. Absent also
    /// when `PlanProfile::canHold` refuses `planGB`, and when the days together with a positive correction exceed
    /// `FiledSum::largest`: what ends the program no file may bring about.
    [[nodiscard]] static std::optional<BudgetStore> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const BudgetStore&) const = default;
};

} // namespace quellon
