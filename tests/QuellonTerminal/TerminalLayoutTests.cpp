#include "QuellonTerminal/TerminalLayout.h"

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

using TerminalLayout::Line;
using TerminalLayout::Style;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

std::string text(const Line& line)
{
    std::string result;
    for (const auto& span : line) result += span.text;
    return result;
}

std::vector<std::string> texts(const OverviewModel& model, int width, int height, const ControlsModel& controls = {})
{
    std::vector<std::string> result;
    for (const auto& line : TerminalLayout::lines(model, controls, width, height)) result.push_back(text(line));
    return result;
}

class TerminalLayoutTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(useUtf8Locale()); }
};

TEST_F(TerminalLayoutTest, classicScreen)
{
    EXPECT_THAT(texts(overview(), 80, 16),
                ElementsAre("● Guarding  wlan0 · gateway 172.20.10.1 (hotspot range)", "  Wi-Fi  ↓ 812.4 MB  ↑ 20.1 MB",
                            "", "app                            1min window  last minute  share",
                            "cloud-sync                        400.5 MB      12.0 MB    50%  ━━━━━━━━────────",
                            "firefox                           399.5 MB      12.0 MB    33%  ━━━━━╸──────────",
                            "云盘同步助手                      398.5 MB      12.0 MB    25%  ━━━━────────────", "",
                            "activity", "10:00:00   📶 wlan0 · gateway 172.20.10.1 (hotspot range)",
                            "10:00:00 ! nettop 超时未返回，本轮采样已跳过",
                            "10:00:00   📶 wlan0 · gateway 172.20.10.1 (hotspot range)",
                            "10:00:00 ! nettop 超时未返回，本轮采样已跳过", "", "", "q quits"));
}

TEST_F(TerminalLayoutTest, everySizeFits)
{
    std::vector<OverviewModel> models{overview(), overview(0, 0), overview(1, 200), overview(400, 200),
                                      overview(400, 0)};
    OverviewModel hostile = overview(5, 5);
    hostile.detail = std::string(3000, 'x') + "\x1B]0;title\a";
    hostile.warning = "\x9B"
                      "31m";
    hostile.hint = "a\nb";
    hostile.rows[0].app = "a\r\n\x1B[2J" + std::string(500, 'w');
    hostile.rows[1].app = "宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽宽";
    hostile.rows[2].app = "\xFF\xFE\xC3";
    hostile.rows[3].bytes = hostile.rows[3].lastMinute = "17179869184.00 GB";
    hostile.rows[4].share = 7.0;
    hostile.log[0].message = "\x7F\xC2\x9B\u202E";
    models.push_back(hostile);
    for (std::size_t i = 0; i < models.size(); ++i) {
        for (int width = 1; width <= 200; width += width < 60 ? 1 : 7) {
            for (int height = 1; height <= 60; height += height < 14 ? 1 : 9) {
                const auto lines = TerminalLayout::lines(models[i], {}, width, height);
                SCOPED_TRACE(fmt::format("model {} at {}x{}", i, width, height));
                ASSERT_FALSE(lines.empty());
                ASSERT_LE(lines.size(), static_cast<std::size_t>(height));
                for (const auto& line : lines) {
                    const std::string whole = text(line);
                    ASSERT_LE(CellText::width(whole), width) << whole;
                    ASSERT_TRUE(std::none_of(whole.begin(), whole.end(), [](unsigned char c) {
                        return c < 0x20 || c == 0x7F;
                    })) << whole;
                    ASSERT_EQ(whole.find("\xC2\x9B"), std::string::npos) << whole;
                }
            }
        }
    }
}

TEST_F(TerminalLayoutTest, noScreen)
{
    EXPECT_THAT(TerminalLayout::lines(overview(), {}, 0, 24), SizeIs(0));
    EXPECT_THAT(TerminalLayout::lines(overview(), {}, 80, 0), SizeIs(0));
    EXPECT_THAT(TerminalLayout::lines(overview(), {}, -1, -1), SizeIs(0));
}

