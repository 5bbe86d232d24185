#include "Canvas.h"
#include "PanelWorlds.h"
#include "Picture.h"
#include "World.h"

#include "QuellonUI/Debug/DebugPanel.h"

namespace quellon {

namespace {

/// The debug panel on a guard with isolated state, at this page.
QImage debugPanel(std::size_t page)
{
    const auto world = ordinaryWorld();
    DebugSnapshot snapshot = DebugSnapshot::capture(world->engine(), "1.2.0 (7)", "6.1.0", world->now());
    snapshot.isolation = DebugStateGuard::Isolation::isolated(DebugStateGuard::Isolation::Reason::explicitOverride);
    snapshot.files = {{"ledger.json", 1'400'000, world->now(), StateFileKind::known},
                      {"settings.json", 2'100, world->now(), StateFileKind::known},
                      {"settings.json.tmp", 2'100, world->now(), StateFileKind::temporary}};
    DebugPanelState state;
    state.page = page;
    state.outlines["settings.json"] = DebugPanelModel::outline(world->engine().settings().toJson().dump());
    DebugPanel panel;
    panel.setModel(DebugPanelModel::of(world->engine(), snapshot, {}, state));
    return Canvas::drawn(panel);
}

} // namespace

std::vector<Picture> debugPictures()
{
    constexpr std::size_t settingsFile = 4;
    return {{QStringLiteral("debug-snapshot"), [] { return debugPanel(0); }},
            {QStringLiteral("debug-file"), [] { return debugPanel(settingsFile); }}};
}

} // namespace quellon
