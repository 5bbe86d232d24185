#include "QuellonCore/Presentation/FirstPlace.h"

#include <algorithm>

namespace quellon::FirstPlace {

WindowPlaces::Place centred(std::int32_t width, std::int32_t height, const WindowPlaces::Area& area)
{
    const auto start = [](std::int32_t areaStart, std::int32_t room, std::int32_t length) {
        return areaStart + std::max(0, (room - length) / 2);
    };
    return {start(area.x, area.width, width), start(area.y, area.height, height + titleHeight)};
}

} // namespace quellon::FirstPlace
