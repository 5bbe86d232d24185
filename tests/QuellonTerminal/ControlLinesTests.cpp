#include "QuellonTerminal/ControlLines.h"

#include "Overviews.h"
#include "QuellonTerminal/CellText.h"
#include "QuellonTerminal/UsageTable.h"
#include "QuellonTerminal/Utf8Locale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace quellon {
namespace {

using TerminalLayout::Excerpt;
using TerminalLayout::Line;
using TerminalLayout::Style;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

std::string text(const Line& line)
{
    std::string result;
    for (const auto& span : line) result += span.text;
    return result;
}

std::vector<std::string> texts(const std::vector<Line>& lines)
{
    std::vector<std::string> result;
    for (const auto& line : lines) result.push_back(text(line));
    return result;
}

NotificationPlan askedPlan()
{
    return {NotificationStyle::persistent,
            "apt keeps reaching for the hotspot",
            "Asked 4 times in the last hour · 2.0 MB in the last minute",
            "It is set to always block, so it is asked about every time it moves. Let this transfer finish, or stop "
            "asking until tomorrow.\n12% of your plan used · 26.40 GB left",
            {NotificationAction::allowOnce, NotificationAction::muteToday, NotificationAction::terminate,
             NotificationAction::view},
            {"apt"}};
}

/// Controls as an engine's values could give them.
ControlsModel controlled(std::size_t paused = 2)
{
    ControlsModel model;
    model.menuBar = {"2", "pause.circle.fill"};
    BudgetStatus cycle;
    cycle.usedBytes = 3'865'470'566;
    cycle.planBytes = 32'212'254'720;
    cycle.daysRemaining = 12;
    model.budget = BudgetPresentation::row(cycle, DailyBudgetStatus{104'857'600, 524'288'000}, Calendar{});
    for (std::size_t i = 0; i < paused; ++i) {
        model.paused.push_back({i == 0 ? "photo-backup" : fmt::format("app{}", i), "3 min ago", i == 0});
    }
    model.question = ControlsModel::Notice::of(askedPlan());
    model.offers = {{ControlCommand::startOrStop, "stops"},     {ControlCommand::resume, "resumes"},
                    {ControlCommand::resumeAll, "resumes all"}, {ControlCommand::snooze, "snoozes"},
                    {ControlCommand::selectNext, "select"},     {ControlCommand::dismiss, "dismisses"}};
    return model;
}

class ControlLinesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(useUtf8Locale()); }
};

TEST_F(ControlLinesTest, classicScreen)
{
    EXPECT_THAT(
        texts(TerminalLayout::lines(overview(), controlled(), 80, 24)),
        ElementsAre("● Guarding  wlan0 · gateway 172.20.10.1 (hotspot range)                      ‖ 2",
                    "  Wi-Fi  ↓ 812.4 MB  ↑ 20.1 MB", "  This month  3.60 GB / 30.00 GB · 26.40 GB left · 12d to reset",
                    "  Today       100.0 MB / 500.0 MB · 400.0 MB left today", //
                    "", "app                            1min window  last minute  share",
                    "cloud-sync                        400.5 MB      12.0 MB    50%  ━━━━━━━━────────",
                    "firefox                           399.5 MB      12.0 MB    33%  ━━━━━╸──────────",
                    "云盘同步助手                      398.5 MB      12.0 MB    25%  ━━━━────────────", //
                    "", "paused", "‖ photo-backup  3 min ago", "‖ app1          3 min ago", "", "", "", "",
                    "! apt keeps reaching for the hotspot",
                    "  Asked 4 times in the last hour · 2.0 MB in the last minute",
                    "  It is set to always block, so it is asked about every time it moves. Let this",
                    "  transfer finish, or stop asking until tomorrow.", "  12% of your plan used · 26.40 GB left",
                    "  1 Allow until done  2 Stop asking today  3 Stop it  4 Show details",
                    "q quits  s stops  r resumes  a resumes all  z snoozes  ↑↓ select  d dismisses"));
}

TEST_F(ControlLinesTest, everySizeFits)
{
    std::vector<ControlsModel> models{controlled(), controlled(0), controlled(300)};
    ControlsModel hostile = controlled(1);
    hostile.paused[0].app = std::string(400, 'w') + "\x1B[2J";
    hostile.menuBar.title = std::string(300, 't') + "\n";
    hostile.note = hostile.question;
    hostile.question->title = "宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽";
    hostile.question->text = {std::string(500, 'x'), "\x9B\x07", ""};
    hostile.selectedRow = 4000;
    hostile.questionPlace = "1 of 3";
    models.push_back(hostile);
    for (std::size_t i = 0; i < models.size(); ++i) {
        for (const OverviewModel& overviewed : {overview(), overview(0, 0), overview(400, 200)}) {
            for (int width = 1; width <= 160; width += width < 12 ? 1 : 13) {
                for (int height = 1; height <= 60; height += height < 26 ? 1 : 9) {
                    const auto lines = texts(TerminalLayout::lines(overviewed, models[i], width, height));
                    SCOPED_TRACE(fmt::format("model {} at {}x{}", i, width, height));
                    ASSERT_FALSE(lines.empty());
                    ASSERT_LE(lines.size(), static_cast<std::size_t>(height));
                    for (const std::string& whole : lines) {
                        ASSERT_LE(CellText::width(whole), width) << whole;
                        ASSERT_TRUE(std::none_of(whole.begin(), whole.end(), [](unsigned char c) {
                            return c < 0x20 || c == 0x7F;
                        })) << whole;
                    }
                }
            }
        }
    }
}

