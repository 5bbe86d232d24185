#include "QuellonCore/Presentation/DateTexts.h"

#include <cstddef>
#include <string_view>

namespace quellon {

std::string DateTexts::monthAndDay(const CalendarDay& day) const
{
    constexpr std::string_view monthPlace = "{month}";
    constexpr std::string_view dayPlace = "{day}";
    std::string result;
    std::string_view rest = pattern;
    while (!rest.empty()) {
        if (rest.starts_with(monthPlace)) {
            result += months[static_cast<std::size_t>(day.month - 1)];
            rest.remove_prefix(monthPlace.size());
        } else if (rest.starts_with(dayPlace)) {
            result += std::to_string(day.day);
            rest.remove_prefix(dayPlace.size());
        } else {
            result += rest.front();
            rest.remove_prefix(1);
        }
    }
    return result;
}

} // namespace quellon
