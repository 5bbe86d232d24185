#include "QuellonCore/Presentation/AppActionPresentation.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

namespace quellon::AppActionPresentation {

namespace {

using MenuPresentation::format;

std::string_view verb(std::optional<EnforcementAction> action)
{
    if (!action) return "acted";
    switch (*action) {
    case EnforcementAction::warn:
        return "warned";
    case EnforcementAction::suspend:
        return "paused";
    case EnforcementAction::terminate:
        return "quit it";
    case EnforcementAction::kill:
        break;
    }
    return "force-quit it";
}

bool isAhead(std::optional<Date> date, Date now)
{
    return date && *date > now;
}

/// " · ≥ 32.0 MB across those hits"; empty for 0 bytes.
std::string spent(std::uint64_t bytes, std::string_view across)
{
    return bytes != 0 ? fmt::format(" · ≥ {} across those {}", format(bytes), across) : std::string{};
}

void addHolds(std::vector<std::string>& lines, const AppActionSummary& summary, Date now, const Calendar& calendar)
{
    if (summary.isSuspended) lines.emplace_back("Paused right now — resumes automatically in about 30 minutes.");
    if (isAhead(summary.snoozedUntil, now)) {
        lines.push_back(fmt::format("Snoozed until {} — rules ignore it until then.",
                                    calendar.hourAndMinute(*summary.snoozedUntil)));
    }
    if (summary.allowedUntilTransferEnds) {
        lines.emplace_back("Allowed until this transfer finishes — the guard stops asking until it has been quiet for "
                           "two minutes.");
    }
    if (isAhead(summary.mutedUntil, now)) {
        lines.push_back(fmt::format("You muted it until {}. Its policy is unchanged — asking resumes tomorrow.",
                                    calendar.hourAndMinute(*summary.mutedUntil)));
    }
}

void addRecords(std::vector<std::string>& lines, const AppActionSummary& summary, Date now)
{
    if (summary.enforcementCount > 0) {
        lines.push_back(fmt::format("Auto-enforced {}× in the last 6 h{}.", summary.enforcementCount,
                                    spent(summary.wastedBytesFloor, "hits")));
        if (summary.lastRecord) lines.push_back(lastActionLine(*summary.lastRecord, now));
    }
    if (summary.askCount > 0) {
        lines.push_back(
            fmt::format("Asked you {}× in the last 6 h{}.", summary.askCount, spent(summary.askedBytesFloor, "asks")));
    }
}

void addPolicies(std::vector<std::string>& lines, const AppActionSummary& summary)
{
    const bool asksAlways = summary.askCount > 0 && summary.policy == AppPolicy::always;
    if (asksAlways) {
        lines.emplace_back("It is set to always block on hotspot, so the guard asks as soon as it moves more than "
                           "256 KB in a minute — it does not wait for a limit to be crossed.");
    }
    if (summary.loopBreakerActive) {
        lines.emplace_back("Loop breaker on: quit/force-quit is downgraded to pause, so restarts stop burning data and "
                           "downloads can finish.");
    }
    if (summary.protectedReason) {
        lines.push_back(fmt::format("Not enforced — protected ({}).", *summary.protectedReason));
    }
    if (summary.policy != AppPolicy::global && !asksAlways) {
        lines.push_back(fmt::format("Your policy for this app: {}.", appPolicies.label(summary.policy)));
    }
}

} // namespace

std::vector<std::string> lines(const AppActionSummary& summary, Date now, const Calendar& calendar)
{
    std::vector<std::string> result;
    addHolds(result, summary, now, calendar);
    addRecords(result, summary, now);
    addPolicies(result, summary);
    if (summary.isChronic) {
        result.emplace_back("Slow but steady: keeps a high total over the long window without ever spiking.");
    }
    if (result.empty()) result.emplace_back("No guard actions in the last 6 h.");
    return result;
}

std::optional<std::string> panelLine(const AppActionSummary& summary, Date now, const Calendar& calendar)
{
    if (summary.isSuspended) return "Paused by the guard — auto-resumes in ~30 min.";
    if (summary.allowedUntilTransferEnds) return "Allowed until this transfer finishes.";
    if (isAhead(summary.mutedUntil, now)) {
        return fmt::format("Muted until {}.", calendar.hourAndMinute(*summary.mutedUntil));
    }
    if (summary.loopBreakerActive) return "Repeat offender: force-quit is downgraded to pause.";
    if (summary.enforcementCount > 0) {
        return fmt::format("Auto-enforced {}× in the last 6 h · ≥ {}.", summary.enforcementCount,
                           format(summary.wastedBytesFloor));
    }
    if (summary.askCount > 0) {
        return fmt::format("Asked you {}× in the last 6 h · ≥ {}.", summary.askCount, format(summary.askedBytesFloor));
    }
    if (summary.protectedReason) {
        return fmt::format("Protected ({}) — warned, never enforced.", *summary.protectedReason);
    }
    return std::nullopt;
}

std::string lastActionLine(const EnforcementHistory::Record& record, Date now)
{
    std::string line = fmt::format("Last: {} {}", verb(record.action), relative(record.at, now));
    if (record.ruleLabel) line += fmt::format(" after {} in {}", format(record.bytes), *record.ruleLabel);
    if (record.loopBreaker == true) line += " (downgraded by loop breaker)";
    return line + ".";
}

std::string relative(Date date, Date now)
{
    constexpr Seconds minute{60.0};
    constexpr Seconds hour{3'600.0};
    constexpr Seconds day{86'400.0};
    const Seconds ago = now - date;
    if (ago < Seconds{90.0}) return "just now";
    if (ago < hour) return fmt::format("{} min ago", nearestWhole(ago / minute));
    if (ago < 2 * day) return fmt::format("{} h ago", nearestWhole(ago / hour));
    return fmt::format("{} d ago", nearestWhole(ago / day));
}

} // namespace quellon::AppActionPresentation
