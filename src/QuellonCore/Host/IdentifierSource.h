#pragma once

#include "QuellonCore/Support/UUID.h"

namespace quellon {

/// Seam: fresh identifiers. Main thread only.
class IdentifierSource {
public:
    virtual ~IdentifierSource() = default;

    /// An identifier that was never given before: random (version 4) in the real host, counted in the scripted one.
    [[nodiscard]] virtual UUID next() = 0;
};

} // namespace quellon
