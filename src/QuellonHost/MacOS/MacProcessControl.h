#pragma once

#include "QuellonHost/Posix/PosixProcessControl.h"

namespace quellon {

/// The program's own process as the kernel tells it. Not run: written for macOS, never tried there.
class MacProcessControl final : public PosixProcessControl {
public:
    [[nodiscard]] std::string processName() const override;
    [[nodiscard]] std::optional<ProcessMetrics> metrics() const override;
};

} // namespace quellon
