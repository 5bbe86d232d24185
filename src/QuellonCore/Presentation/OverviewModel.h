#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Support/EnumTable.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The kinds of activity, with the words that people read.
inline constexpr EnumTable<GuardEvent::Kind, 3> guardEventKinds{{{
    {GuardEvent::Kind::info, "info", "info"},
    {GuardEvent::Kind::warning, "warning", "warning"},
    {GuardEvent::Kind::enforced, "enforced", "enforced"},
}}};

/// All that a person sees of the guard at one moment, in words: the window and the terminal draw it and add nothing.
/// Every text is fit for a line (`plainText`).
struct OverviewModel {
    /// One application.
    struct Row {
        std::string app;
        std::string bytes;      ///< Moved in the primary window.
        std::string lastMinute; ///< Moved in the last minute.
        double share = 0.0;     ///< Of the bytes of all rows, 0 to 1.
        std::string shareText;  ///< The share in whole percent; "<1%" for what would round to nothing.
        bool operator==(const Row&) const = default;
    };

    /// One line of the activity log.
    struct LogLine {
        UUID id;
        std::string time; ///< Local, "HH:MM:SS".
        GuardEvent::Kind kind = GuardEvent::Kind::info;
        std::string message;
        bool operator==(const LogLine&) const = default;
    };

    static constexpr std::string_view lastMinuteHeading = "last minute";
    static constexpr std::string_view shareHeading = "share";

    MenuPresentation::Tone tone = MenuPresentation::Tone::off;
    std::string title;     ///< The state in words.
    std::string detail;    ///< Why the network counts as metered or not.
    std::string interface; ///< The display name of the default route's interface; empty when there is none.
    std::optional<std::string> counters; ///< What the interface has carried; absent when there is no reading.
    std::optional<std::string> warning;  ///< Told while the latest traffic sample is missing.
    std::optional<std::string> hint;     ///< Told while a phone is tethered but not used.
    std::string windowHeading;           ///< Names the primary window.
    std::string emptyText;               ///< Stands in the place of the rows when there are none.
    std::vector<Row> rows;               ///< In the engine's order.
    std::vector<LogLine> log;            ///< Newest first.

    /// The model of the engine's values. `now` ends the last minute; the local time is that of the engine's clock.
    [[nodiscard]] static OverviewModel of(const GuardEngine& engine, Date now);

    /// The activity log alone, newest first.
    [[nodiscard]] static std::vector<LogLine> logOf(const GuardEngine& engine);

    bool operator==(const OverviewModel&) const = default;
};

} // namespace quellon
