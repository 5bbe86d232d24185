#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/PanelAction.h"
#include "QuellonCore/Presentation/Tint.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What one row of the usage list is made of.
struct UsageRow {
    AppUsage item;
    std::uint64_t threshold = 0; ///< The primary rule's limit, or 0.
    bool isChronic = false;
    std::optional<Date> snoozedUntil;
    bool isExpanded = false;
    std::optional<AppExplanation> explanation; ///< Read only when expanded, and so is the next.
    std::optional<std::string> actionLine;
};

/// One application in the usage list, in words. Names are fit for a line (`plainText`).
struct UsageRowModel {
    /// What an open row tells.
    struct Details {
        std::string whatItIs;
        std::optional<std::string> actionLine;
        PanelButton button; ///< Opens the details.
        bool operator==(const Details&) const = default;
    };

    std::string name;
    PanelButton toggle; ///< The whole row, without a title; its target is the application's label, the row's key.
    std::string_view chevron;
    std::string_view chronicBadge; ///< "🐌" for a slow but steady application, otherwise empty.
    std::string_view chronicHelp;  ///< What the badge says when pointed at.
    std::string snooze;            ///< "zzz 12m"; empty for one that is not snoozed.
    std::string amount;
    Tint amountTint = Tint::secondary;
    double fraction = 0.0; ///< Of the limit, 0 to 1.
    Tint barTint = Tint::green;
    std::optional<Details> details; ///< While it is open.
    bool operator==(const UsageRowModel&) const = default;

    /// The minutes of a snooze are those from `now`, cut towards zero, also when it is over.
    [[nodiscard]] static UsageRowModel of(const UsageRow& row, Date now);
};

/// Who moved how much within the primary window, in words.
struct UsageListModel {
    /// The applications that have rows, and what is said of the others.
    struct Selection {
        std::vector<AppUsage> rows;
        std::optional<std::string> hiddenUsageLine;
        bool operator==(const Selection&) const = default;
    };

    /// How many rows there are at most.
    static constexpr std::size_t mostRows = 6;
    /// Below this an application has no row, whatever the rule: one mebibyte.
    static constexpr std::uint64_t leastVisible = 1'048'576;

    std::string title;                      ///< "Last 1min".
    std::optional<std::string> limit;       ///< "limit 10.0 MB"; absent without a rule.
    std::optional<std::string> warning;     ///< Why nothing can be shown.
    std::optional<std::string_view> empty;  ///< Stands there when there is nothing to show.
    std::vector<UsageRowModel> rows;        ///< In the engine's order.
    std::optional<std::string> hiddenUsage; ///< "5 more apps · 3.1 MB", behind the rows.
    bool operator==(const UsageListModel&) const = default;

    [[nodiscard]] static UsageListModel of(const GuardEngine& engine, Date now,
                                           const std::optional<std::string>& expandedApp);

    /// Why no usage can be shown: what the program may not do outranks a sample that gave nothing at that moment.
    /// Absent when there is no reason.
    [[nodiscard]] static std::optional<std::string> warningFor(const Capabilities& capabilities,
                                                               std::optional<Date> sampleFailure);

    /// From how many bytes on an application has a row: a twentieth of the primary rule's limit, in whole bytes, and
    /// not less than `leastVisible`, which is also what holds without a rule.
    [[nodiscard]] static std::uint64_t visibleUsageFloor(std::optional<std::uint64_t> threshold);

    /// The first `mostRows` with that many bytes. The line counts all others, and sums up those of them that lie below
    /// the floor; absent when there are no others. Ends the program when the sum does not fit.
    [[nodiscard]] static Selection select(const std::vector<AppUsage>& usage, std::uint64_t visibleUsageFloor);
};

} // namespace quellon
