#pragma once

#include <cstddef>

/// Bytes that this program has allocated with `new` and not yet given back.
[[nodiscard]] std::size_t liveHeapBytes();
