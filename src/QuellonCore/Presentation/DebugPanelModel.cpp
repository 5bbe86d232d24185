#include "QuellonCore/Presentation/DebugPanelModel.h"

#include "QuellonCore/Diagnostics/DebugExport.h"
#include "QuellonCore/Diagnostics/RedactedOutline.h"
#include "QuellonCore/Diagnostics/StoreRedaction.h"
#include "QuellonCore/Notifications/NotificationComposer.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace quellon {

namespace {

/// The pages before those of the files.
constexpr std::array<std::string_view, 3> firstPages{"Snapshot", "Sampling", "Network log"};

/// The files that hold JSON of a known shape.
std::vector<std::string> stateFiles(const DebugSnapshot& snapshot)
{
    std::vector<std::string> names;
    for (const StateFileEntry& file : snapshot.files) {
        if (file.kind == StateFileKind::known || file.kind == StateFileKind::profileBudget) names.push_back(file.name);
    }
    return names;
}

std::string samplingText(const GuardEngine& engine, const DebugSnapshot& snapshot)
{
    const SamplingDiagnostics& sampling = snapshot.sampling;
    const auto time = [&engine](const std::optional<Date>& date) {
        return date ? engine.host().clock.calendar().clockTime(*date) : std::string{"—"};
    };
    return fmt::format(
        "verdict         {}\n"
        "interval        {:.1f}s\n"
        "last tick       {} · {}\n"
        "longest tick    {:.2f}s\n"
        "completed       {}\n"
        "skipped         {} · {:.1f}% · last {}\n"
        "last failure    {}",
        samplingVerdicts.label(sampling.verdict(Seconds{snapshot.sampleInterval})), snapshot.sampleInterval,
        sampling.lastDurationSeconds ? fmt::format("{:.2f}s", sampling.lastDurationSeconds->count()) : std::string{"—"},
        time(sampling.lastCompletedAt), sampling.maxDurationSeconds.count(), sampling.completedTicks,
        sampling.skippedTicks, sampling.skipRate() * 100, time(sampling.lastSkippedAt),
        time(engine.lastSampleFailureAt()));
}

std::string networkText(const GuardEngine& engine, const std::vector<NetworkLogEntry>& network)
{
    if (network.empty()) return "Nothing has been sent in this run.";
    std::string lines;
    for (const NetworkLogEntry& entry : network) {
        lines += fmt::format("{}  {} · {}  {}  {} bytes  {:.2f}s\n", engine.host().clock.calendar().clockTime(entry.at),
                             networkServices.raw(entry.service), networkActions.raw(entry.action),
                             entry.outcome.status ? fmt::format("status {}", *entry.outcome.status)
                                                  : std::string{"transport failure"},
                             entry.responseBytes, entry.durationSeconds.count());
    }
    lines.pop_back();
    return lines;
}

std::string pageText(const GuardEngine& engine, const DebugSnapshot& snapshot,
                     const std::vector<NetworkLogEntry>& network, const DebugPanelState& state, std::size_t page)
{
    switch (page) {
    case 0:
        return DebugExport::text(snapshot, engine.host().files.homeDirectory().native(), engine.host().platform);
    case 1:
        return samplingText(engine, snapshot);
    case 2:
        return networkText(engine, network);
    default:
        break;
    }
    const auto file = DebugPanelModel::file(snapshot, page);
    const auto outline = state.outlines.find(file.value_or(""));
    return outline == state.outlines.end() ? std::string{DebugPanelModel::readingText} : outline->second;
}

std::vector<DebugPanelModel::Button> commandButtons()
{
    static constexpr std::array<std::pair<DebugCommand, std::string_view>, 8> titles{{
        {DebugCommand::warn, "Test: warning"},
        {DebugCommand::warnOfSeveral, "Test: several at once"},
        {DebugCommand::tellOfPause, "Test: paused"},
        {DebugCommand::tellOfQuit, "Test: quit"},
        {DebugCommand::tellOfLoop, "Test: keeps coming back"},
        {DebugCommand::askAboutBlocked, "Test: blocked app"},
        {DebugCommand::failNextSample, "Fail the next sample"},
        {DebugCommand::shortenAutoResume, "Auto-resume after 10 s"},
    }};
    std::vector<DebugPanelModel::Button> buttons;
    for (const auto& [command, title] : titles) {
        buttons.push_back({std::string{title}, std::string{title}, DebugActions::Run{command}});
    }
    return buttons;
}

/// A breach by an application that does not exist.
RuleBreach breach(std::string app, const GuardEngine& engine)
{
    GuardRule rule;
    rule.id = engine.host().identifiers.next();
    constexpr std::uint64_t megabytes = 120;
    return {std::move(app), rule, megabytes * 1024 * 1024, {}};
}

NotificationPlan testPlan(DebugCommand command, const GuardEngine& engine)
{
    constexpr std::string_view name = "Quellon Test";
    constexpr std::size_t times = 3;
    const RuleBreach one = breach(std::string{name}, engine);
    const auto& budget = engine.budgetStatus();
    switch (command) {
    case DebugCommand::warn:
        return NotificationComposer::plan(one, budget);
    case DebugCommand::warnOfSeveral:
        return NotificationComposer::mergedPlan({one, breach("Quellon Test 2", engine)}, budget);
    case DebugCommand::tellOfPause:
        return NotificationComposer::enforcedPlan(name, one.bytes, one.rule.windowLabel(), EnforcementAction::suspend);
    case DebugCommand::tellOfQuit:
        return NotificationComposer::enforcedPlan(name, one.bytes, one.rule.windowLabel(),
                                                  EnforcementAction::terminate);
    case DebugCommand::tellOfLoop:
        return NotificationComposer::loopBreakerPlan(name, times, one.bytes, budget);
    case DebugCommand::askAboutBlocked:
        return NotificationComposer::blockedAppPlan(name, one.bytes, budget, false, 1);
    case DebugCommand::failNextSample:
    case DebugCommand::shortenAutoResume:
        break;
    }
    return {};
}

} // namespace

