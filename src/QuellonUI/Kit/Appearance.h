#pragma once

/// How the whole application looks. Main thread only.
namespace quellon::Appearance {

/// Sets the application's style, fonts and palette, light or dark. May be called again at any time; the windows follow.
void apply(bool dark);

/// The same without the fonts, for a program that may never have a window: they take some megabytes.
void applyColours(bool dark);
/// Sets the application's fonts; at the latest before the first window is made. Does nothing from the second time on.
void applyFonts();

} // namespace quellon::Appearance
