#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// How much a notification asks of the user.
enum class NotificationStyle {
    transient,  ///< Quiet; goes by itself.
    persistent, ///< An answer is expected: with sound and a raised importance.
};

inline constexpr EnumTable<NotificationStyle, 2> notificationStyles{{{
    {NotificationStyle::transient, "transient", "Transient"},
    {NotificationStyle::persistent, "persistent", "Persistent"},
}}};

constexpr const auto& enumTable(NotificationStyle /*type*/)
{
    return notificationStyles;
}

} // namespace quellon
