#pragma once

#include "QuellonCore/Diagnostics/ProcessMetrics.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// Seam: what the system says of processes, the program's own first of all.
class ProcessControl {
public:
    virtual ~ProcessControl() = default;

    /// The process id of this process.
    [[nodiscard]] virtual std::int32_t processID() const = 0;

    /// The file name of the program's executable, links resolved, such as "Quellon".
    [[nodiscard]] virtual std::string processName() const = 0;

    /// The value of an environment variable as it was at the start of the process; absent when not set.
    [[nodiscard]] virtual std::optional<std::string> environment(std::string_view name) const = 0;

    /// What this process weighs now; absent when the system does not tell.
    [[nodiscard]] virtual std::optional<ProcessMetrics> metrics() const = 0;

    /// Ends the process with this status at once, running no destructors of the main thread's stack.
    virtual void exit(int status) = 0;
};

} // namespace quellon
