#pragma once

#include "QuellonCore/Presentation/TrayModel.h"

namespace quellon::testing {

/// A guard that watches, with some of the plan used.
inline TrayModel guardingModel()
{
    TrayModel model;
    model.menuBar = {"43%", "shield.lefthalf.filled"};
    model.tint = Tint::green;
    model.badge = "43%";
    model.accessibleText = "Quellon: Guarding · 43% of the plan used";
    model.toolTip = "wlan0 · hotspot\nThis month: 4.30 GB / 10.00 GB";
    model.items = {
        {"Open Quellon", TrayCommand::open},
        {"", {}, false, true},
        {"Guarding · 43% of the plan used", {}, false},
        {"Pause guarding", TrayCommand::startOrStop},
        {"Resume all", TrayCommand::resumeAll, false},
        {"", {}, false, true},
        {"Settings…", TrayCommand::settings},
        {"Quit Quellon", TrayCommand::quit},
    };
    return model;
}

/// The same with two applications paused.
inline TrayModel pausedModel()
{
    TrayModel model = guardingModel();
    model.menuBar = {"2", "pause.circle.fill"};
    model.tint = Tint::orange;
    model.badge = "2";
    model.accessibleText = "Quellon: Guarding · 2 paused";
    model.items[2].title = "Guarding · 2 paused";
    model.items[4].enabled = true;
    return model;
}

} // namespace quellon::testing
