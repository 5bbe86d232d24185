#include "QuellonCore/Presentation/MenuPresentation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace quellon {
namespace {

using MenuPresentation::AlertBadge;
using MenuPresentation::Level;
using MenuPresentation::MenuBar;
using MenuPresentation::MenuBarState;
using MenuPresentation::Tone;

constexpr Date now{Seconds{800'000'000.0}};

TEST(MenuPresentation, state)
{
    struct Case {
        const char* name;
        bool isRunning, isMetered, meteredOnly;
        bool isGuarding;
        Tone tone;
        const char* title;
    };
    constexpr const char* idle = "Idle · not a metered network";
    constexpr Case cases[] = {
        {"off", false, false, false, false, Tone::off, "Off"},
        {"off, metered-only", false, false, true, false, Tone::off, "Off"},
        {"off on a metered network", false, true, false, false, Tone::off, "Off"},
        {"off on a metered network, metered-only", false, true, true, false, Tone::off, "Off"},
        {"any network", true, false, false, true, Tone::active, "Guarding"},
        {"waiting", true, false, true, false, Tone::standby, idle},
        {"metered", true, true, false, true, Tone::active, "Guarding"},
        {"metered, metered-only", true, true, true, true, Tone::active, "Guarding"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MenuPresentation::isGuarding(c.isRunning, c.isMetered, c.meteredOnly), c.isGuarding);
        EXPECT_EQ(MenuPresentation::tone(c.isRunning, c.isMetered, c.meteredOnly), c.tone);
        EXPECT_EQ(MenuPresentation::statusTitle(c.isRunning, c.isMetered, c.meteredOnly), c.title);
    }
}

TEST(MenuPresentation, toneTexts)
{
    EXPECT_EQ(MenuPresentation::tones.raw(Tone::off), "off");
    EXPECT_EQ(MenuPresentation::tones.raw(Tone::active), "active");
    EXPECT_EQ(MenuPresentation::tones.raw(Tone::standby), "standby");
    EXPECT_EQ(MenuPresentation::tones.parse("standby"), Tone::standby);
    EXPECT_EQ(MenuPresentation::tones.parse("Off"), std::nullopt);
}

TEST(MenuPresentation, format)
{
    struct Case {
        const char* name;
        std::uint64_t bytes;
        const char* text;
    };
    constexpr std::uint64_t mega = 1024 * 1024;
    constexpr Case cases[] = {
        {"nothing", 0, "0.0 MB"},
        {"one byte", 1, "0.0 MB"},
        {"just below a shown tenth", 52'428, "0.0 MB"},
        {"just above it", 52'430, "0.1 MB"},
        {"a megabyte", mega, "1.0 MB"},
        {"a megabyte and a half", mega + mega / 2, "1.5 MB"},
        {"one byte below a gigabyte: the band is chosen before rounding", 1024 * mega - 1, "1024.0 MB"},
        {"a gigabyte", 1024 * mega, "1.00 GB"},
        {"a thousand gigabytes get no unit of their own", 2048ULL * 1024 * mega, "2048.00 GB"},
        {"the largest count", std::numeric_limits<std::uint64_t>::max(), "17179869184.00 GB"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MenuPresentation::format(c.bytes), c.text);
    }
}

/// A warning of so many seconds ago.
AlertBadge alert(double age, bool unread = true)
{
    return {"Steam", 157'286'400, now - Seconds{age}, unread};
}

TEST(MenuPresentation, alertIsActive)
{
    struct Case {
        const char* name;
        double age;
        bool isActive;
    };
    constexpr Case cases[] = {
        {"just now", 0.0, true},        {"at the last moment", 29.999, true}, {"exactly 30 seconds old", 30.0, false},
        {"an hour old", 3600.0, false}, {"in the future", -86'400.0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(alert(c.age, true).isActive(now), c.isActive);
        EXPECT_EQ(alert(c.age, false).isActive(now), c.isActive);
    }
    EXPECT_EQ(AlertBadge::takeoverSeconds, Seconds{30.0});
}

TEST(MenuPresentation, menuBar)
{
    struct Case {
        const char* name;
        bool isRunning, isMetered, meteredOnly;
        std::size_t suspendedCount;
        std::optional<AlertBadge> alert;
        std::optional<double> budget;
        bool idleTether;
        MenuBar expected;
    };
    constexpr const char* plain = "shield.lefthalf.filled";
    constexpr const char* badge = "shield.lefthalf.filled.badge.checkmark";
    constexpr const char* fresh = "exclamationmark.shield.fill";
    const auto none = std::nullopt;
    const Case cases[] = {
        {"off", false, false, true, 0, none, none, false, {"Off", "shield.slash"}},
        {"off with 3 frozen", false, true, true, 3, none, 0.5, false, {"Off", "shield.slash"}},
        {"off with all the rest", false, false, true, 1, alert(0), 0.5, true, {"Off", "shield.slash"}},
        {"one frozen", true, true, true, 1, none, 0.5, false, {"1", "pause.circle.fill"}},
        {"one frozen and a fresh warning", true, true, true, 1, alert(0), 0.5, false, {"1", "pause.circle.fill"}},
        {"twelve frozen off a metered network", true, false, true, 12, none, none, true, {"12", "pause.circle.fill"}},
        {"waiting", true, false, true, 0, none, 0.5, false, {"", "shield"}},
        {"waiting beside a phone", true, false, true, 0, none, 0.5, true, {"", "cable.connector"}},
        {"waiting with a fresh warning", true, false, true, 0, alert(0), 0.5, false, {"", "shield"}},
        {"waiting beside a phone with a fresh warning",
         true,
         false,
         true,
         0,
         alert(0),
         0.5,
         true,
         {"", "cable.connector"}},
        {"any network, no budget, no warning", true, false, false, 0, none, none, false, {"—", plain}},
        {"any network beside a phone", true, false, false, 0, none, 0.5, true, {"50%", plain}},
        {"a fresh warning", true, true, true, 0, alert(29.999), 0.5, false, {"Steam 150.0 MB", fresh}},
        {"a fresh warning that was seen", true, true, true, 0, alert(0, false), 0.5, false, {"Steam 150.0 MB", fresh}},
        {"a warning of the future", true, true, true, 0, alert(-9), 0.5, false, {"Steam 150.0 MB", fresh}},
        {"an unread warning of 30 seconds ago", true, true, true, 0, alert(30), 0.5, false, {"50%", badge}},
        {"an unread warning of a year ago", true, true, true, 0, alert(31'536'000), none, false, {"—", badge}},
        {"a read warning of 30 seconds ago", true, true, true, 0, alert(30, false), 0.5, false, {"50%", plain}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MenuBarState state{.isRunning = c.isRunning,
                                 .isMetered = c.isMetered,
                                 .meteredOnly = c.meteredOnly,
                                 .suspendedCount = c.suspendedCount,
                                 .alert = c.alert,
                                 .budgetFraction = c.budget,
                                 .idleTether = c.idleTether};
        const MenuBar menuBar = MenuPresentation::menuBar(state, now);
        EXPECT_EQ(menuBar.title, c.expected.title);
        EXPECT_EQ(menuBar.symbol, c.expected.symbol);
    }
}

TEST(MenuPresentation, budgetText)
{
    struct Case {
        const char* name;
        double fraction;
        const char* title;
    };
    constexpr Case cases[] = {
        {"nothing", 0.0, "0%"},
        {"next to nothing", 0.004, "0%"},
        {"halves go away from zero", 0.125, "13%"},
        {"above an even number too", 0.625, "63%"},
        {"half a percent", 0.005, "1%"},
        {"below a half", 0.124, "12%"},
        {"nearly all", 0.994, "99%"},
        {"what rounds to all", 0.995, "100%"},
        {"all", 1.0, "100%"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MenuBarState state{.isRunning = true, .isMetered = true, .alert = {}, .budgetFraction = c.fraction};
        EXPECT_EQ(MenuPresentation::menuBar(state, now).title, c.title);
    }
    const MenuBarState broken{.isRunning = true, .isMetered = true, .alert = {}, .budgetFraction = std::nan("")};
    EXPECT_EXIT((void)MenuPresentation::menuBar(broken, now), testing::ExitedWithCode(70), "not finite");
}

TEST(MenuPresentation, titleNamesTheApplicationAsItIs)
{
    MenuBarState state{.isRunning = true, .isMetered = true, .alert = alert(0), .budgetFraction = {}};
    state.alert->app = "two\nlines";
    EXPECT_EQ(MenuPresentation::menuBar(state, now).title, "two\nlines 150.0 MB");
}

TEST(MenuPresentation, ratio)
{
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    struct Case {
        const char* name;
        std::uint64_t bytes, threshold;
        double ratio;
    };
    constexpr Case cases[] = {
        {"threshold 0", 500, 0, 0.0},
        {"nothing of nothing", 0, 0, 0.0},
        {"nothing", 0, 100, 0.0},
        {"a quarter", 25, 100, 0.25},
        {"all", 100, 100, 1.0},
        {"more than all", 101, 100, 1.0},
        {"the largest count", most, 1, 1.0},
        {"half of the largest threshold", most / 2, most, 0.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MenuPresentation::ratio(c.bytes, c.threshold), c.ratio);
    }
    EXPECT_EQ(MenuPresentation::level(MenuPresentation::ratio(500, 0)), Level::safe);
}

TEST(MenuPresentation, level)
{
    struct Case {
        const char* name;
        double ratio;
        Level level;
    };
    const Case cases[] = {
        {"nothing", 0.0, Level::safe},           {"just below a half", std::nextafter(0.5, 0.0), Level::safe},
        {"exactly a half", 0.5, Level::caution}, {"just below 0.85", std::nextafter(0.85, 0.0), Level::caution},
        {"exactly 0.85", 0.85, Level::danger},   {"all", 1.0, Level::danger},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MenuPresentation::level(c.ratio), c.level);
    }
}

TEST(MenuPresentation, levelTexts)
{
    ASSERT_EQ(MenuPresentation::levels.rows.size(), 3U);
    EXPECT_EQ(MenuPresentation::levels.raw(Level::safe), "safe");
    EXPECT_EQ(MenuPresentation::levels.raw(Level::caution), "caution");
    EXPECT_EQ(MenuPresentation::levels.raw(Level::danger), "danger");
    for (const auto& row : MenuPresentation::levels.rows) {
        EXPECT_EQ(MenuPresentation::levels.parse(row.raw), row.value);
    }
    EXPECT_EQ(MenuPresentation::levels.parse("Safe"), std::nullopt);
}

TEST(MenuPresentation, parseNameList)
{
    struct Case {
        const char* name;
        const char* text;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {"nothing", "", {}},
        {"commas and blanks", " ,, \t ,,  ", {}},
        {"one name", "Steam", {"Steam"}},
        {"blanks and tabs around", " \tSteam\t , zoom.us ", {"Steam", "zoom.us"}},
        {"blanks within stay", "Google Chrome,App  Store", {"Google Chrome", "App  Store"}},
        {"the order and repeated names stay", "b,a,b", {"b", "a", "b"}},
        {"empty pieces are dropped", ",a,,b,", {"a", "b"}},
        {"line ends are no blanks", "a\n,\nb", {"a\n", "\nb"}},
        {"a line end alone is a name", "\n", {"\n"}},
        {"other writing", "微信，钉钉,网易云音乐", {"微信，钉钉", "网易云音乐"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MenuPresentation::parseNameList(c.text), c.names);
    }
}

} // namespace
} // namespace quellon
