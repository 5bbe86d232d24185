#pragma once

#include "World.h"

#include <functional>
#include <memory>
#include <vector>

namespace quellon {

/// The panel at one moment.
struct PanelMoment {
    const char* name;
    std::function<MenuPanelModel()> model;
};

/// A world of an ordinary afternoon: several applications, two of them frozen, a plan well used, two plans.
[[nodiscard]] std::unique_ptr<World> ordinaryWorld();

/// The panel in all states that look different.
[[nodiscard]] std::vector<PanelMoment> panelMoments();

} // namespace quellon
