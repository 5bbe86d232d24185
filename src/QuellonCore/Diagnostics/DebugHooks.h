#pragma once

#include <functional>

namespace quellon {

class GuardEngine;

/// Where a build may attach what it has for diagnostics. Set once at the start of the program, if at all. Main thread
/// only.
namespace DebugHooks {

/// Opens a panel on the engine. Empty where there is none.
inline std::function<void(GuardEngine&)> openDebugPanel;
/// Asks the system anew whether notifications can be shown. Empty where nobody does.
inline std::function<void()> refreshNotificationCapability;

/// Opens the debug panel on the engine, if there is one.
inline void open(GuardEngine& engine)
{
    if (openDebugPanel) openDebugPanel(engine);
}

} // namespace DebugHooks

} // namespace quellon
