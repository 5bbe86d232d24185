#pragma once

#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonCore/Presentation/AppDetailModel.h"
#include "QuellonCore/Presentation/AppsTabModel.h"
#include "QuellonCore/Presentation/LogTabModel.h"
#include "QuellonCore/Presentation/PlanTabModel.h"
#include "QuellonCore/Presentation/RulesTabModel.h"

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace quellon {

/// The settings window: its tabs, the page that is open, and the sheet with the details of one application.
struct SettingsModel {
    /// A tab. Its title, its symbol and what it does are those of the button.
    struct Tab {
        FormButton button;
        bool selected = false;
        bool operator==(const Tab&) const = default;
    };
    using Page = std::variant<PlanTabModel, RulesTabModel, AppsTabModel, LogTabModel, AboutModel>;

    static constexpr std::string_view windowTitle = "Quellon Settings";

    std::vector<Tab> tabs;
    Page page;
    std::optional<AppDetailModel> detail;

    [[nodiscard]] static SettingsModel of(const GuardEngine& engine, const SettingsState& state,
                                          const AboutModel::Build& build, Date now);

    bool operator==(const SettingsModel&) const = default;
};

/// Forgets what belongs to something that is no longer there: what was typed about a plan, and the question about its
/// rules, when another plan has become the active one, whoever did that; the question about lookups when the details of
/// its application are no longer open. For whoever keeps the state, whenever the engine tells of a change.
void settle(const GuardEngine& engine, SettingsState& state);

/// Carries out what a control did, at once; what is no longer there (a rule, a plan) is left alone. Main thread only.
/// True when the first-run window is done with and is to close.
bool perform(const SettingsAction& action, GuardEngine& engine, SettingsState& state);

} // namespace quellon
