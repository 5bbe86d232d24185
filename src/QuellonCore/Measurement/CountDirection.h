#pragma once

#include "QuellonCore/Support/EnumTable.h"

namespace quellon {

/// Which bytes of a connection count.
enum class CountDirection { both, incoming, outgoing };

inline constexpr EnumTable<CountDirection, 3> countDirections{{{
    {CountDirection::both, "both", "Both directions"},
    {CountDirection::incoming, "incoming", "Download only"},
    {CountDirection::outgoing, "outgoing", "Upload only"},
}}};

constexpr const auto& enumTable(CountDirection /*type*/)
{
    return countDirections;
}

} // namespace quellon
