#include "QuellonCore/Presentation/AppActionPresentation.h"

#include "QuellonCore/Support/Zones.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace quellon {
namespace {

using Lines = std::vector<std::string>;
using Record = EnforcementHistory::Record;

constexpr std::uint64_t mega = 1024 * 1024;

constexpr const char* pausedLine = "Paused right now — resumes automatically in about 30 minutes.";
constexpr const char* allowedLine =
    "Allowed until this transfer finishes — the guard stops asking until it has been quiet for two minutes.";
constexpr const char* alwaysLine = "It is set to always block on hotspot, so the guard asks as soon as it moves more "
                                   "than 256 KB in a minute — it does "
                                   "not wait for a limit to be crossed.";
constexpr const char* loopLine =
    "Loop breaker on: quit/force-quit is downgraded to pause, so restarts stop burning data and downloads can finish.";
constexpr const char* chronicLine = "Slow but steady: keeps a high total over the long window without ever spiking.";

/// 09:00 in UTC, 14:45 in Kathmandu.
Date now()
{
    return utc(2026, 3, 10, 9);
}

AppActionSummary with(void (*change)(AppActionSummary&))
{
    AppActionSummary summary;
    change(summary);
    return summary;
}

TEST(AppActionPresentation, linesAndPanelLine)
{
    struct Case {
        const char* name;
        AppActionSummary summary;
        Lines lines;
        std::optional<std::string> panelLine;
    };
    const Case cases[] = {
        {"nothing", {}, {"No guard actions in the last 6 h."}, std::nullopt},
        {"frozen",
         with([](auto& s) { s.isSuspended = true; }),
         {pausedLine},
         "Paused by the guard — auto-resumes in ~30 min."},
        {"snoozed",
         with([](auto& s) { s.snoozedUntil = now() + Seconds{1'805.0}; }),
         {"Snoozed until 09:30 — rules ignore it until then."},
         std::nullopt},
        {"a snooze that ends now",
         with([](auto& s) { s.snoozedUntil = now(); }),
         {"No guard actions in the last 6 h."},
         std::nullopt},
        {"allowed",
         with([](auto& s) { s.allowedUntilTransferEnds = true; }),
         {allowedLine},
         "Allowed until this transfer finishes."},
        {"muted",
         with([](auto& s) { s.mutedUntil = utc(2026, 3, 11); }),
         {"You muted it until 00:00. Its policy is unchanged — asking resumes tomorrow."},
         "Muted until 00:00."},
        {"a mute that ends now",
         with([](auto& s) { s.mutedUntil = now(); }),
         {"No guard actions in the last 6 h."},
         std::nullopt},
        {"enforced once, nothing spent",
         with([](auto& s) { s.enforcementCount = 1; }),
         {"Auto-enforced 1× in the last 6 h."},
         "Auto-enforced 1× in the last 6 h · ≥ 0.0 MB."},
        {"enforced",
         with([](auto& s) {
             s.enforcementCount = 1;
             s.wastedBytesFloor = 32 * mega;
             s.lastRecord =
                 Record{"app", now() - Seconds{300.0}, 32 * mega, EnforcementAction::suspend, "10 MB / 1min", {}, {}};
         }),
         {"Auto-enforced 1× in the last 6 h · ≥ 32.0 MB across those hits.",
          "Last: paused 5 min ago after 32.0 MB in 10 MB / 1min."},
         "Auto-enforced 1× in the last 6 h · ≥ 32.0 MB."},
        {"a last record without a count is not told",
         with([](auto& s) { s.lastRecord = Record{"app", now(), 1, {}, {}, {}, {}}; }),
         {"No guard actions in the last 6 h."},
         std::nullopt},
        {"asked once, nothing spent",
         with([](auto& s) { s.askCount = 1; }),
         {"Asked you 1× in the last 6 h."},
         "Asked you 1× in the last 6 h · ≥ 0.0 MB."},
        {"asked",
         with([](auto& s) {
             s.askCount = 3;
             s.askedBytesFloor = 1536 * mega;
         }),
         {"Asked you 3× in the last 6 h · ≥ 1.50 GB across those asks."},
         "Asked you 3× in the last 6 h · ≥ 1.50 GB."},
        {"always, never asked",
         with([](auto& s) { s.policy = AppPolicy::always; }),
         {"Your policy for this app: Always block on hotspot."},
         std::nullopt},
        {"always, asked",
         with([](auto& s) {
             s.policy = AppPolicy::always;
             s.askCount = 2;
         }),
         {"Asked you 2× in the last 6 h.", alwaysLine},
         "Asked you 2× in the last 6 h · ≥ 0.0 MB."},
        {"never, asked",
         with([](auto& s) {
             s.policy = AppPolicy::never;
             s.askCount = 2;
         }),
         {"Asked you 2× in the last 6 h.", "Your policy for this app: Never limit."},
         "Asked you 2× in the last 6 h · ≥ 0.0 MB."},
        {"never", with([](auto& s) { s.policy = AppPolicy::never; }), {"Your policy for this app: Never limit."}, {}},
        {"loop breaker",
         with([](auto& s) {
             s.enforcementCount = 2;
             s.loopBreakerActive = true;
         }),
         {"Auto-enforced 2× in the last 6 h.", loopLine},
         "Repeat offender: force-quit is downgraded to pause."},
        {"frozen, with loop breaker",
         with([](auto& s) {
             s.isSuspended = true;
             s.loopBreakerActive = true;
         }),
         {pausedLine, loopLine},
         "Paused by the guard — auto-resumes in ~30 min."},
        {"protected",
         with([](auto& s) { s.protectedReason = "protected tool (ssh)"; }),
         {"Not enforced — protected (protected tool (ssh))."},
         "Protected (protected tool (ssh)) — warned, never enforced."},
        {"chronic and nothing else", with([](auto& s) { s.isChronic = true; }), {chronicLine}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AppActionPresentation::lines(c.summary, now(), Calendar{}), c.lines);
        EXPECT_EQ(AppActionPresentation::panelLine(c.summary, now(), Calendar{}), c.panelLine);
    }
}

/// Everything at once: each line in its place, and as the rules that come first are taken away, the next panel line.
TEST(AppActionPresentation, order)
{
    AppActionSummary summary;
    summary.enforcementCount = 4;
    summary.wastedBytesFloor = 5 * mega;
    summary.askCount = 2;
    summary.askedBytesFloor = 3 * mega;
    summary.lastRecord =
        Record{"app", now() - Seconds{7'200.0}, mega, EnforcementAction::suspend, std::nullopt, true, {}};
    summary.loopBreakerActive = true;
    summary.protectedReason = "root process";
    summary.policy = AppPolicy::never;
    summary.isChronic = true;
    summary.snoozedUntil = utc(2026, 3, 10, 10);
    summary.isSuspended = true;
    summary.allowedUntilTransferEnds = true;
    summary.mutedUntil = utc(2026, 3, 10, 18, 15);
    const Calendar kathmandu = zone("Asia/Kathmandu");
    EXPECT_EQ(
        AppActionPresentation::lines(summary, now(), kathmandu),
        (Lines{pausedLine, "Snoozed until 15:45 — rules ignore it until then.", allowedLine,
               "You muted it until 00:00. Its policy is unchanged — asking resumes tomorrow.",
               "Auto-enforced 4× in the last 6 h · ≥ 5.0 MB across those hits.",
               "Last: paused 2 h ago (downgraded by loop breaker).",
               "Asked you 2× in the last 6 h · ≥ 3.0 MB across those asks.", loopLine,
               "Not enforced — protected (root process).", "Your policy for this app: Never limit.", chronicLine}));
    summary.policy = AppPolicy::always;
    const Lines lines = AppActionPresentation::lines(summary, now(), kathmandu);
    ASSERT_EQ(lines.size(), 11U);
    EXPECT_EQ(lines[7], alwaysLine);
    EXPECT_EQ(lines[8], loopLine);
    EXPECT_EQ(lines[10], chronicLine);

    const auto panelLine = [&] { return AppActionPresentation::panelLine(summary, now(), kathmandu); };
    EXPECT_EQ(panelLine(), "Paused by the guard — auto-resumes in ~30 min.");
    summary.isSuspended = false;
    EXPECT_EQ(panelLine(), "Allowed until this transfer finishes.");
    summary.allowedUntilTransferEnds = false;
    EXPECT_EQ(panelLine(), "Muted until 00:00.");
    summary.mutedUntil.reset();
    EXPECT_EQ(panelLine(), "Repeat offender: force-quit is downgraded to pause.");
    summary.loopBreakerActive = false;
    EXPECT_EQ(panelLine(), "Auto-enforced 4× in the last 6 h · ≥ 5.0 MB.");
    summary.enforcementCount = 0;
    EXPECT_EQ(panelLine(), "Asked you 2× in the last 6 h · ≥ 3.0 MB.");
    summary.askCount = 0;
    EXPECT_EQ(panelLine(), "Protected (root process) — warned, never enforced.");
    summary.protectedReason.reset();
    EXPECT_EQ(panelLine(), std::nullopt);
}

TEST(AppActionPresentation, lastActionLine)
{
    struct Case {
        const char* name;
        Record record;
        const char* line;
    };
    const Date hourAgo = now() - Seconds{3'600.0};
    const Case cases[] = {
        {"nothing known", {"a", hourAgo, 9, {}, {}, {}, {}}, "Last: acted 1 h ago."},
        {"warned", {"a", hourAgo, 9, EnforcementAction::warn, {}, {}, {}}, "Last: warned 1 h ago."},
        {"paused", {"a", hourAgo, 9, EnforcementAction::suspend, {}, {}, {}}, "Last: paused 1 h ago."},
        {"quit", {"a", hourAgo, 9, EnforcementAction::terminate, {}, {}, {}}, "Last: quit it 1 h ago."},
        {"force-quit", {"a", hourAgo, 9, EnforcementAction::kill, {}, {}, {}}, "Last: force-quit it 1 h ago."},
        {"of a rule", {"a", hourAgo, mega, {}, "5 MB / 1h", {}, {}}, "Last: acted 1 h ago after 1.0 MB in 5 MB / 1h."},
        {"loop breaker", {"a", now(), 0, {}, {}, true, {}}, "Last: acted just now (downgraded by loop breaker)."},
        {"loop breaker of false", {"a", now(), 0, {}, {}, false, {}}, "Last: acted just now."},
        {"all of it",
         {"a", hourAgo, 0, EnforcementAction::kill, "x", true, {}},
         "Last: force-quit it 1 h ago after 0.0 MB in x (downgraded by loop breaker)."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AppActionPresentation::lastActionLine(c.record, now()), c.line);
    }
}

TEST(AppActionPresentation, relative)
{
    struct Case {
        const char* name;
        double ago;
        const char* text;
    };
    constexpr Case cases[] = {
        {"ahead of now", -7'200.0, "just now"},
        {"now", 0.0, "just now"},
        {"just before 90 seconds", 89.9, "just now"},
        {"90 seconds", 90.0, "1 min ago"},
        {"two minutes, nearly", 119.9, "1 min ago"},
        {"two minutes", 120.0, "2 min ago"},
        {"an hour, nearly", 3'599.9, "59 min ago"},
        {"an hour", 3'600.0, "1 h ago"},
        {"a day", 86'400.0, "24 h ago"},
        {"47 hours", 169'200.0, "47 h ago"},
        {"48 hours, nearly", 172'799.0, "47 h ago"},
        {"48 hours", 172'800.0, "2 d ago"},
        {"three days, nearly", 259'199.0, "2 d ago"},
        {"a thousand days", 86'400'000.0, "1000 d ago"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AppActionPresentation::relative(now() - Seconds{c.ago}, now()), c.text);
    }
}

} // namespace
} // namespace quellon
