#pragma once

namespace quellon {

/// Tells assistive programs what the parts of the settings window are that the toolkit has no word for: tabs, their
/// list, and sheets. Once for the process; again does nothing.
void installSettingsAccessibility();

} // namespace quellon
