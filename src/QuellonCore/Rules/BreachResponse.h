#pragma once

#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Rules/ActionLevel.h"

#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// What one breach leads to.
struct BreachResponse {
    enum class Kind {
        recordSilently, ///< The application is protected, and there is nothing to act on.
        enforce,        ///< Step in.
        notifyUser,     ///< Tell the user.
    };

    Kind kind = Kind::notifyUser;
    std::string reason; ///< Why the application is protected, for `recordSilently`; otherwise empty.

    [[nodiscard]] bool notifiesUser() const { return kind == Kind::notifyUser; }

    /// True: a breach counts, whatever it leads to.
    [[nodiscard]] bool countsAsTrigger() const { return true; }

    /// What a breach of this level leads to. `hasEnforceableTargets` tells that at least one process of the application
    /// may be touched; `protectedReason`, why another may not.
    [[nodiscard]] static BreachResponse decide(ActionLevel level, EnforcementAction action, bool hasEnforceableTargets,
                                               std::optional<std::string_view> protectedReason);

    bool operator==(const BreachResponse&) const = default;
};

} // namespace quellon
