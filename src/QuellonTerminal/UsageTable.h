#pragma once

#include "QuellonTerminal/TerminalLayout.h"

#include <string>
#include <string_view>
#include <vector>

namespace quellon::TerminalLayout {

/// The table of applications in at most `width` cells and `height` lines, its heading included. When not all rows fit,
/// the last line tells how many are missing.
[[nodiscard]] std::vector<Line> usageTable(const OverviewModel& model, int width, int height);

/// The cells that a column needs: those of its widest text, the heading included.
[[nodiscard]] int columnWidth(const OverviewModel& model, std::string_view heading,
                              std::string OverviewModel::Row::*text);

/// A bar of `width` cells that is filled to `share` (0 to 1, held within); a share above 0 shows at least half a cell.
[[nodiscard]] Line bar(double share, int width);

} // namespace quellon::TerminalLayout
