#pragma once

#include "QuellonCore/Support/Time.h"

#include <optional>

namespace quellon {

/// The rule of a hidden gesture: so many taps in quick succession.
namespace SecretTapGesture {

/// How many taps it takes.
inline constexpr int taps = 7;
/// A pause of this length, or longer, begins the series anew.
inline constexpr Seconds longestPause{2.0};

/// What a tap leads to.
struct Outcome {
    std::optional<int> count; ///< The taps of the series so far; absent for the one that completes it.

    [[nodiscard]] static constexpr Outcome counting(int count) { return {count}; }
    [[nodiscard]] static constexpr Outcome triggered() { return {std::nullopt}; }
    [[nodiscard]] constexpr bool isTriggered() const { return !count; }
    bool operator==(const Outcome&) const = default;
};

/// A tap `now`, after `count` taps of which the last was at `lastTapAt`. A clock that went back makes it a quick one.
[[nodiscard]] constexpr Outcome advance(int count, std::optional<Date> lastTapAt, Date now)
{
    if (!lastTapAt || now - *lastTapAt >= longestPause) return Outcome::counting(1);
    return count + 1 < taps ? Outcome::counting(count + 1) : Outcome::triggered();
}

} // namespace SecretTapGesture

/// The taps so far.
struct SecretTapCounter {
    int count = 0;
    std::optional<Date> lastTapAt;

    /// Counts a tap. True for the one that completes the series, after which it begins anew.
    bool registerTap(Date now)
    {
        const auto outcome = SecretTapGesture::advance(count, lastTapAt, now);
        *this = outcome.isTriggered() ? SecretTapCounter{} : SecretTapCounter{*outcome.count, now};
        return outcome.isTriggered();
    }

    bool operator==(const SecretTapCounter&) const = default;
};

} // namespace quellon
