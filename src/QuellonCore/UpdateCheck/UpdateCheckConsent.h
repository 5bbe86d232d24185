#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// What the user answered when asked whether a feature may use the network. Nothing moves back to `unasked` by itself.
enum class UpdateCheckConsent { unasked, granted, denied };

inline constexpr EnumTable<UpdateCheckConsent, 3> updateCheckConsents{{{
    {UpdateCheckConsent::unasked, "unasked", "Not asked yet"},
    {UpdateCheckConsent::granted, "granted", "Allowed"},
    {UpdateCheckConsent::denied, "denied", "Declined"},
}}};

constexpr const auto& enumTable(UpdateCheckConsent /*type*/)
{
    return updateCheckConsents;
}

} // namespace quellon
