#pragma once

#include "QuellonHost/Posix/PosixProcessControl.h"

#include <filesystem>
#include <string_view>

namespace quellon {

/// The program's own process as /proc tells it.
class LinuxProcessControl final : public PosixProcessControl {
public:
    /// Also while the program's file has been replaced by an update. Empty when /proc is not there.
    [[nodiscard]] std::string processName() const override;
    /// Resident memory and threads from `status`; the footprint is what `smaps_rollup` calls private, swapped-out
    /// memory included, or the resident memory where the kernel does not tell.
    [[nodiscard]] std::optional<ProcessMetrics> metrics() const override;

    /// Holds the process by a descriptor (Linux 5.3), which a later owner of the id never gets; by its number on an
    /// older kernel. When descriptors are short it is held by its number too, and takes SIGCONT only.
    [[nodiscard]] std::unique_ptr<ProcessReference> reference(std::int32_t pid) override;

    /// The same from the two texts. Absent when `status` lacks the resident memory or the threads.
    [[nodiscard]] static std::optional<ProcessMetrics> metrics(std::string_view status, std::string_view smapsRollup);
    /// The program's own file. Where an update has put another one in its place, that one; empty when /proc is not
    /// there.
    [[nodiscard]] static std::filesystem::path executable();
    /// The last component of what /proc/PID/exe links to, without the kernel's mark of a removed file.
    [[nodiscard]] static std::string processName(std::string_view executable);
};

} // namespace quellon
