#pragma once

#include "QuellonCore/Settings/GuardSettings.h"
#include "ScriptedParts.h"

#include <optional>
#include <string_view>

namespace quellon {

/// The settings that a file with this text holds. New identifiers are the same in each call.
inline std::optional<GuardSettings> decodeSettings(std::string_view text)
{
    CountedIdentifiers ids;
    const auto json = parseJson(text);
    return json ? GuardSettings::fromJson(*json, ids) : std::nullopt;
}

} // namespace quellon
