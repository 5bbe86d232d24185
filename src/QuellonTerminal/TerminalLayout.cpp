#include "QuellonTerminal/TerminalLayout.h"

#include "QuellonTerminal/CellText.h"
#include "QuellonTerminal/ControlLines.h"
#include "QuellonTerminal/UsageTable.h"

#include <algorithm>
#include <iterator>

namespace quellon::TerminalLayout {

namespace {

using MenuPresentation::Tone;

/// Screens lower than this have no footer, and no log either.
constexpr int comfortableHeight = 12;
/// The most that a lower screen gives to a notification.
constexpr int shortNotice = 2;
/// From this height on a table that is cut short has a blank line above it.
constexpr int comfortableTable = 6;
/// The least that is worth a log: a blank line, a heading and three entries.
constexpr int leastLog = 5;

Style toneStyle(Tone tone)
{
    switch (tone) {
    case Tone::off:
        return Style::faint;
    case Tone::standby:
        return Style::waiting;
    case Tone::active:
        break;
    }
    return Style::good;
}

void append(std::vector<Line>& lines, std::vector<Line> more)
{
    lines.insert(lines.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

/// The state, and at the right what the menu bar would show, where there is room for both.
Line stateLine(const OverviewModel& model, const ControlsModel& controls, int width)
{
    Line line = joined({{"● ", toneStyle(model.tone)},
                        {model.title, Style::strong},
                        {"  ", Style::plain},
                        {model.detail, Style::plain}},
                       width);
    for (const Span& span : line) width -= CellText::width(span.text);
    const std::string menuBar = menuBarText(controls, model.title);
    if (menuBar.empty() || width < CellText::width(menuBar) + 2) return line;
    line.push_back({CellText::fill(menuBar, width, CellText::Align::right), Style::strong});
    return line;
}

std::vector<Line> header(const OverviewModel& model, const ControlsModel& controls, int width)
{
    std::vector<Line> result{stateLine(model, controls, width)};
    if (model.counters) {
        result.push_back(joined({{"  ", Style::plain},
                                 {model.interface, Style::faint},
                                 {"  ", Style::plain},
                                 {*model.counters, Style::plain}},
                                width));
    }
    if (model.warning) result.push_back(joined({{"! ", Style::warning}, {*model.warning, Style::plain}}, width));
    if (model.hint) result.push_back(joined({{"  ", Style::plain}, {*model.hint, Style::plain}}, width));
    append(result, budgetLines(controls, width));
    return result;
}

Line logLine(const OverviewModel::LogLine& entry, int width)
{
    Span mark{"  ", Style::plain};
    if (entry.kind == GuardEvent::Kind::warning) mark = {"! ", Style::warning};
    if (entry.kind == GuardEvent::Kind::enforced) mark = {"■ ", Style::enforced};
    return joined({{entry.time, Style::faint}, {" ", Style::plain}, mark, {entry.message, Style::plain}}, width);
}

std::vector<Line> activity(const OverviewModel& model, int width, int height)
{
    std::vector<Line> result{Line{}, joined({{"activity", Style::faint}}, width)};
    for (const auto& entry : model.log) {
        if (static_cast<int>(result.size()) == height) break;
        result.push_back(logLine(entry, width));
    }
    return result;
}

/// What is paused, in at most a third of `height` lines, with a blank line above it where there is room.
std::vector<Line> pausedBlock(const ControlsModel& controls, int width, int height)
{
    std::vector<Line> result;
    int room = height > 3 ? height / 3 : std::min(1, height - 1);
    if (room >= 3 && !controls.paused.empty()) {
        result.emplace_back();
        --room;
    }
    append(result, pausedLines(controls, width, room));
    return result;
}

/// The table, what is paused and the log in `height` lines. The log gives way to the table down to a third.
void appendBody(std::vector<Line>& lines, const OverviewModel& model, const ControlsModel& controls, int width,
                int height)
{
    auto paused = pausedBlock(controls, width, height);
    height -= static_cast<int>(paused.size());
    const int tableWanted = 2 + std::max(1, static_cast<int>(model.rows.size()));
    const int logWanted = model.log.empty() ? 0 : 2 + static_cast<int>(model.log.size());
    const bool hasLog = height >= comfortableHeight - 2 && logWanted > 0;
    const int logKeeps = hasLog ? std::min(logWanted, std::max(leastLog, height / 3)) : 0;
    int tableRoom = std::min(tableWanted, height - logKeeps);
    const int logRoom = hasLog ? height - tableRoom : 0;
    if (tableRoom == tableWanted || tableRoom >= comfortableTable) {
        lines.emplace_back();
        --tableRoom;
    }
    append(lines, usageTable(model, width, tableRoom, controls.selectedRow));
    append(lines, std::move(paused));
    if (hasLog) append(lines, activity(model, width, logRoom));
}

/// The notifications with a blank line above them where there is room.
std::vector<Line> noticeBlock(const ControlsModel& controls, int width, int height)
{
    std::vector<Line> result;
    const bool comfortable = height >= comfortableHeight;
    append(result, noticeLines(controls, width, comfortable ? height / 3 : std::min(shortNotice, height / 2)));
    if (comfortable && !result.empty()) result.insert(result.begin(), Line{});
    return result;
}

} // namespace

std::vector<Line> lines(const OverviewModel& model, const ControlsModel& controls, int width, int height)
{
    if (width <= 0 || height <= 0) return {};
    const bool comfortable = height >= comfortableHeight;
    std::vector<Line> result = header(model, controls, width);
    const int headerRoom = std::max(1, height / 3);
    if (static_cast<int>(result.size()) > headerRoom) result.resize(static_cast<std::size_t>(headerRoom));

    const auto notices = noticeBlock(controls, width, height);
    const int footer = static_cast<int>(notices.size()) + (comfortable ? 1 : 0);
    appendBody(result, model, controls, width, height - static_cast<int>(result.size()) - footer);
    if (comfortable) result.resize(static_cast<std::size_t>(height - footer));
    append(result, notices);
    if (comfortable) result.push_back(helpLine(controls, width));
    return result;
}

} // namespace quellon::TerminalLayout
