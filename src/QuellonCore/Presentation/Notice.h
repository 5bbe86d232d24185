#pragma once

#include "QuellonCore/Notifications/NotificationPlan.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// A notification as the program itself shows it, in words that are each fit for a line (`plainText`).
struct Notice {
    /// How long a transient notification stays.
    static constexpr Seconds transientTime{6.0};
    /// How many wait for the user at once; one more pushes the oldest out.
    static constexpr std::size_t mostWaiting = 3;
    /// How long something can't be answered once it has come to another's place: what the user presses in that moment
    /// was meant for what stood there before, or is the second half of a double click.
    static constexpr Seconds holdTime{0.5};

    /// An answer.
    struct Button {
        std::string_view title;
        bool destructive = false;
        bool operator==(const Button&) const = default;
    };

    NotificationStyle style = NotificationStyle::transient;
    std::string title;
    std::vector<std::string> text; ///< Subtitle and body, line by line, none of them empty.
    std::vector<Button> buttons;
    std::uint64_t serial = 0; ///< Which one it is: of the same presenter no other has it, whatever it says.

    [[nodiscard]] static Notice of(const NotificationPlan& plan, std::uint64_t serial = 0);

    bool operator==(const Notice&) const = default;
};

} // namespace quellon
