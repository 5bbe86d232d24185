#pragma once

#include "QuellonTerminal/TerminalLayout.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon::TerminalLayout {

/// The table of applications in at most `width` cells and `height` lines, its heading included. When not all rows fit,
/// the last line tells how many are missing; the selected one is not among these.
[[nodiscard]] std::vector<Line> usageTable(const OverviewModel& model, int width, int height,
                                           std::optional<std::size_t> selected = {});

/// Which of so many rows are shown in `room` lines.
struct Excerpt {
    std::size_t first = 0;
    std::size_t count = 0;
    std::size_t missing = 0; ///< What a line of its own tells; 0 for no such line.
    bool operator==(const Excerpt&) const = default;
};

/// The first rows, or those up to the selected one where that is further down. When not all fit and there is more than
/// one line, the last line is left free.
[[nodiscard]] Excerpt excerpt(std::size_t rows, std::size_t room, std::optional<std::size_t> selected);

/// "… 4 more".
[[nodiscard]] Line missingRows(std::size_t count, int width);

/// The cells that a column needs: those of its widest text, the heading included.
[[nodiscard]] int columnWidth(const OverviewModel& model, std::string_view heading,
                              std::string OverviewModel::Row::*text);

/// A bar of `width` cells that is filled to `share` (0 to 1, held within); a share above 0 shows at least half a cell.
[[nodiscard]] Line bar(double share, int width);

} // namespace quellon::TerminalLayout
