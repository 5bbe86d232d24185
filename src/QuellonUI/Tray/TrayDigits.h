#pragma once

#include <QPainterPath>

#include <string_view>

namespace quellon {

/// A number, with or without "%", as a shape of its own drawing: for a picture that would otherwise load the fonts, by
/// far the largest part of what an item in the tray needs. Other characters are left out. The baseline is at y = 0,
/// the shape begins at x = 0, and digits are 12 high.
[[nodiscard]] QPainterPath trayDigits(std::string_view text);

} // namespace quellon
