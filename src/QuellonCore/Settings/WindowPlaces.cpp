#include "QuellonCore/Settings/WindowPlaces.h"

#include <utility>

namespace quellon {

std::optional<WindowPlaces::Place> WindowPlaces::Place::fromJson(const Json& json)
{
    JsonFields fields{json};
    Place place;
    fields.required("x", place.x);
    fields.required("y", place.y);
    return fields.result(std::move(place));
}

Json WindowPlaces::Place::toJson() const
{
    Json json = Json::object();
    putField(json, "x", x);
    putField(json, "y", y);
    return json;
}

bool WindowPlaces::isWithin(const Place& place, const Area& area)
{
    const auto fits = [](std::int64_t start, std::int64_t areaStart, std::int64_t length) {
        return start >= areaStart && start + grip <= areaStart + length;
    };
    return fits(place.x, area.x, area.width) && fits(place.y, area.y, area.height);
}

std::optional<WindowPlaces> WindowPlaces::fromJson(const Json& json)
{
    JsonFields fields{json};
    WindowPlaces places;
    fields.defaulted("settings", places.settings);
    return fields.result(std::move(places));
}

Json WindowPlaces::toJson() const
{
    Json json = Json::object();
    putField(json, "settings", settings);
    return json;
}

} // namespace quellon
