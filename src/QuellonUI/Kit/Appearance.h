#pragma once

/// How the whole application looks. Main thread only.
namespace quellon::Appearance {

/// Sets the application's style, fonts and palette, light or dark. May be called again at any time; the windows follow.
void apply(bool dark);

} // namespace quellon::Appearance
