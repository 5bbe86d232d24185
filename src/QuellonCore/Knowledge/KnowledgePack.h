#pragma once

#include "QuellonCore/Knowledge/AppExplanation.h"

#include <string_view>

namespace quellon {

/// What the program knows by itself about processes, by the label under which it counts them. The build makes it from
/// data/knowledge-pack.json. For people only: no rule and no protection reads it.
namespace KnowledgePack {

/// The rows. Built on first use, by whichever thread comes first, and never changed.
[[nodiscard]] const ExplanationMap& entries();

/// The SHA-256 of the document, 64 lower-case hexadecimal digits. Nothing that runs reads it.
extern const std::string_view sourceSHA256;
/// The day of the table, as yyyy-MM-dd; the document says it.
extern const std::string_view generatedAt;

} // namespace KnowledgePack

} // namespace quellon
