#include "QuellonCore/Presentation/MenuPresentation.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace quellon {
namespace {

using MenuPresentation::Tone;

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

} // namespace
} // namespace quellon
