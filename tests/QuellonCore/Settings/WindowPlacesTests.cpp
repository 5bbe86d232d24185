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

} // namespace
} // namespace quellon
