#include "QuellonCore/Presentation/SettingsModel.h"

namespace quellon {

namespace {

SettingsModel::Page page(const GuardEngine& engine, const SettingsState& state, const AboutModel::Build& build)
{
    switch (state.tab) {
    case SettingsTab::plan:
        return PlanTabModel::of(engine, state);
    case SettingsTab::rules:
        return RulesTabModel::of(engine, state);
    case SettingsTab::apps:
        return AppsTabModel::of(engine, state);
    case SettingsTab::log:
        return LogTabModel::of(engine);
    case SettingsTab::about:
        break;
    }
    return AboutModel::of(engine, build, state);
}

} // namespace

SettingsModel SettingsModel::of(const GuardEngine& engine, const SettingsState& unsettled,
                                const AboutModel::Build& build, Date now)
{
    SettingsState state = unsettled;
    settle(engine, state);
    SettingsModel model;
    for (const auto& row : settingsTabs.rows) {
        Tab tab;
        tab.button = {std::string{row.label}, std::string{row.label}, SettingsActions::SelectTab{row.value},
                      std::string{symbol(row.value)}};
        tab.selected = row.value == state.tab;
        model.tabs.push_back(std::move(tab));
    }
    model.page = quellon::page(engine, state, build);
    if (const auto& app = engine.detailApp()) {
        model.detail = AppDetailModel::of(engine, *app, state.askingConsent == app, now);
    }
    return model;
}

} // namespace quellon
