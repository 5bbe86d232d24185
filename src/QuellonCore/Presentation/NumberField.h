#pragma once

#include "QuellonCore/Support/UUID.h"

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// A field in which a number is typed.
struct NumberField {
    enum class Kind {
        planSize,       ///< Of the active plan, in gigabytes: 0 to 100,000.
        startDay,       ///< Of its billing cycle, a whole day: 1 to 31.
        carrierReading, ///< What the carrier says was used, in gigabytes: 0 to 100,000. It has no number at first.
        ruleLimit,      ///< Of one rule, in megabytes: up to 102,400,000; a negative number counts as 0.
    };

    Kind kind = Kind::planSize;
    UUID rule; ///< Whose limit it is.

    auto operator<=>(const NumberField&) const = default;

    /// What was typed, as a number, or else why it is refused.
    struct Reading {
        std::optional<double> value;
        std::string refusal; ///< A sentence for the user; empty when there is a value.
        bool operator==(const Reading&) const = default;
    };

    /// Reads what was typed into a field of this kind. White space around it, a sign, and a point or comma before the
    /// decimals are allowed, and nothing else: a comma that could as well stand between thousands ("1,500") is refused.
    /// What follows the sixth decimal is dropped.
    [[nodiscard]] static Reading read(Kind kind, std::string_view typed);

    /// A value as it stands in a field: at most three decimals and no zeros at their end. "0" for what is not finite.
    [[nodiscard]] static std::string text(double value);
};

} // namespace quellon