DebugPanelModel DebugPanelModel::of(const GuardEngine& engine, const DebugSnapshot& snapshot,
                                    const std::vector<NetworkLogEntry>& network, const DebugPanelState& state)
{
    DebugPanelModel model;
    for (const std::string_view title : firstPages) model.pages.push_back({std::string{title}});
    for (const std::string& name : stateFiles(snapshot)) model.pages.push_back({plainText(name)});
    model.page = std::min(state.page, model.pages.size() - 1);
    model.text = pageText(engine, snapshot, network, state, model.page);
    const std::string copyTitle = state.copied ? "Copied ✓" : "Copy";
    model.copy = {copyTitle, copyTitle, DebugActions::ShowCopied{true}};
    model.refresh = {"Refresh", "Refresh", DebugActions::Refresh{}};
    if (snapshot.isolation.allowsMutation()) {
        model.note = "Isolated state: the buttons below change it on purpose.";
        model.commands = commandButtons();
    } else {
        model.note = "This is your real state: it can be looked at here, not changed.";
    }
    return model;
}

std::optional<std::string> DebugPanelModel::file(const DebugSnapshot& snapshot, std::size_t page)
{
    const std::vector<std::string> names = stateFiles(snapshot);
    if (page < firstPages.size() || page - firstPages.size() >= names.size()) return std::nullopt;
    return names[page - firstPages.size()];
}

std::string DebugPanelModel::tooLargeText()
{
    return fmt::format("The file is larger than {}. “Quellon --redact FILE” shows its shape.",
                       MenuPresentation::format(largestFile));
}

std::string DebugPanelModel::outline(const std::optional<std::string>& content)
{
    if (!content) return "The file can't be read, or is too large.";
    if (content->size() > largestFile) return tooLargeText();
    const auto shape = StoreRedaction::redactText(*content);
    if (const auto* refusal = std::get_if<StoreRedaction::Refusal>(&shape))
        return fmt::format("The file {}.", StoreRedaction::words(*refusal));
    std::string text = RedactedOutline::text(std::get<RedactedJSON>(shape));
    std::size_t end = 0;
    for (std::size_t lines = 0; lines < mostLines && end < text.size(); ++lines) end = text.find('\n', end) + 1;
    const auto more = std::count(text.begin() + static_cast<std::ptrdiff_t>(end), text.end(), '\n');
    text.resize(end > 0 ? end - 1 : 0);
    if (more > 0) text += fmt::format("\n… and {} more lines", more);
    return text;
}

void perform(DebugCommand command, GuardEngine& engine, NotificationFeed& feed)
{
    const Persistence persistence{engine.host()};
    if (!DebugStateGuard::current(engine.host(), persistence).allowsMutation()) return;
    if (command == DebugCommand::failNextSample)
        engine.failNextSample();
    else if (command == DebugCommand::shortenAutoResume)
        engine.setAutoResumeSeconds(DebugPanelModel::shortAutoResume);
    else
        feed.deliver(testPlan(command, engine));
}

} // namespace quellon
