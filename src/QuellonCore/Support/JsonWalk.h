#pragma once

#include "QuellonCore/Support/Json.h"

#include <optional>
#include <string_view>

namespace quellon {

/// Why a JSON text is not read.
enum class JsonFault {
    notJson,      ///< Not to the letter of `parseJson`.
    nestsTooDeep, ///< Deeper than `maximumJsonDepth`.
};

/// Reads what `parseJson` reads, and tells `events` of each piece as it comes, in place of making a value; absent when
/// all was read. A number with a point or an exponent, or beyond 64 bits, comes with its text, in which the decimal
/// point is the one of the C locale in force. An object's keys come as they stand, repeated ones too. An event that
/// gives false ends the reading, with `notJson`.
[[nodiscard]] std::optional<JsonFault> walkJson(std::string_view text, nlohmann::json_sax<Json>& events);

} // namespace quellon
