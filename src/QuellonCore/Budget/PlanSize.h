#pragma once

namespace quellon {

/// A plan's size in bytes, not yet whole. A gigabyte of a plan is 1024 × 1024 × 1024 bytes everywhere.
[[nodiscard]] constexpr double planBytes(double planGB)
{
    constexpr double bytesPerGigabyte = 1024.0 * 1024.0 * 1024.0;
    return planGB * bytesPerGigabyte;
}

} // namespace quellon
