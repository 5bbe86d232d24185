#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "ReplayPrinter.h"

namespace quellon {

/// The menu panel section by section, from top to bottom: every text, tint and symbol that it shows. What is not shown
/// is left out. A button has its title, and what a screen reader says where that differs.
[[nodiscard]] OrderedJson replayPanel(const MenuPanelModel& model);

} // namespace quellon
