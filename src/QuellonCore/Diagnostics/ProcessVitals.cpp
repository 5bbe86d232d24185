#include "QuellonCore/Diagnostics/ProcessVitals.h"

namespace quellon::ProcessVitals {

std::optional<ProcessMetrics> current(const Host& host)
{
    return host.processes.metrics();
}

} // namespace quellon::ProcessVitals
