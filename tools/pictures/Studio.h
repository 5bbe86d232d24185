#pragma once

#include <QString>
#include <QStringList>

/// Where pictures are made: no display, and the same fonts on every machine.
namespace quellon::Studio {

/// The size of ordinary text, in points.
inline constexpr double textSize = 10.0;

/// Sets up this process for pictures at so many pixels a point. Before the application object is made.
void prepare(double scale);

/// Gives the application the fonts of the pictures.
void furnish();

/// The families among them that are not installed; without one the pictures are not what they should be. Once there is
/// an application object.
[[nodiscard]] QStringList missingFonts();

/// The application looks dark, or light, from now on.
void light(bool dark);

} // namespace quellon::Studio
