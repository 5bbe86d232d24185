#pragma once

/// The sizes that the parts of the panel share, in points.
namespace quellon::PanelLayout {

inline constexpr int width = 340;
inline constexpr int padding = 14;
inline constexpr int spacing = 12;   ///< Between sections and their dividers.
inline constexpr int rowSpacing = 6; ///< Between the rows of a list.
/// How far the grounds and rings of buttons reach beyond the text of the column, at most. Each part of the panel keeps
/// so much free at its sides.
inline constexpr int reach = 6;
inline constexpr int textSpacing = 4; ///< Between the pieces of a line.

} // namespace quellon::PanelLayout
