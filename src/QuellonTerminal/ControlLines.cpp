#include "QuellonTerminal/ControlLines.h"

#include "QuellonCore/Support/Text.h"
#include "QuellonTerminal/CellText.h"
#include "QuellonTerminal/Keys.h"
#include "QuellonTerminal/UsageTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace quellon::TerminalLayout {

namespace {

using BudgetPresentation::Tint;

constexpr std::string_view indent = "  ";
constexpr int widestName = 40;

Style tintStyle(Tint tint)
{
    switch (tint) {
    case Tint::secondary:
        return Style::faint;
    case Tint::primary:
    case Tint::green:
    case Tint::blue:
        break;
    case Tint::yellow:
    case Tint::orange:
        return Style::warning;
    case Tint::red:
        return Style::enforced;
    }
    return Style::plain;
}

Line paused(const ControlsModel::Paused& entry, int nameWidth, int width)
{
    return joined({{"‖ ", Style::warning},
                   {CellText::fill(entry.app, nameWidth), entry.selected ? Style::selected : Style::plain},
                   {std::string{indent}, Style::plain},
                   {entry.since, Style::faint}},
                  width);
}

/// `text` in lines of at most `width` cells, broken between words.
std::vector<std::string> wrapped(std::string_view text, int width)
{
    std::vector<std::string> result;
    std::string line;
    for (const std::string_view word : words(text)) {
        const bool fits = line.empty() || CellText::width(line) + 1 + CellText::width(word) <= width;
        if (!fits) result.push_back(std::exchange(line, {}));
        if (!line.empty()) line += ' ';
        line += word;
    }
    if (!line.empty()) result.push_back(std::move(line));
    return result;
}

Line title(const ControlsModel::Notice& notice)
{
    const bool persistent = notice.style == NotificationStyle::persistent;
    return {{persistent ? "! " : "i ", persistent ? Style::warning : Style::faint}, {notice.title, Style::strong}};
}

/// Subtitle and body, in as many lines as they need.
std::vector<Line> text(const ControlsModel::Notice& notice, int width)
{
    std::vector<Line> result;
    const int room = width - CellText::width(indent);
    for (const std::string& each : notice.text) {
        for (std::string& line : wrapped(each, room)) {
            result.push_back(joined({{std::string{indent}, Style::plain}, {std::move(line), Style::plain}}, width));
        }
    }
    return result;
}

/// The answers, each with its key before it.
std::vector<Line> answers(const ControlsModel::Notice& notice)
{
    std::vector<Line> result;
    for (std::size_t i = 0; i < notice.buttons.size(); ++i) {
        const auto& button = notice.buttons[i];
        const Style style = button.destructive ? Style::enforced : Style::strong;
        result.push_back({{fmt::format("{}{} ", indent, i + 1), style}, {std::string{button.title}, Style::plain}});
    }
    return result;
}

int lineWidth(const Line& line)
{
    int result = 0;
    for (const Span& span : line) result += CellText::width(span.text);
    return result;
}

/// The pieces side by side, as many in each line as fit.
std::vector<Line> flowed(const std::vector<Line>& pieces, int room)
{
    std::vector<Line> result;
    Line line;
    for (const Line& piece : pieces) {
        if (!line.empty() && lineWidth(line) + lineWidth(piece) > room)
            result.push_back(joined(std::exchange(line, {}), room));
        line.insert(line.end(), piece.begin(), piece.end());
    }
    if (!line.empty()) result.push_back(joined(line, room));
    return result;
}

/// One notification, with its place among those that wait behind the title; what explains it goes first when there is
/// little room, then all but one line, in which the answers come before the place.
std::vector<Line> lines(const ControlsModel::Notice& notice, const std::string& place, int width, int height)
{
    const auto buttons = answers(notice);
    const Span placed{place.empty() ? "" : std::string{indent} + place, Style::faint};
    std::vector<Line> last = flowed(buttons, width);
    if (static_cast<int>(last.size()) >= height) {
        Line all = title(notice);
        for (const Line& each : buttons) all.insert(all.end(), each.begin(), each.end());
        all.push_back(placed);
        return {joined(all, width)};
    }
    Line first = joined(title(notice), std::max(1, width - CellText::width(placed.text)));
    first.push_back(placed);
    std::vector<Line> result{joined(first, width)};
    auto explained = text(notice, width);
    const std::size_t room = static_cast<std::size_t>(height) - 1 - last.size();
    if (explained.size() > room) explained.resize(room);
    std::move(explained.begin(), explained.end(), std::back_inserter(result));
    std::move(last.begin(), last.end(), std::back_inserter(result));
    return result;
}

} // namespace

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