TEST_F(ControlLinesTest, lowScreensKeepTheStateTheQuestionAndWhatIsPaused)
{
    for (int height = 5; height < 40; ++height) {
        SCOPED_TRACE(height);
        const auto lines = texts(TerminalLayout::lines(overview(40, 40), controlled(), 80, height));
        EXPECT_THAT(lines.front(), StartsWith("● Guarding"));
        const auto holds = [&](std::string_view wanted) {
            return std::any_of(lines.begin(), lines.end(),
                               [&](const std::string& line) { return line.find(wanted) != std::string::npos; });
        };
        EXPECT_TRUE(holds("apt keeps reaching"));
        EXPECT_TRUE(holds("1 Allow until done  2 Stop asking today  3 Stop it  4 Show details"));
        EXPECT_TRUE(holds("‖ photo-backup"));
        EXPECT_TRUE(holds("cloud-sync"));
    }
    const auto three = texts(TerminalLayout::lines(overview(), controlled(), 110, 3));
    EXPECT_THAT(three.back(), StartsWith("! apt keeps reaching for the hotspot  1 Allow until done  2 Stop asking"));
    EXPECT_THAT(texts(TerminalLayout::lines(overview(), controlled(), 80, 1)), SizeIs(1));
}

TEST_F(ControlLinesTest, answersFlowOnNarrowScreens)
{
    EXPECT_THAT(texts(TerminalLayout::noticeLines(controlled(), 44, 4)),
                ElementsAre("! apt keeps reaching for the hotspot", "  Asked 4 times in the last hour · 2.0 MB in",
                            "  1 Allow until done  2 Stop asking today", "  3 Stop it  4 Show details"));
}

TEST_F(ControlLinesTest, destructiveAnswersStandOut)
{
    const auto lines = TerminalLayout::noticeLines(controlled(), 80, 8);
    ASSERT_THAT(lines.back(), SizeIs(8));
    EXPECT_EQ(lines.back()[0], (TerminalLayout::Span{"  1 ", Style::strong}));
    EXPECT_EQ(lines.back()[4], (TerminalLayout::Span{"  3 ", Style::enforced}));
}

TEST_F(ControlLinesTest, aNoteStandsAboveTheQuestion)
{
    auto model = controlled();
    model.note = ControlsModel::Notice{NotificationStyle::transient, "radio is using a lot of data", {"now"}, {}};
    EXPECT_THAT(texts(TerminalLayout::noticeLines(model, 80, 10)),
                ElementsAre("i radio is using a lot of data", "  now", StartsWith("! apt"), StartsWith("  Asked"),
                            StartsWith("  It is"), StartsWith("  transfer"), StartsWith("  12%"),
                            StartsWith("  1 Allow")));
    EXPECT_THAT(texts(TerminalLayout::noticeLines(model, 80, 2)),
                ElementsAre(StartsWith("! apt"), StartsWith("  1 Allow")))
        << "the question comes first where there is no room for both";
    EXPECT_THAT(TerminalLayout::noticeLines(model, 80, 0), IsEmpty());
    EXPECT_THAT(TerminalLayout::noticeLines({}, 80, 10), IsEmpty());
}

