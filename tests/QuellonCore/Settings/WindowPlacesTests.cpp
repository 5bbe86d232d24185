#include "QuellonCore/Settings/WindowPlaces.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(WindowPlaces, codec)
{
    struct Case {
        const char* name;
        const char* text;
        std::optional<WindowPlaces> value;
    };
    const Case cases[] = {
        {"never moved", "{}", WindowPlaces{}},
        {"null is missing", R"({"settings":null})", WindowPlaces{}},
        {"moved", R"({"settings":{"x":-1200,"y":40}})", WindowPlaces{WindowPlaces::Place{-1200, 40}}},
        {"half a place", R"({"settings":{"x":5}})", std::nullopt},
        {"a fraction", R"({"settings":{"x":5.5,"y":1}})", std::nullopt},
        {"beyond its field", R"({"settings":{"x":2147483648,"y":1}})", std::nullopt},
        {"a list", "[]", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto value = decodeJson<WindowPlaces>(c.text);
        EXPECT_EQ(value, c.value);
        if (!value) continue;
        EXPECT_EQ(decodeJson<WindowPlaces>(encodeJson(*value).value_or("")), value) << "round trip";
    }
}

TEST(WindowPlaces, isWithin)
{
    constexpr WindowPlaces::Area area{100, 20, 800, 600};
    struct Case {
        const char* name;
        WindowPlaces::Place place;
        bool isWithin;
    };
    const Case cases[] = {
        {"in the corner", {100, 20}, true},
        {"left of it", {99, 20}, false},
        {"above it: the title could not be grabbed", {100, 19}, false},
        {"just enough at the right", {836, 20}, true},
        {"a point too far right", {837, 20}, false},
        {"just enough below", {100, 556}, true},
        {"a point too far down", {100, 557}, false},
        {"on a screen that is gone", {4000, 300}, false},
        {"at the end of the numbers", {2147483647, 2147483647}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(WindowPlaces::isWithin(c.place, area), c.isWithin);
    }
}

TEST(WindowPlaces, centred)
{
    constexpr auto title = WindowPlaces::titleHeight;
    struct Case {
        const char* name;
        std::int32_t width;
        std::int32_t height;
        WindowPlaces::Area area;
        WindowPlaces::Place place;
    };
    constexpr Case cases[] = {
        {"with its title bar", 400, 300 - title, {100, 20, 800, 600}, {300, 170}},
        {"an odd point stays on the right", 401, 301 - title, {0, 0, 800, 600}, {199, 149}},
        {"just fits", 800, 600 - title, {100, 20, 800, 600}, {100, 20}},
        {"the title never lies above", 400, 600, {100, 20, 800, 600}, {300, 20}},
        {"nor left of it", 1000, 300 - title, {100, 20, 800, 600}, {100, 170}},
        {"on a screen to the left", 400, 300 - title, {-1920, -40, 800, 600}, {-1720, 110}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(WindowPlaces::centred(c.width, c.height, c.area), c.place);
    }
}

} // namespace
} // namespace quellon
