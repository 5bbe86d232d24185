#pragma once

#include "QuellonCore/Support/Calendar.h"

#include <array>
#include <string>

namespace quellon {

/// How the user's language writes dates; English as it stands. A view that knows the system's language fills in others.
struct DateTexts {
    /// The abbreviated names of the months, January first.
    std::array<std::string, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    /// How month and day stand together; "{month}" and "{day}" are where they go: "{day}. {month}", "{month}{day}日".
    std::string pattern = "{month} {day}";

    /// The month and the day of the month: "Mar 20". What the pattern does not ask for is left out.
    [[nodiscard]] std::string monthAndDay(const CalendarDay& day) const;

    bool operator==(const DateTexts&) const = default;
};

} // namespace quellon
