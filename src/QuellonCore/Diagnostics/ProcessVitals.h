#pragma once

#include "QuellonCore/Diagnostics/ProcessMetrics.h"
#include "QuellonCore/Host/Host.h"

#include <optional>

namespace quellon::ProcessVitals {

/// What the guard's own process weighs at this moment; absent when the system does not tell.
[[nodiscard]] std::optional<ProcessMetrics> current(const Host& host);

} // namespace quellon::ProcessVitals
