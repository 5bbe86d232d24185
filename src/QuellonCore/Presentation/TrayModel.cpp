#include "QuellonCore/Presentation/TrayModel.h"

#include "QuellonCore/Presentation/BudgetPresentation.h"
#include "QuellonCore/Presentation/EngineNotices.h"
#include "QuellonCore/Presentation/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

using Item = TrayModel::Item;
using MenuPresentation::AlertBadge;
using MenuPresentation::Tone;

Tone tone(const GuardEngine& engine)
{
    return MenuPresentation::tone(engine.isRunning(), engine.status().isMetered, engine.settings().meteredOnly);
}

/// Whether a warning has the title.
bool showsWarning(const GuardEngine& engine, Date now)
{
    const auto& alert = engine.lastAlert();
    return tone(engine) == Tone::active && engine.suspended().empty() && alert && alert->isActive(now);
}

bool isNumber(std::string_view title)
{
    constexpr std::size_t longest = 4;
    return !title.empty() && title.size() <= longest && title.front() >= '0' && title.front() <= '9';
}

Tint tint(const GuardEngine& engine, bool warns)
{
    const Tone state = tone(engine);
    if (state == Tone::off) return Tint::secondary;
    if (warns || !engine.suspended().empty()) return Tint::orange;
    return state == Tone::active ? Tint::green : Tint::secondary;
}

std::string warningText(const AlertBadge& alert)
{
    return fmt::format("{} {}", plainText(alert.app), MenuPresentation::format(alert.bytes));
}

/// The state, and what the title means.
std::string statusLine(const GuardEngine& engine, const TrayModel& model)
{
    const auto title =
        MenuPresentation::statusTitle(engine.isRunning(), engine.status().isMetered, engine.settings().meteredOnly);
    const Tone state = tone(engine);
    if (state == Tone::off) return std::string{title};
    if (const auto count = engine.suspended().size(); count > 0) return fmt::format("{} · {} paused", title, count);
    if (model.needsAttention) return fmt::format("{} · {}", title, model.menuBar.title);
    if (!model.badge.empty()) return fmt::format("{} · {} of the plan used", title, model.badge);
    return std::string{title};
}

std::string pausedLine(const std::vector<SuspendedApp>& paused)
{
    const std::size_t named = std::min(paused.size(), TrayModel::mostNames);
    std::string line = "Paused: ";
    for (std::size_t i = 0; i < named; ++i) line += fmt::format("{}{}", i == 0 ? "" : ", ", plainText(paused[i].app));
    if (paused.size() > named) line += fmt::format(" and {} more", paused.size() - named);
    return line;
}

void appendBudget(std::vector<std::string>& lines, const GuardEngine& engine)
{
    const auto& status = engine.budgetStatus();
    if (!status) return;
    namespace Budget = BudgetPresentation;
    const auto row = Budget::row(*status, engine.dailyStatus(), engine.host().clock.calendar());
    lines.push_back(fmt::format("{}: {} {} {}", Budget::monthTitle, row.amounts, Budget::separator, row.rest));
    if (row.runsOut) lines.back() += fmt::format(" {} {}", Budget::separator, *row.runsOut);
    if (!row.today) return;
    lines.push_back(fmt::format("{}: {}", Budget::todayTitle, row.today->amounts));
    if (!row.today->rest.empty()) lines.back() += fmt::format(" {} {}", Budget::separator, row.today->rest);
}

std::string toolTip(const GuardEngine& engine, bool warns)
{
    std::vector<std::string> lines;
    if (!engine.suspended().empty()) lines.push_back(pausedLine(engine.suspended()));
    const auto& alert = engine.lastAlert();
    if (alert && tone(engine) == Tone::active && (warns || alert->unread)) {
        lines.push_back(fmt::format("Warning: {}", warningText(*alert)));
    }
    if (!engine.status().detail.empty()) lines.push_back(plainText(engine.status().detail));
    if (auto tether = EngineNotices::tetherSentence(engine)) lines.push_back(std::move(*tether));
    appendBudget(lines, engine);
    return fmt::format("{}", fmt::join(lines, "\n"));
}

std::vector<Item> items(const GuardEngine& engine, std::string statusLine)
{
    const Item separator{"", {}, false, true};
    return {
        {"Open Quellon", TrayCommand::open},
        separator,
        {std::move(statusLine), {}, false},
        {engine.isRunning() ? "Pause guarding" : "Start guarding", TrayCommand::startOrStop},
        {"Resume all", TrayCommand::resumeAll, !engine.suspended().empty()},
        separator,
        {"Settings…", TrayCommand::settings},
        {"Quit Quellon", TrayCommand::quit},
    };
}

void call(const std::function<void()>& function)
{
    if (function) function();
}

} // namespace

void perform(TrayCommand command, GuardEngine& engine, const TrayDesktop& desktop)
{
    switch (command) {
    case TrayCommand::open:
        call(desktop.openPanel);
        return;
    case TrayCommand::startOrStop:
        if (engine.isRunning())
            engine.stop();
        else
            engine.start();
        return;
    case TrayCommand::resumeAll:
        if (!engine.suspended().empty()) engine.resumeAll(false);
        return;
    case TrayCommand::settings:
        call(desktop.openSettings);
        return;
    case TrayCommand::quit:
        call(desktop.quit);
        return;
    }
}

TrayModel TrayModel::of(const GuardEngine& engine, Date now)
{
    TrayModel model;
    model.menuBar = engine.menuBar(now);
    model.menuBar.title = plainText(model.menuBar.title);
    model.needsAttention = showsWarning(engine, now);
    model.tint = quellon::tint(engine, model.needsAttention);
    if (isNumber(model.menuBar.title)) model.badge = model.menuBar.title;
    std::string line = statusLine(engine, model);
    model.accessibleText = fmt::format("Quellon: {}", line);
    model.toolTip = quellon::toolTip(engine, model.needsAttention);
    model.items = quellon::items(engine, std::move(line));
    return model;
}

std::optional<Date> TrayModel::nextChange(const GuardEngine& engine, Date now)
{
    if (!showsWarning(engine, now)) return std::nullopt;
    return engine.lastAlert()->firedAt + AlertBadge::takeoverSeconds;
}

} // namespace quellon
