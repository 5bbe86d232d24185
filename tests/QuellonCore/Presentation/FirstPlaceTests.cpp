#include "QuellonCore/Presentation/FirstPlace.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(FirstPlace, centred)
{
    constexpr auto title = FirstPlace::titleHeight;
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
        EXPECT_EQ(FirstPlace::centred(c.width, c.height, c.area), c.place);
    }
}

} // namespace
} // namespace quellon
