#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// How something is coloured. `primary` is the colour of ordinary text, `secondary` that of what matters less.
enum class Tint { primary, secondary, green, yellow, orange, red, blue };

inline constexpr EnumTable<Tint, 7> tints{{{
    {Tint::primary, "primary", "Primary"},
    {Tint::secondary, "secondary", "Secondary"},
    {Tint::green, "green", "Green"},
    {Tint::yellow, "yellow", "Yellow"},
    {Tint::orange, "orange", "Orange"},
    {Tint::red, "red", "Red"},
    {Tint::blue, "blue", "Blue"},
}}};

constexpr const auto& enumTable(Tint /*type*/)
{
    return tints;
}

} // namespace quellon
