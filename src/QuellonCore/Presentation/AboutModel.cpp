#include "QuellonCore/Presentation/AboutModel.h"

#include "QuellonCore/Presentation/AboutInfo.h"

#include <fmt/format.h>

namespace quellon {

AboutModel AboutModel::of(const GuardEngine& engine, const Build& build, const SettingsState& state)
{
    const std::string& systemName = engine.host().platform.name;
    const AppEdition edition = engine.capabilities().edition;
    AboutModel model;
    model.name = displayName(edition);
    model.version = AboutInfo::displayVersion(build.shortVersion, build.build);
    model.links = {
        {{"Website", std::string{AboutInfo::website}}, {"Send feedback", AboutInfo::feedbackURL(model.version)}}};
    const std::string copyTitle = state.copied ? "Copied ✓" : "Copy diagnostics";
    model.copy = {copyTitle, copyTitle, SettingsActions::ShowCopied{true}};
    model.diagnostics = AboutInfo::diagnostics(edition, model.version, systemName, build.systemVersion,
                                               engine.status().isMetered, engine.isRunning());
    model.note = fmt::format("Paste it into your email — it only contains the app version, {} version and whether the "
                             "guard is on. No app names, no traffic data.",
                             systemName);
    if (state.startsAtLogin) {
        const bool isOn = *state.startsAtLogin;
        model.startAtLogin = {std::string{startTitle}, isOn, SettingsActions::SetStartAtLogin{!isOn}};
        model.startRefusal = state.startRefusal;
    }
    return model;
}

} // namespace quellon