TEST_F(ControlLinesTest, aQuestionSaysThatMoreWait)
{
    auto model = controlled();
    model.questionPlace = "1 of 3";
    model.note = ControlsModel::Notice{NotificationStyle::transient, "radio is using a lot of data", {}, {}};
    const auto lines = TerminalLayout::noticeLines(model, 80, 3);
    EXPECT_THAT(texts(lines), ElementsAre("! apt keeps reaching for the hotspot  1 of 3", StartsWith("  Asked"),
                                          StartsWith("  1 Allow until done")));
    EXPECT_EQ(lines[0].back(), (TerminalLayout::Span{"  1 of 3", Style::faint}));
    EXPECT_EQ(texts(TerminalLayout::noticeLines(model, 80, 10))[0], "i radio is using a lot of data");
    struct Case {
        const char* name;
        int width, height;
        const char* first;
    };
    const Case cases[] = {
        {"the title gives way", 30, 4, "! apt keeps reaching …  1 of 3"},
        {"a single line has room for all", 120, 1,
         "! apt keeps reaching for the hotspot  1 Allow until done  2 Stop asking today  3 Stop it  4 Show details  "
         "1 of 3"},
        {"a single line has the answers first", 108, 1,
         "! apt keeps reaching for the hotspot  1 Allow until done  2 Stop asking today  3 Stop it  4 Show details  "
         "1…"},
        {"next to no room", 4, 8, "…  …"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(texts(TerminalLayout::noticeLines(model, c.width, c.height)).front(), c.first);
    }
}

TEST_F(ControlLinesTest, theSelectedOneIsAlwaysShown)
{
    auto model = controlled(50);
    model.paused[0].selected = false;
    model.paused[40].selected = true;
    const auto lines = TerminalLayout::pausedLines(model, 80, 5);
    EXPECT_THAT(texts(lines), ElementsAre("paused", "‖ app38         3 min ago", "‖ app39         3 min ago",
                                          "‖ app40         3 min ago", "… 47 more"));
    EXPECT_EQ(lines[3][1].style, Style::selected);
    EXPECT_EQ(lines[2][1].style, Style::plain);

    const auto table = TerminalLayout::usageTable(overview(30), 80, 6, 20);
    EXPECT_THAT(text(table[4]), StartsWith("app20 "));
    EXPECT_EQ(table[4][0].style, Style::selected);
    EXPECT_EQ(text(table[5]), "… 26 more");
}

TEST_F(ControlLinesTest, excerpts)
{
    struct Case {
        const char* name;
        std::size_t rows, room;
        std::optional<std::size_t> selected;
        Excerpt excerpt;
    };
    const Case cases[] = {
        {"nothing", 0, 5, {}, {0, 0, 0}},
        {"all fit", 5, 5, 4, {0, 5, 0}},
        {"some are missing", 6, 5, {}, {0, 4, 2}},
        {"the selected one is shown anyway", 6, 5, 3, {0, 4, 2}},
        {"the selected one would be missing", 6, 5, 5, {2, 4, 2}},
        {"a single line", 6, 1, 5, {5, 1, 0}},
        {"nobody is selected", 6, 5, 6, {0, 4, 2}},
        {"no room", 6, 0, {}, {0, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(TerminalLayout::excerpt(c.rows, c.room, c.selected), c.excerpt);
    }
}

TEST_F(ControlLinesTest, budget)
{
    auto model = controlled();
    model.budget->gaps = "at least — 2 gap(s) couldn't be measured";
    model.budget->runsOut = "runs out Mar 20";
    model.budget->today->rest.clear();
    const auto lines = TerminalLayout::budgetLines(model, 100);
    EXPECT_THAT(texts(lines),
                ElementsAre("  This month  3.60 GB / 30.00 GB · 26.40 GB left · 12d to reset · runs out Mar 20",
                            "  Today       100.0 MB / 500.0 MB", "  at least — 2 gap(s) couldn't be measured"));
    EXPECT_EQ(lines[0].back().style, Style::enforced);
    EXPECT_THAT(TerminalLayout::budgetLines({}, 80), IsEmpty());
}

TEST_F(ControlLinesTest, menuBar)
{
    struct Case {
        const char* name;
        MenuPresentation::MenuBar menuBar;
        const char* text;
    };
    const Case cases[] = {
        {"off says no more than the state", {"Off", "shield.slash"}, ""},
        {"idle has no title", {"", "shield"}, ""},
        {"paused", {"3", "pause.circle.fill"}, "‖ 3"},
        {"a fresh warning", {"apt 32.0 MB", "exclamationmark.shield.fill"}, "! apt 32.0 MB"},
        {"an unread warning", {"12%", "shield.lefthalf.filled.badge.checkmark"}, "• 12%"},
        {"the plan", {"12%", "shield.lefthalf.filled"}, "12%"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ControlsModel model;
        model.menuBar = c.menuBar;
        EXPECT_EQ(TerminalLayout::menuBarText(model, "Off"), c.text);
    }
    const auto narrow = texts(TerminalLayout::lines(overview(), controlled(), 56, 24));
    EXPECT_EQ(narrow[0], "● Guarding  wlan0 · gateway 172.20.10.1 (hotspot range)") << "the state goes before it";
}

TEST_F(ControlLinesTest, help)
{
    EXPECT_EQ(text(TerminalLayout::helpLine({}, 80)), "q quits");
    EXPECT_EQ(text(TerminalLayout::helpLine(controlled(), 30)), "q quits  s stops  r resumes") << "whole ones only";
    EXPECT_EQ(text(TerminalLayout::helpLine(controlled(), 4)), "q q…");
}

} // namespace
} // namespace quellon
