#pragma once

#include "QuellonCore/Presentation/ControlsModel.h"
#include "QuellonCore/Presentation/OverviewModel.h"

#include <string>
#include <vector>

/// Where things stand on a terminal's screen.
namespace quellon::TerminalLayout {

/// What a piece of text is. How that looks, with or without colours, is the screen's affair.
enum class Style { plain, strong, faint, good, waiting, bar, warning, enforced, selected };
inline constexpr int styleCount = 9;

struct Span {
    std::string text;
    Style style = Style::plain;
    bool operator==(const Span&) const = default;
};
using Line = std::vector<Span>;

/// The lines of a screen of `width` by `height` cells from the top: at most `height` lines of at most `width` cells,
/// free of control characters. As room gets scarce, first the bars go, then columns, the log, what explains a
/// notification, headings and the rows at the end; the state, a question with its answers, the paused applications and
/// the first or the selected rows stay. Nothing for a size of 0 or less.
[[nodiscard]] std::vector<Line> lines(const OverviewModel& model, const ControlsModel& controls, int width, int height);

} // namespace quellon::TerminalLayout
