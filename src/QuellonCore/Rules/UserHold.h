#pragma once

#include "QuellonCore/Support/Time.h"

#include <optional>

/// Whether the user has put an application aside for the moment.
namespace quellon::UserHold {

/// True while the present transfer may finish, and before the end of a mute or a snooze. At the very moment that one
/// ends it no longer holds.
[[nodiscard]] inline bool isHeld(std::optional<Date> snoozedUntil, std::optional<Date> mutedUntil,
                                 bool allowedUntilTransferEnds, Date at)
{
    return allowedUntilTransferEnds || (mutedUntil && *mutedUntil > at) || (snoozedUntil && *snoozedUntil > at);
}

} // namespace quellon::UserHold