std::vector<Line> budgetLines(const ControlsModel& model, int width)
{
    if (!model.budget) return {};
    const auto& budget = *model.budget;
    const int title =
        std::max(CellText::width(BudgetPresentation::monthTitle), CellText::width(BudgetPresentation::todayTitle));
    const auto line = [&](std::string_view name, const std::string& amounts, Style style, const std::string& rest) {
        return Line{{fmt::format("{}{}{}", indent, CellText::fill(name, title), indent), Style::faint},
                    {amounts, style},
                    {rest.empty() ? "" : " · " + rest, Style::plain}};
    };
    Line month = line(BudgetPresentation::monthTitle, budget.amounts, tintStyle(budget.tint), budget.rest);
    if (budget.runsOut) month.push_back({" · " + *budget.runsOut, Style::enforced});
    std::vector<Line> result{joined(month, width)};
    if (const auto& today = budget.today) {
        result.push_back(
            joined(line(BudgetPresentation::todayTitle, today->amounts, tintStyle(today->tint), today->rest), width));
    }
    if (budget.gaps) result.push_back(joined({{std::string{indent} + *budget.gaps, Style::warning}}, width));
    return result;
}

std::vector<Line> pausedLines(const ControlsModel& model, int width, int height)
{
    std::vector<Line> result;
    if (model.paused.empty() || height <= 0) return result;
    if (height >= 3 || height > static_cast<int>(model.paused.size())) {
        result.push_back(joined({{std::string{ControlsModel::pausedHeading}, Style::faint}}, width));
    }
    int name = 1;
    for (const auto& entry : model.paused) name = std::max(name, CellText::width(entry.app));
    name = std::min({name, widestName, std::max(1, width - 2)});
    const auto selected =
        std::find_if(model.paused.begin(), model.paused.end(), [](const auto& entry) { return entry.selected; });
    const auto place = static_cast<std::size_t>(selected - model.paused.begin());
    const Excerpt shown = excerpt(model.paused.size(), static_cast<std::size_t>(height) - result.size(), place);
    for (std::size_t i = shown.first; i < shown.first + shown.count; ++i) {
        result.push_back(paused(model.paused[i], name, width));
    }
    if (shown.missing > 0) result.push_back(missingRows(shown.missing, width));
    return result;
}

std::vector<Line> noticeLines(const ControlsModel& model, int width, int height)
{
    if (height <= 0) return {};
    std::vector<Line> result;
    if (model.question) result = lines(*model.question, model.questionPlace, width, height);
    const int left = height - static_cast<int>(result.size());
    if (model.note && left > 0) {
        auto note = lines(*model.note, {}, width, left);
        result.insert(result.begin(), std::make_move_iterator(note.begin()), std::make_move_iterator(note.end()));
    }
    return result;
}

std::string menuBarText(const ControlsModel& model, const std::string& stateTitle)
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 3> signs{{
        {"pause.circle.fill", "‖ "},
        {"exclamationmark.shield.fill", "! "},
        {"shield.lefthalf.filled.badge.checkmark", "• "},
    }};
    if (model.menuBar.title.empty() || model.menuBar.title == stateTitle) return {};
    const auto sign =
        std::find_if(signs.begin(), signs.end(), [&](const auto& each) { return each.first == model.menuBar.symbol; });
    return (sign != signs.end() ? std::string{sign->second} : std::string{}) + model.menuBar.title;
}

Line helpLine(const ControlsModel& model, int width)
{
    std::string text = fmt::format("{} {}", KeyNames::quit, ControlsModel::quitEffect);
    for (const auto& offer : model.offers) {
        const std::string item = fmt::format("  {} {}", KeyNames::of(offer.command), offer.effect);
        if (CellText::width(text) + CellText::width(item) > width) break;
        text += item;
    }
    return joined({{text, Style::faint}}, width);
}

} // namespace quellon::TerminalLayout
