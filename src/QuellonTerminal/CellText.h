#pragma once

#include <string>
#include <string_view>

/// Text measured in the cells of a terminal. The widths are those of the process's locale. What a terminal can't show
/// as cells never comes out of here: control characters and characters without a known width become "?", joiners,
/// variation selectors and other invisible signs are left out, so that a line is as wide as it is said to be.
namespace quellon::CellText {

enum class Align { left, right };

/// The cells that `text` takes.
[[nodiscard]] int width(std::string_view text);

/// `text` in at most `width` cells; what is cut off leaves a "…". Empty for a width of 0 or less.
[[nodiscard]] std::string cut(std::string_view text, int width);

/// `text` in exactly `width` cells: cut, or filled up with blanks. Empty for a width of 0 or less.
[[nodiscard]] std::string fill(std::string_view text, int width, Align align = Align::left);

} // namespace quellon::CellText
