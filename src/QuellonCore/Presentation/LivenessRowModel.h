#pragma once

#include "QuellonCore/Presentation/LivenessStats.h"
#include "QuellonCore/Presentation/Tint.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The line that shows that the guard works although it mostly does nothing.
struct LivenessRowModel {
    struct Text {
        std::string text;
        Tint tint = Tint::secondary;
        bool operator==(const Text&) const = default;
    };

    std::string_view symbol; ///< In the secondary colour, before the texts; may be empty.
    std::vector<Text> texts; ///< From left to right.

    /// The week's peak in the primary window beside the rule's limit; without a peak, how often the guard has reacted
    /// and how long it has guarded. Names are fit for a line (`plainText`).
    [[nodiscard]] static LivenessRowModel of(const LivenessStats& stats, std::string_view primaryWindowLabel,
                                             std::uint64_t primaryThreshold, Date now);

    bool operator==(const LivenessRowModel&) const = default;
};

} // namespace quellon
