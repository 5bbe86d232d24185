#pragma once

#include "QuellonCore/Settings/WindowPlaces.h"

#include <cstdint>

/// Where windows stand that the user has not moved.
namespace quellon::FirstPlace {

/// What a title bar takes of the screen, in points, more or less: programs don't know it before the window is there.
inline constexpr std::int32_t titleHeight = 40;

/// For a window of this size, in points without its frame: the middle of `area`, together with its title bar. What is
/// larger than the area begins at its top left.
[[nodiscard]] WindowPlaces::Place centred(std::int32_t width, std::int32_t height, const WindowPlaces::Area& area);

} // namespace quellon::FirstPlace
