#pragma once

#include "QuellonHost/Posix/PosixProcessControl.h"

#include <filesystem>

namespace quellon {

/// The program's own process as the kernel tells it. Not run: written for macOS, never tried there.
class MacProcessControl final : public PosixProcessControl {
public:
    [[nodiscard]] std::string processName() const override;
    [[nodiscard]] std::optional<ProcessMetrics> metrics() const override;

    /// The program's own file, links resolved.
    [[nodiscard]] static std::filesystem::path executable();
};

} // namespace quellon
