#pragma once

#include "QuellonCore/Diagnostics/RedactedJSON.h"

#include <string>

/// A redacted tree as lines that people read.
namespace quellon::RedactedOutline {

/// One line for each value, indented by two blanks a level, each with a line end. What belongs to a field begins with
/// its key and a colon, what belongs to an array with its place, counted from 0:
///
///     4 fields
///       activeProfileID: 6F9619FF-8B86-4D01-B42D-00CF4FC964FF
///       appPolicies: 1 field
///         ‹other, 12 characters›: always
///       profiles: 2 items
///         [0]: 1 field
///           name: ‹other, 7 characters›
///         [1]: no fields
///       protectedExtra: no items
///
/// A text that was taken out is its kind and its length in ‹›, whether it was a value or a key. Numbers, true, false,
/// null and the texts that stay stand as they are, and "…" for what lies too deep to be shown.
[[nodiscard]] std::string text(const RedactedJSON& tree);

} // namespace quellon::RedactedOutline
