#include "QuellonTerminal/TerminalLayout.h"

#include "QuellonTerminal/CellText.h"
#include "QuellonTerminal/UsageTable.h"

#include <algorithm>
#include <iterator>

namespace quellon::TerminalLayout {

namespace {

using MenuPresentation::Tone;

constexpr std::string_view footerText = "q quits";
/// Screens lower than this have no footer, and no log either.
constexpr int comfortableHeight = 12;
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

/// `spans` one after the other in at most `width` cells.
Line joined(const Line& spans, int width)
{
    Line result;
    for (const Span& each : spans) {
        std::string text = CellText::cut(each.text, width);
        width -= CellText::width(text);
        if (!text.empty()) result.push_back({std::move(text), each.style});
    }
    return result;
}

std::vector<Line> header(const OverviewModel& model, int width)
{
    std::vector<Line> result;
    result.push_back(joined({{"● ", toneStyle(model.tone)},
                             {model.title, Style::strong},
                             {"  ", Style::plain},
                             {model.detail, Style::plain}},
                            width));
    if (model.counters) {
        result.push_back(joined({{"  ", Style::plain},
                                 {model.interface, Style::faint},
                                 {"  ", Style::plain},
                                 {*model.counters, Style::plain}},
                                width));
    }
    if (model.warning) result.push_back(joined({{"! ", Style::warning}, {*model.warning, Style::plain}}, width));
    if (model.hint) result.push_back(joined({{"  ", Style::plain}, {*model.hint, Style::plain}}, width));
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

void append(std::vector<Line>& lines, std::vector<Line> more)
{
    lines.insert(lines.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

/// The table and the log in `height` lines. The log gives way to the table down to a third.
void appendBody(std::vector<Line>& lines, const OverviewModel& model, int width, int height)
{
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
    append(lines, usageTable(model, width, tableRoom));
    if (hasLog) append(lines, activity(model, width, logRoom));
}

} // namespace

std::vector<Line> lines(const OverviewModel& model, int width, int height)
{
    if (width <= 0 || height <= 0) return {};
    std::vector<Line> result = header(model, width);
    const int headerRoom = std::max(1, height - 2);
    if (static_cast<int>(result.size()) > headerRoom) result.resize(static_cast<std::size_t>(headerRoom));
    const int footer = height >= comfortableHeight ? 1 : 0;
    appendBody(result, model, width, height - footer - static_cast<int>(result.size()));
    if (footer == 1) {
        result.resize(static_cast<std::size_t>(height) - 1);
        result.push_back(joined({{std::string{footerText}, Style::faint}}, width));
    }
    return result;
}

} // namespace quellon::TerminalLayout
