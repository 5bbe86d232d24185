#include "ReplayPanel.h"

#include <fmt/format.h>

#include <string>
#include <utility>

namespace quellon {

namespace {

using Section = MenuPanelModel::Section;

OrderedJson object(const PanelButton& button)
{
    OrderedJson result = OrderedJson::object();
    if (!button.title.empty()) result["title"] = button.title;
    if (button.accessibilityLabel != button.title) result["accessibilityLabel"] = button.accessibilityLabel;
    return result;
}

OrderedJson list(const std::vector<PanelButton>& buttons)
{
    OrderedJson result = OrderedJson::array();
    for (const PanelButton& each : buttons) result.push_back(object(each));
    return result;
}

OrderedJson tinted(std::string_view text, Tint tint)
{
    return {{"text", text}, {"tint", tints.raw(tint)}};
}

OrderedJson symbol(std::string_view name, Tint tint)
{
    return {{"name", name}, {"tint", tints.raw(tint)}};
}

void putText(OrderedJson& object, const char* key, std::string_view text)
{
    if (!text.empty()) object[key] = text;
}

OrderedJson object(const MenuPanelModel::Header& header)
{
    return {{"tint", tints.raw(header.tint)},
            {"title", header.title},
            {"detail", tinted(header.detail, MenuPanelModel::quietTint)},
            {"switch", {{"accessibilityLabel", header.toggle.accessibilityLabel}, {"isOn", header.isOn}}}};
}

OrderedJson object(const MenuPanelModel::NoticeRow& row)
{
    OrderedJson result = {{"symbol", symbol(row.symbol, row.symbolTint)}, {"title", row.title}, {"text", row.text}};
    if (row.steps) result["steps"] = *row.steps;
    result["buttons"] = list(row.buttons);
    return result;
}

OrderedJson object(const MenuPanelModel::ProfileSwitcher& profiles)
{
    OrderedJson items = OrderedJson::array();
    for (const auto& each : profiles.items) {
        OrderedJson item = object(each.button);
        putText(item, "symbol", each.symbol);
        items.push_back(std::move(item));
    }
    return {{"accessibilityLabel", profiles.accessibilityLabel},
            {"symbol", symbol(profiles.symbol, MenuPanelModel::quietTint)},
            {"name", tinted(profiles.name, MenuPanelModel::quietTint)},
            {"menuSymbol", symbol(profiles.menuSymbol, MenuPanelModel::quietTint)},
            {"items", std::move(items)}};
}

OrderedJson object(const BudgetPresentation::Row& row)
{
    OrderedJson result = {{"title", BudgetPresentation::monthTitle},
                          {"amounts", row.amounts},
                          {"bar", {{"fraction", row.fraction}, {"tint", tints.raw(row.tint)}}},
                          {"rest", tinted(row.rest, MenuPanelModel::quietTint)}};
    if (row.runsOut) result["runsOut"] = tinted(*row.runsOut, BudgetPresentation::runsOutTint);
    if (const auto& today = row.today) {
        OrderedJson& shown = result["today"] = {{"title", BudgetPresentation::todayTitle}, {"amounts", today->amounts}};
        if (!today->rest.empty()) shown["rest"] = fmt::format("{} {}", BudgetPresentation::separator, today->rest);
        shown["tint"] = tints.raw(today->tint);
    }
    if (row.gaps) result["gaps"] = tinted(*row.gaps, BudgetPresentation::gapsTint);
    return result;
}

OrderedJson object(const UsageRowModel& row)
{
    OrderedJson result = {
        {"accessibilityLabel", row.toggle.accessibilityLabel}, {"chevron", row.chevron}, {"name", row.name}};
    if (!row.chronicBadge.empty()) result["chronic"] = {{"text", row.chronicBadge}, {"help", row.chronicHelp}};
    putText(result, "snooze", row.snooze);
    result["amount"] = tinted(row.amount, row.amountTint);
    result["bar"] = {{"fraction", row.fraction}, {"tint", tints.raw(row.barTint)}};
    if (const auto& details = row.details) {
        OrderedJson& shown = result["details"] = {{"whatItIs", tinted(details->whatItIs, MenuPanelModel::quietTint)}};
        if (details->actionLine) shown["actionLine"] = *details->actionLine;
        shown["button"] = object(details->button);
    }
    return result;
}

OrderedJson object(const UsageListModel& list)
{
    OrderedJson result = {{"title", list.title}};
    if (list.limit) result["limit"] = tinted(*list.limit, MenuPanelModel::quietTint);
    if (list.warning) {
        result["warning"] = {{"symbol", symbol(MenuPanelModel::warningSymbol, MenuPanelModel::warningTint)},
                             {"text", *list.warning}};
        return result;
    }
    if (list.empty) {
        result["empty"] = *list.empty;
        return result;
    }
    OrderedJson& rows = result["rows"] = OrderedJson::array();
    for (const UsageRowModel& each : list.rows) rows.push_back(object(each));
    if (list.hiddenUsage) result["hiddenUsage"] = *list.hiddenUsage;
    return result;
}

OrderedJson pausedList(const MenuPanelModel& model)
{
    OrderedJson rows = OrderedJson::array();
    for (const auto& each : model.paused) {
        rows.push_back({{"symbol", symbol(MenuPanelModel::pausedSymbol, MenuPanelModel::pausedTint)},
                        {"name", each.name},
                        {"button", object(each.resume)}});
    }
    return {{"title", MenuPanelModel::pausedTitle}, {"button", object(model.resumeAll)}, {"rows", std::move(rows)}};
}

OrderedJson object(const LivenessRowModel& row)
{
    OrderedJson result = OrderedJson::object();
    if (!row.symbol.empty()) result["symbol"] = symbol(row.symbol, Tint::secondary);
    OrderedJson& texts = result["texts"] = OrderedJson::array();
    for (const auto& each : row.texts) texts.push_back(tinted(each.text, each.tint));
    return result;
}

/// The budget with the switcher above it.
OrderedJson plan(const MenuPanelModel& model)
{
    OrderedJson result = OrderedJson::object();
    if (model.profiles) result["profiles"] = object(*model.profiles);
    result.update(object(*model.budget));
    return result;
}

OrderedJson section(const MenuPanelModel& model, Section section)
{
    switch (section) {
    case Section::header:
        return object(model.header);
    case Section::tetherHint:
        return object(*model.tetherHint);
    case Section::updateConsent:
        return object(*model.updateConsent);
    case Section::updateAvailable:
        return object(*model.updateAvailable);
    case Section::budget:
        return plan(model);
    case Section::usage:
        return object(model.usage);
    case Section::paused:
        return pausedList(model);
    case Section::liveness:
        return object(model.liveness);
    case Section::footer:
        break;
    }
    return list(model.footer);
}

} // namespace

OrderedJson replayPanel(const MenuPanelModel& model)
{
    OrderedJson result = OrderedJson::object();
    for (const Section each : model.sections()) {
        result[std::string{MenuPanelModel::sectionTable.raw(each)}] = section(model, each);
    }
    return result;
}

} // namespace quellon
