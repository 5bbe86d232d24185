#include "QuellonCore/Presentation/MenuPanelModel.h"

#include "QuellonCore/Presentation/EngineNotices.h"
#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PanelSymbols.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Endpoints.h"
#include "QuellonCore/Support/WebAddress.h"

#include <fmt/format.h>

#include <utility>

namespace quellon {

namespace {

using Kind = PanelAction::Kind;
using NoticeRow = MenuPanelModel::NoticeRow;

/// A button whose title says enough.
PanelButton button(std::string title, Kind kind, std::string target = {})
{
    std::string label = title;
    return {std::move(title), std::move(label), {kind, std::move(target)}};
}

Tint toneTint(MenuPresentation::Tone tone)
{
    switch (tone) {
    case MenuPresentation::Tone::off:
        return Tint::secondary;
    case MenuPresentation::Tone::standby:
        return Tint::orange;
    case MenuPresentation::Tone::active:
        break;
    }
    return Tint::green;
}

MenuPanelModel::Header header(const GuardEngine& engine)
{
    const bool isOn = engine.isRunning();
    const bool isMetered = engine.status().isMetered;
    const bool meteredOnly = engine.settings().meteredOnly;
    return {toneTint(MenuPresentation::tone(isOn, isMetered, meteredOnly)),
            MenuPresentation::statusTitle(isOn, isMetered, meteredOnly),
            plainText(engine.status().detail),
            isOn,
            {"", "Guard", {isOn ? Kind::stop : Kind::start, {}}}};
}

std::optional<NoticeRow> tetherHint(const GuardEngine& engine, bool showSteps)
{
    auto sentence = EngineNotices::tetherSentence(engine);
    if (!sentence) return std::nullopt;
    const Platform& platform = engine.host().platform;
    NoticeRow row{PanelSymbols::tether, Tint::primary, platform.tetherTitle, std::move(*sentence), {}, {}};
    if (showSteps) row.steps = platform.tetherSteps;
    row.buttons = {showSteps ? button("Open Network settings", Kind::openNetworkSettings)
                             : button("How to fix", Kind::showTetherSteps),
                   button("Don't show again", Kind::dismissTetherHint)};
    return row;
}

std::optional<NoticeRow> updateConsent(const GuardEngine& engine)
{
    if (!engine.showsUpdateConsentPrompt()) return std::nullopt;
    const auto address = WebAddress::parse(Endpoints::updates);
    return NoticeRow{
        PanelSymbols::updateConsent,
        Tint::primary,
        "Check for updates?",
        fmt::format("Once a day this app can ask {} whether a newer version exists. It sends only the version number "
                    "and your {} version — no account, no usage data, no app names.",
                    address ? address->host : std::string{Endpoints::updates}, engine.host().platform.name),
        {},
        {{"Yes, check daily", "Allow daily update checks", {Kind::allowUpdateChecks, {}}},
         {"No thanks", "Decline update checks", {Kind::declineUpdateChecks, {}}}}};
}

std::optional<NoticeRow> updateAvailable(const GuardEngine& engine)
{
    const auto& update = engine.availableUpdate();
    if (engine.showsUpdateConsentPrompt() || !update) return std::nullopt;
    return NoticeRow{PanelSymbols::updateAvailable,
                     Tint::blue,
                     fmt::format("Version {} is available", plainText(update->version)),
                     "You're running an older build.",
                     {},
                     {button("Open download page", Kind::openDownloadPage, update->downloadURL),
                      {"Later", "Dismiss update notice", {Kind::dismissUpdate, {}}}}};
}

} // namespace

std::vector<MenuPanelModel::Section> MenuPanelModel::sections() const
{
    const auto isShown = [this](Section section) {
        switch (section) {
        case Section::tetherHint:
            return tetherHint.has_value();
        case Section::updateConsent:
            return updateConsent.has_value();
        case Section::updateAvailable:
            return updateAvailable.has_value();
        case Section::budget:
            return budget.has_value();
        case Section::paused:
            return !paused.empty();
        case Section::header:
        case Section::usage:
        case Section::liveness:
        case Section::footer:
            break;
        }
        return true;
    };
    std::vector<Section> result;
    for (const auto& row : sectionTable.rows) {
        if (isShown(row.value)) result.push_back(row.value);
    }
    return result;
}

std::optional<MenuPanelModel::ProfileSwitcher>
MenuPanelModel::profileSwitcher(const GuardSettings& settings, const std::optional<BudgetStatus>& budget)
{
    if (!budget || settings.profiles.size() < 2) return std::nullopt;
    const PlanProfile& active = settings.activeProfile();
    ProfileSwitcher result{
        "Switch plan profile", PanelSymbols::profile, plainText(active.name), PanelSymbols::profileMenu, {}};
    for (const PlanProfile& each : settings.profiles) {
        result.items.push_back({button(plainText(each.name), Kind::selectProfile, each.id.text()),
                                each.id == active.id ? PanelSymbols::activeProfile : std::string_view{}});
    }
    return result;
}

MenuPanelModel MenuPanelModel::of(const GuardEngine& engine, Date now, const PanelState& state, const DateTexts& dates)
{
    MenuPanelModel model;
    model.header = quellon::header(engine);
    model.tetherHint = quellon::tetherHint(engine, state.showSteps);
    model.updateConsent = quellon::updateConsent(engine);
    model.updateAvailable = quellon::updateAvailable(engine);
    model.profiles = profileSwitcher(engine.settings(), engine.budgetStatus());
    if (const auto& status = engine.budgetStatus()) {
        model.budget = BudgetPresentation::row(*status, engine.dailyStatus(), engine.host().clock.calendar(), dates);
    }
    model.usage = UsageListModel::of(engine, now, state.expandedApp);
    model.resumeAll = button("Resume all", Kind::resumeAll);
    for (const SuspendedApp& each : engine.suspended()) {
        model.paused.push_back({plainText(each.app), button("Resume", Kind::resume, each.id())});
    }
    const GuardRule* rule = engine.settings().primaryRule();
    model.liveness = LivenessRowModel::of(engine.liveness(), windowLabel(engine.settings().primaryWindow()),
                                          rule != nullptr ? rule->thresholdBytes : 0, now);
    model.footer = {{"Settings…", "Open settings", {Kind::openSettings, {}}}, button("Quit Quellon", Kind::quit)};
    return model;
}

} // namespace quellon
