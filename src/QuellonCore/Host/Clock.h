#pragma once

#include "QuellonCore/Support/Time.h"

namespace quellon {

/// Seam: what time it is. May be asked from any thread.
class Clock {
public:
    virtual ~Clock() = default;
    /// The wall clock. It can jump in either direction.
    [[nodiscard]] virtual Date now() const = 0;
};

} // namespace quellon
