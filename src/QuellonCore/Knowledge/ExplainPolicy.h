#pragma once

#include "QuellonCore/UpdateCheck/UpdateCheckConsent.h"

namespace quellon::ExplainPolicy {

/// Whether to ask the lookup service for a name: only with the user's consent, and never for what is known already or
/// being asked for.
[[nodiscard]] constexpr bool shouldFetch(UpdateCheckConsent consent, bool hasPackEntry, bool hasCachedAnswer,
                                         bool inFlight)
{
    return consent == UpdateCheckConsent::granted && !hasPackEntry && !hasCachedAnswer && !inFlight;
}

} // namespace quellon::ExplainPolicy