TEST_F(TerminalLayoutTest, narrowScreensLoseColumns)
{
    struct Case {
        const char* name;
        int width;
        bool bar, lastMinute, share;
    };
    constexpr Case cases[] = {
        {"all", 80, true, true, true},
        {"the bar goes first", 60, false, true, true},
        {"then the last minute", 42, false, false, true},
        {"then the share", 28, false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto lines = TerminalLayout::usageTable(overview(), c.width, 10);
        const std::string heading = text(lines[0]);
        const std::string first = text(lines[1]);
        EXPECT_EQ(heading.find("last minute") != std::string::npos, c.lastMinute);
        EXPECT_EQ(heading.find("share") != std::string::npos, c.share);
        EXPECT_EQ(first.find("━") != std::string::npos, c.bar);
        EXPECT_THAT(first, StartsWith("cloud-sync"));
        EXPECT_THAT(first, HasSubstr("400.5 MB"));
    }
}

TEST_F(TerminalLayoutTest, longNamesAreCut)
{
    auto model = overview(1);
    model.rows[0].app = "org.example.a-very-long-name-of-an-application-helper";
    EXPECT_THAT(texts(model, 60, 20)[4], StartsWith("org.example.a-very-long-na…  "));
}

TEST_F(TerminalLayoutTest, lowScreens)
{
    EXPECT_THAT(texts(overview(), 40, 1), ElementsAre(StartsWith("● Guarding")));
    EXPECT_THAT(texts(overview(), 40, 3), ElementsAre(StartsWith("● Guarding"), StartsWith("cloud-sync"), "… 2 more"));
    const auto six = texts(overview(), 40, 6);
    EXPECT_THAT(six, ElementsAre(StartsWith("● Guarding"), StartsWith("  Wi-Fi"), StartsWith("app"),
                                 StartsWith("cloud-sync"), StartsWith("firefox"), StartsWith("云盘")));
}

TEST_F(TerminalLayoutTest, manyRowsLeaveRoomForTheLog)
{
    const auto lines = texts(overview(400, 200), 80, 24);
    ASSERT_THAT(lines, SizeIs(24));
    EXPECT_EQ(lines[15], "… 389 more");
    EXPECT_EQ(lines[17], "activity");
    EXPECT_THAT(lines[22], StartsWith("10:00:00"));
    EXPECT_EQ(lines[23], "q quits");
}

TEST_F(TerminalLayoutTest, emptyStatesAndNotices)
{
    auto model = overview(0, 0);
    model.tone = MenuPresentation::Tone::standby;
    model.title = "Idle · not a metered network";
    model.counters.reset();
    model.warning = "Couldn't read per-app traffic at 10:00:00 — retrying";
    model.hint = "en7 is ready, but macOS is still using Wi-Fi.";
    const auto lines = TerminalLayout::lines(model, {}, 80, 24);
    EXPECT_EQ(lines[0][0], (TerminalLayout::Span{"● ", Style::waiting}));
    EXPECT_EQ(lines[1][0], (TerminalLayout::Span{"! ", Style::warning}));
    EXPECT_EQ(text(lines[1]), "! Couldn't read per-app traffic at 10:00:00 — retrying");
    EXPECT_EQ(text(lines[2]), "  en7 is ready, but macOS is still using Wi-Fi.");
    EXPECT_EQ(text(lines[4]), "No traffic yet");
    model.tone = MenuPresentation::Tone::off;
    EXPECT_EQ(TerminalLayout::lines(model, {}, 80, 24)[0][0].style, Style::faint);
    model.tone = MenuPresentation::Tone::active;
    EXPECT_EQ(TerminalLayout::lines(model, {}, 80, 24)[0][0].style, Style::good);
}

TEST_F(TerminalLayoutTest, kindsAreToldWithoutColours)
{
    auto model = overview(0, 3);
    model.log[2].kind = GuardEvent::Kind::enforced;
    const auto lines = texts(model, 80, 24);
    EXPECT_THAT(lines[6], StartsWith("10:00:00   "));
    EXPECT_THAT(lines[7], StartsWith("10:00:00 ! "));
    EXPECT_THAT(lines[8], StartsWith("10:00:00 ■ "));
}

TEST_F(TerminalLayoutTest, bar)
{
    struct Case {
        const char* name;
        double share;
        int width;
        const char* text;
    };
    constexpr Case cases[] = {
        {"nothing", 0.0, 4, "────"},
        {"next to nothing shows", 1e-9, 4, "╸───"},
        {"half", 0.5, 4, "━━──"},
        {"half a cell", 0.375, 4, "━╸──"},
        {"everything", 1.0, 4, "━━━━"},
        {"more than everything", 7.0, 4, "━━━━"},
        {"less than nothing", -1.0, 4, "────"},
        {"no room", 0.5, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(text(TerminalLayout::bar(c.share, c.width)), c.text);
    }
}

} // namespace
} // namespace quellon
