#include "QuellonCore/Presentation/UsageListModel.h"

#include "QuellonCore/Presentation/AppActionPresentation.h"
#include "QuellonCore/Presentation/EngineNotices.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PanelSymbols.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Checked.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

using MenuPresentation::format;

Tint levelTint(MenuPresentation::Level level)
{
    switch (level) {
    case MenuPresentation::Level::safe:
        return Tint::green;
    case MenuPresentation::Level::caution:
        return Tint::yellow;
    case MenuPresentation::Level::danger:
        break;
    }
    return Tint::red;
}

UsageRowModel::Details details(const UsageRow& row, const std::string& name)
{
    constexpr std::string_view unknown = "Not in the knowledge pack yet — see Details for its activity.";
    return {row.explanation ? plainText(row.explanation->whatItIs) : std::string{unknown},
            row.actionLine,
            {"Details…", "Open details for " + name, {PanelAction::Kind::openDetails, row.item.app}}};
}

UsageRow rowOf(const GuardEngine& engine, const AppUsage& item, std::uint64_t threshold, Date now, bool isExpanded)
{
    UsageRow row{item, threshold, engine.chronic().contains(item.app), {}, isExpanded, {}, {}};
    const auto snooze = engine.snoozedUntil().find(item.app);
    if (snooze != engine.snoozedUntil().end()) row.snoozedUntil = snooze->second;
    if (!isExpanded) return row;
    row.explanation = engine.explanation(item.app);
    row.actionLine =
        AppActionPresentation::panelLine(engine.actionSummary(item.app, now), now, engine.host().clock.calendar());
    return row;
}

} // namespace

UsageRowModel UsageRowModel::of(const UsageRow& row, Date now)
{
    UsageRowModel model;
    model.name = plainText(row.item.app);
    model.toggle = {
        "", (row.isExpanded ? "Collapse " : "Explain ") + model.name, {PanelAction::Kind::toggleRow, row.item.app}};
    model.chevron = row.isExpanded ? PanelSymbols::expanded : PanelSymbols::collapsed;
    if (row.isChronic) {
        model.chronicBadge = "🐌";
        model.chronicHelp = "Slow but steady — high usage over the long window";
    }
    if (row.snoozedUntil) {
        constexpr Seconds minute{60.0};
        model.snooze = fmt::format("zzz {}m", nearestWhole((*row.snoozedUntil - now) / minute));
    }
    model.amount = format(row.item.bytes);
    model.fraction = MenuPresentation::ratio(row.item.bytes, row.threshold);
    model.amountTint = model.fraction >= 1.0 ? Tint::red : Tint::secondary;
    model.barTint = levelTint(MenuPresentation::level(model.fraction));
    if (row.isExpanded) model.details = quellon::details(row, model.name);
    return model;
}

UsageListModel UsageListModel::of(const GuardEngine& engine, Date now, const std::optional<std::string>& expandedApp)
{
    const GuardRule* rule = engine.settings().primaryRule();
    UsageListModel model;
    model.title = fmt::format("Last {}", windowLabel(engine.settings().primaryWindow()));
    if (rule != nullptr) model.limit = fmt::format("limit {}", format(rule->thresholdBytes));
    model.warning = warningFor(engine.capabilities(), EngineNotices::sampleFailure(engine));
    if (model.warning) return model;
    if (engine.usage().empty()) {
        model.empty = EngineNotices::emptyText(engine);
        return model;
    }
    const auto threshold = rule != nullptr ? std::optional{rule->thresholdBytes} : std::nullopt;
    Selection selection = select(engine.usage(), visibleUsageFloor(threshold));
    for (const AppUsage& each : selection.rows) {
        const UsageRow row = rowOf(engine, each, threshold.value_or(0), now, each.app == expandedApp);
        model.rows.push_back(UsageRowModel::of(row, now));
    }
    model.hiddenUsage = std::move(selection.hiddenUsageLine);
    return model;
}

std::optional<std::string> UsageListModel::warningFor(const Capabilities& capabilities,
                                                      std::optional<Date> sampleFailure)
{
    if (const auto reason = capabilities.samplingBlockedReason()) return std::string{*reason};
    if (!sampleFailure) return std::nullopt;
    return "Couldn't read per-app traffic just now — retrying";
}

std::uint64_t UsageListModel::visibleUsageFloor(std::optional<std::uint64_t> threshold)
{
    constexpr std::uint64_t share = 20;
    return std::max(threshold.value_or(0) / share, leastVisible);
}

UsageListModel::Selection UsageListModel::select(const std::vector<AppUsage>& usage, std::uint64_t visibleUsageFloor)
{
    Selection result;
    std::uint64_t sum = 0;
    for (const AppUsage& each : usage) {
        if (each.bytes < visibleUsageFloor)
            sum = checkedAdd(sum, each.bytes);
        else if (result.rows.size() < mostRows)
            result.rows.push_back(each);
    }
    const std::size_t hidden = usage.size() - result.rows.size();
    if (hidden >= 1) result.hiddenUsageLine = fmt::format("{} more apps · {}", hidden, format(sum));
    return result;
}

} // namespace quellon
