#include "QuellonCore/Presentation/AppsTabModel.h"

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Presentation/SettingsSymbols.h"
#include "QuellonCore/Support/CaseFold.h"

#include <fmt/format.h>

namespace quellon {

namespace {

AppsTabModel::Row rowModel(const std::string& app, AppPolicy policy)
{
    AppsTabModel::Row row;
    row.app = plainText(app);
    row.details = FormControls::details(app);
    row.policy = FormControls::policy(app, policy);
    row.remove.accessibilityLabel = fmt::format("Remove {}", row.app);
    row.remove.action = SettingsActions::RemovePolicy{app};
    row.remove.symbol = SettingsSymbols::remove;
    return row;
}

AppPickerModel::Row candidate(const AppUsage& usage)
{
    AppPickerModel::Row row;
    row.app = plainText(usage.app);
    row.bytes = MenuPresentation::format(usage.bytes);
    row.details = FormControls::details(usage.app);
    row.block = {"Block", fmt::format("Always block {} on hotspot", row.app),
                 SettingsActions::PickPolicy{usage.app, AppPolicy::always}};
    row.never = {"Never limit", fmt::format("Never limit {}", row.app),
                 SettingsActions::PickPolicy{usage.app, AppPolicy::never}};
    return row;
}

} // namespace

AppPickerModel AppPickerModel::of(const GuardEngine& engine, const std::string& query)
{
    AppPickerModel model;
    model.filter = {"Filter", "Filter", query};
    model.cancel = {"Cancel", "Cancel", SettingsActions::ClosePicker{}};
    const std::string wanted = caseFolded(query);
    for (const AppUsage& each : engine.recentlySeenApps(mostCandidates)) {
        if (caseFolded(each.app).find(wanted) != std::string::npos) model.rows.push_back(candidate(each));
    }
    return model;
}

AppsTabModel AppsTabModel::of(const GuardEngine& engine, const SettingsState& state)
{
    AppsTabModel model;
    for (const AppPolicy policy : {AppPolicy::always, AppPolicy::never}) {
        for (const std::string& app : engine.settings().appPolicies.apps(policy)) {
            model.rows.push_back(rowModel(app, policy));
        }
    }
    if (model.rows.empty()) model.empty = Empty{SettingsSymbols::noApps};
    model.add = {"Add app…", "Add an app to the policy list", SettingsActions::OpenPicker{}};
    model.addDevTools = {"Add common dev tools", "Block common development tools on hotspot",
                         SettingsActions::AddDevTools{}};
    if (state.showingPicker) model.picker = AppPickerModel::of(engine, state.query);
    return model;
}

} // namespace quellon
