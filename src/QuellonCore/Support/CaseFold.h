#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quellon {

/// `text` with full Unicode case folding (the statuses C and F of CaseFolding.txt), for comparing without regard to
/// case: "ß" and "ẞ" give "ss", "İ" an i with a dot above; no language has rules of its own. Nothing is normalised, so
/// composed and decomposed letters stay different. Bytes that are not UTF-8 stay as they are, the rest around them is
/// folded.
[[nodiscard]] std::string caseFolded(std::string_view text);

/// True when both texts fold to the same. Makes no text unless letters beyond ASCII decide.
[[nodiscard]] bool equalCaseFolded(std::string_view a, std::string_view b);

/// For unordered containers whose keys are compared without regard to case.
struct EqualCaseFolded {
    using is_transparent = void;
    [[nodiscard]] bool operator()(std::string_view a, std::string_view b) const { return equalCaseFolded(a, b); }
};
struct CaseFoldedHash {
    using is_transparent = void;
    [[nodiscard]] std::size_t operator()(std::string_view text) const;
};

} // namespace quellon
