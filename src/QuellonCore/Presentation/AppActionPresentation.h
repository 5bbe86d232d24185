#pragma once

#include "QuellonCore/Enforcement/EnforcementHistory.h"
#include "QuellonCore/Presentation/AppActionSummary.h"
#include "QuellonCore/Support/Calendar.h"
#include "QuellonCore/Support/Time.h"

#include <optional>
#include <string>
#include <vector>

/// An application's summary in sentences. Times of day are those of the calendar's zone.
namespace quellon::AppActionPresentation {

/// Everything that there is to say, in its order; never empty. A snooze or a mute that has run out is not mentioned.
[[nodiscard]] std::vector<std::string> lines(const AppActionSummary& summary, Date now, const Calendar& calendar);

/// What matters most, in one line; absent when there is nothing to say. A snooze is not mentioned.
[[nodiscard]] std::optional<std::string> panelLine(const AppActionSummary& summary, Date now, const Calendar& calendar);

/// What was done last: "Last: paused 5 min ago after 32.0 MB in 10 MB / 1min (downgraded by loop breaker)."
[[nodiscard]] std::string lastActionLine(const EnforcementHistory::Record& record, Date now);

/// How long ago `date` was, in whole minutes, hours or days, cut off; "just now" before 90 seconds, and for a date
/// ahead of `now`. Hours go up to 47.
[[nodiscard]] std::string relative(Date date, Date now);

} // namespace quellon::AppActionPresentation
