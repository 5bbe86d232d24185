#pragma once

#include "QuellonCore/Diagnostics/RedactedJSON.h"
#include "QuellonCore/Support/Json.h"

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <variant>

/// Reduces a state file to its bare shape, which may be shown to somebody else: the structure stays, and numbers, and
/// texts that the program itself chose, identifiers and dates. Everything else leaves its length and kind.
namespace quellon::StoreRedaction {

using Texts = std::set<std::string, std::less<>>;

/// How many levels are kept. The value itself is the first.
inline constexpr int maximumDepth = 12;
/// How many values a text may hold. The largest honest file, a day of samples every 5 seconds, has about two million.
inline constexpr std::size_t mostValues = 4'000'000;

/// The keys of all state files.
[[nodiscard]] const Texts& structuralKeys();

/// The raw texts of the enumerations that occur as values in state files. One of them stays readable wherever it
/// stands, in a free text too.
[[nodiscard]] const Texts& allowedValues();

/// The value's shape. `depth` is how far down it stands; at `maximumDepth` all is cut. A number is its text as JSON. A
/// value that JSON itself does not know is a redacted text of no characters.
[[nodiscard]] RedactedJSON redact(const Json& value, int depth = 0);

/// Why a text has no shape to show.
enum class Refusal {
    notJson,
    nestsTooDeep,  ///< Deeper than the program reads anything: `maximumJsonDepth`.
    tooManyValues, ///< More than `mostValues`.
};

/// The shape of the value that a JSON text holds; of duplicate keys of an object the last one holds. Numbers have the
/// text that they have in the file, apart from a whole zero's minus.
[[nodiscard]] std::variant<RedactedJSON, Refusal> redactText(std::string_view text);

/// The refusal in words that go on after the name of a file: "is not a JSON text".
[[nodiscard]] std::string_view words(Refusal refusal);

/// A text as a value: it stays when it is one of `allowedValues`, an identifier or a date; otherwise it is taken out.
[[nodiscard]] RedactedJSON redactValue(std::string_view text);

/// What kind of text it is. An identifier is what `UUID` reads. A timestamp is a moment by RFC 3339 ("T" and "Z" in
/// upper case) without a fraction of the second, on a day that exists, or three numbers with hyphens between them that
/// have 10 characters together, four of them in the first number; digits of any script do. A path begins with "/" or
/// "~/".
[[nodiscard]] RedactedString::Shape shape(std::string_view text);

} // namespace quellon::StoreRedaction
