#include "QuellonTerminal/PlainLines.h"

#include "QuellonCore/Presentation/ControlsModel.h"
#include "QuellonTerminal/CellText.h"
#include "QuellonTerminal/UsageTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace quellon {

namespace {

using CellText::Align;
constexpr std::string_view indent = "  ";
constexpr std::string_view appHeading = "app";
constexpr std::string_view noticeKind = "notice";

std::string eventLine(std::string_view clock, std::string_view kind, std::string_view message)
{
    return fmt::format("{} {}  {}\n", clock, CellText::fill(kind, 8), message);
}

std::string logLine(const OverviewModel::LogLine& line)
{
    return eventLine(line.time, guardEventKinds.label(line.kind), line.message);
}

std::string statusLine(const OverviewModel& model, std::string_view clock)
{
    std::string line = fmt::format("{} {}", clock, model.title);
    if (!model.detail.empty()) line += " · " + model.detail;
    if (model.counters) line += fmt::format(" · {} {}", model.interface, *model.counters);
    return line + "\n";
}

std::string table(const OverviewModel& model)
{
    if (model.rows.empty()) return fmt::format("{}{}\n", indent, model.emptyText);
    const int bytes = TerminalLayout::columnWidth(model, model.windowHeading, &OverviewModel::Row::bytes);
    const int minute =
        TerminalLayout::columnWidth(model, OverviewModel::lastMinuteHeading, &OverviewModel::Row::lastMinute);
    const int share = TerminalLayout::columnWidth(model, OverviewModel::shareHeading, &OverviewModel::Row::shareText);
    std::string result;
    const auto add = [&](std::string_view first, std::string_view second, std::string_view third,
                         std::string_view app) {
        result +=
            fmt::format("{0}{1}{0}{2}{0}{3}{0}{4}\n", indent, CellText::fill(first, bytes, Align::right),
                        CellText::fill(second, minute, Align::right), CellText::fill(third, share, Align::right), app);
    };
    add(model.windowHeading, OverviewModel::lastMinuteHeading, OverviewModel::shareHeading, appHeading);
    for (const auto& row : model.rows) add(row.bytes, row.lastMinute, row.shareText, row.app);
    return result;
}

} // namespace

std::string PlainLines::next(const OverviewModel& model, std::string_view clock, std::int64_t completedTicks)
{
    std::string result;
    const auto known =
        std::find_if(model.log.begin(), model.log.end(), [this](const auto& line) { return lastPrinted_ == line.id; });
    for (auto line = std::make_reverse_iterator(known); line != model.log.rend(); ++line) result += logLine(*line);
    if (!model.log.empty()) lastPrinted_ = model.log.front().id;
    result += std::exchange(notices_, {});
    if (completedTicks == ticksPrinted_) return result;
    ticksPrinted_ = completedTicks;
    result += statusLine(model, clock);
    if (model.warning) result += fmt::format("{}{}\n", indent, *model.warning);
    if (model.hint) result += fmt::format("{}{}\n", indent, *model.hint);
    return result + table(model);
}

void PlainLines::add(const NotificationPlan& plan, std::string_view clock)
{
    const auto notice = ControlsModel::Notice::of(plan);
    notices_ += eventLine(clock, noticeKind, notice.title);
    for (const std::string& line : notice.text) notices_ += fmt::format("{}{}\n", indent, line);
    std::string buttons;
    for (const auto& button : notice.buttons) buttons += fmt::format(" [{}]", button.title);
    if (!buttons.empty()) notices_ += fmt::format(" {}\n", buttons);
}

} // namespace quellon
