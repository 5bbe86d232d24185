#pragma once

#include "QuellonCore/Settings/GuardSettings.h"
#include "ReplayFields.h"
#include "ReplaySession.h"

#include <functional>

/// The verbs of a script: each reads its line, changes nothing but the context, and gives what is to be done.
namespace quellon::ReplayVerbs {

using Action = std::function<void(ReplaySession&)>;

/// What a line needs to know of the lines before it.
struct Context {
    bool isFirst = true;    ///< No line came before.
    bool isRunning = false; ///< A run of the guard is going on.
};

// The world.
[[nodiscard]] Action world(ReplayFields& line, Context& context);
[[nodiscard]] Action tool(ReplayFields& line, Context& context);
[[nodiscard]] Action addresses(ReplayFields& line, Context& context);
[[nodiscard]] Action process(ReplayFields& line, Context& context);
[[nodiscard]] Action http(ReplayFields& line, Context& context);
[[nodiscard]] Action clock(ReplayFields& line, Context& context);

// What happens in it.
[[nodiscard]] Action launch(ReplayFields& line, Context& context);
[[nodiscard]] Action advance(ReplayFields& line, Context& context);
[[nodiscard]] Action call(ReplayFields& line, Context& context);
[[nodiscard]] Action settings(ReplayFields& line, Context& context);
[[nodiscard]] Action answer(ReplayFields& line, Context& context);
[[nodiscard]] Action quit(ReplayFields& line, Context& context);
[[nodiscard]] Action signal(ReplayFields& line, Context& context);
[[nodiscard]] Action crash(ReplayFields& line, Context& context);
[[nodiscard]] Action show(ReplayFields& line, Context& context);

/// Throws a `ReplayError` when no run is going on.
void requireRun(const Context& context);

/// Gives the settings these keys of the settings' file, read as strictly as from the file, those of the active plan to
/// the active plan; nothing else changes. Throws a `ReplayError` for an unknown key and for a value that the file could
/// not hold.
void assignSettings(const Json& keys, GuardSettings& settings, IdentifierSource& ids);

} // namespace quellon::ReplayVerbs
