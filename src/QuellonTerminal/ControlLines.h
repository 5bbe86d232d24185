#pragma once

#include "QuellonTerminal/TerminalLayout.h"

#include <vector>

namespace quellon::TerminalLayout {

/// `spans` one after the other in at most `width` cells.
[[nodiscard]] Line joined(const Line& spans, int width);

/// Where the plan stands, in at most `width` cells a line; nothing without a plan.
[[nodiscard]] std::vector<Line> budgetLines(const ControlsModel& model, int width);

/// What is paused, in at most `width` cells and `height` lines, its heading included where there is room.
[[nodiscard]] std::vector<Line> pausedLines(const ControlsModel& model, int width, int height);

/// The notifications, in at most `width` cells and `height` lines. The answers come last, with their keys before them;
/// in a single line they stand behind the title. Nothing for a height of 0 or less.
[[nodiscard]] std::vector<Line> noticeLines(const ControlsModel& model, int width, int height);

/// What stands in the menu bar, with a sign for its symbol; empty where that says no more than the state's title.
[[nodiscard]] std::string menuBarText(const ControlsModel& model, const std::string& stateTitle);

/// The keys that have an effect, as many as fit.
[[nodiscard]] Line helpLine(const ControlsModel& model, int width);

} // namespace quellon::TerminalLayout
