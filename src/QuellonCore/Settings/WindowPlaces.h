#pragma once

#include "QuellonCore/Support/Json.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quellon {

/// Where the user has put the program's windows, in points from the top left of the screens. Kept for the next run.
struct WindowPlaces {
    struct Place {
        std::int32_t x = 0;
        std::int32_t y = 0;

        [[nodiscard]] static std::optional<Place> fromJson(const Json& json);
        [[nodiscard]] Json toJson() const;
        bool operator==(const Place&) const = default;
    };

    /// An area of a screen on which windows may stand.
    struct Area {
        std::int32_t x = 0;
        std::int32_t y = 0;
        std::int32_t width = 0;
        std::int32_t height = 0;
        bool operator==(const Area&) const = default;
    };

    std::optional<Place> settings; ///< Of the settings window; absent before it was moved.

    /// Whether a window whose frame has its top left corner here can be seen and grabbed: at least `grip` points of its
    /// title from the left, and as many below, lie on `area`.
    [[nodiscard]] static bool isWithin(const Place& place, const Area& area);
    static constexpr std::int32_t grip = 64;

    [[nodiscard]] static std::optional<WindowPlaces> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;
    bool operator==(const WindowPlaces&) const = default;
};

} // namespace quellon
