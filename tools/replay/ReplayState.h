#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "ReplayPrinter.h"

namespace quellon {

/// All that an engine shows of itself, by the names of its fields. Absent values are left out, sets are sorted, dates
/// are texts in UTC with milliseconds.
[[nodiscard]] OrderedJson replayState(const GuardEngine& engine);

/// A moment as "2026-03-15T10:00:00.000Z", rounded to milliseconds. What lies beyond the years 1 to 9999 is held at
/// their edge.
[[nodiscard]] std::string isoText(Date date);

} // namespace quellon
