#pragma once

namespace quellon::Accessibility {

/// Tells assistive programs what the toolkit has no word for: that our windows are windows and which menu is open in
/// them, what a choice is for beside what is chosen, which parts belong together, and that pieces of text are text.
/// Once for the process; again does nothing.
void install();

} // namespace quellon::Accessibility
