#include "QuellonTerminal/UsageTable.h"

#include "QuellonTerminal/CellText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quellon::TerminalLayout {

namespace {

using CellText::Align;

constexpr int gap = 2;
constexpr int leastName = 12;
constexpr int comfortableName = 20;
constexpr int widestName = 40;
constexpr int leastBar = 8;
constexpr int widestBar = 32;

/// The widths of the columns; 0 for a column that is left out.
struct Columns {
    int name = 0;
    int bytes = 0;
    int lastMinute = 0;
    int share = 0;
    int bar = 0;
};

/// Gives the name what the other columns leave, and leaves out columns until that is enough.
Columns columns(const OverviewModel& model, int width)
{
    Columns result;
    result.name = width;
    const auto add = [&result](int& column, int wanted, int nameKeeps) {
        if (result.name - gap - wanted < nameKeeps) return;
        column = wanted;
        result.name -= gap + wanted;
    };
    add(result.bytes, columnWidth(model, model.windowHeading, &OverviewModel::Row::bytes), 1);
    add(result.share, columnWidth(model, OverviewModel::shareHeading, &OverviewModel::Row::shareText), leastName);
    if (result.share != 0) {
        add(result.lastMinute, columnWidth(model, OverviewModel::lastMinuteHeading, &OverviewModel::Row::lastMinute),
            leastName);
    }
    const int spare = result.name - comfortableName - gap;
    if (result.lastMinute != 0 && spare >= leastBar) {
        add(result.bar, std::clamp(spare * 2 / 3, leastBar, widestBar), comfortableName);
    }
    result.name = std::min(result.name, widestName);
    return result;
}

void addCell(Line& line, std::string_view text, int width, Style style)
{
    if (width == 0) return;
    line.push_back({std::string(gap, ' ') + CellText::fill(text, width, Align::right), style});
}

Line heading(const OverviewModel& model, const Columns& columns)
{
    Line line{{CellText::fill("app", columns.name), Style::faint}};
    addCell(line, model.windowHeading, columns.bytes, Style::faint);
    addCell(line, OverviewModel::lastMinuteHeading, columns.lastMinute, Style::faint);
    addCell(line, OverviewModel::shareHeading, columns.share, Style::faint);
    return line;
}

Line tableRow(const OverviewModel::Row& row, const Columns& columns, bool selected)
{
    Line line{{CellText::fill(row.app, columns.name), selected ? Style::selected : Style::plain}};
    addCell(line, row.bytes, columns.bytes, Style::strong);
    addCell(line, row.lastMinute, columns.lastMinute, Style::plain);
    addCell(line, row.shareText, columns.share, Style::faint);
    if (columns.bar != 0) {
        line.push_back({std::string(gap, ' '), Style::plain});
        for (Span& each : bar(row.share, columns.bar)) line.push_back(std::move(each));
    }
    return line;
}

std::string repeated(std::string_view text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
}

} // namespace

int columnWidth(const OverviewModel& model, std::string_view heading, std::string OverviewModel::Row::*text)
{
    int result = CellText::width(heading);
    for (const auto& row : model.rows) result = std::max(result, CellText::width(row.*text));
    return result;
}

Line bar(double share, int width)
{
    if (width <= 0) return {};
    const double held = std::clamp(share, 0.0, 1.0);
    int halves = static_cast<int>(std::lround(held * width * 2));
    if (held > 0.0) halves = std::max(halves, 1);
    const int full = halves / 2;
    const int half = halves % 2;
    Line line;
    if (halves > 0) line.push_back({repeated("━", full) + repeated("╸", half), Style::bar});
    if (full + half < width) line.push_back({repeated("─", width - full - half), Style::faint});
    return line;
}

Excerpt excerpt(std::size_t rows, std::size_t room, std::optional<std::size_t> selected)
{
    Excerpt result;
    result.count = rows <= room ? rows : room - (room > 1 ? 1 : 0);
    if (result.count < rows && room > 1) result.missing = rows - result.count;
    if (selected && *selected < rows && *selected >= result.count) result.first = *selected + 1 - result.count;
    return result;
}

Line missingRows(std::size_t count, int width)
{
    return {{CellText::cut(fmt::format("… {} more", count), width), Style::faint}};
}

std::vector<Line> usageTable(const OverviewModel& model, int width, int height, std::optional<std::size_t> selected)
{
    std::vector<Line> result;
    if (height <= 0) return result;
    if (model.rows.empty()) {
        result.push_back({{CellText::cut(model.emptyText, width), Style::faint}});
        return result;
    }
    const Columns widths = columns(model, width);
    const bool hasHeading = height >= 3 || height > static_cast<int>(model.rows.size());
    if (hasHeading) result.push_back(heading(model, widths));
    const std::size_t room = static_cast<std::size_t>(height) - result.size();
    const Excerpt shown = excerpt(model.rows.size(), room, selected);
    for (std::size_t i = shown.first; i < shown.first + shown.count; ++i) {
        result.push_back(tableRow(model.rows[i], widths, selected == i));
    }
    if (shown.missing > 0) result.push_back(missingRows(shown.missing, width));
    return result;
}

} // namespace quellon::TerminalLayout
