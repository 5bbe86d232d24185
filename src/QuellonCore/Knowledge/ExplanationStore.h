#pragma once

#include "QuellonCore/Host/Platform.h"
#include "QuellonCore/Knowledge/AppExplanation.h"

#include <optional>
#include <string_view>

namespace quellon {

/// Looks explanations up by name. Never changes, so that any thread may read it.
class ExplanationStore {
public:
    /// Answers with the rows of `pack`, and below them with those of `further`, of which a row whose name differs from
    /// one of `pack` in case alone, or not at all, is left out.
    explicit ExplanationStore(ExplanationMap pack, const ExplanationMap& further = {});

    /// The store of what the program knows about processes on this system.
    [[nodiscard]] static ExplanationStore forPlatform(const Platform& platform);

    /// The row of this very name; without one, the row whose name is the same but for case. Absent for a name that two
    /// rows share but for case and that is neither of theirs: they mean different programs. Nothing is trimmed.
    [[nodiscard]] std::optional<AppExplanation> explanation(std::string_view name) const;

    /// All rows by their names.
    [[nodiscard]] const ExplanationMap& exact() const { return exact_; }
    /// The rows by their case-folded names, without those of which two fold to the same.
    [[nodiscard]] const ExplanationMap& caseFolded() const { return caseFolded_; }

    bool operator==(const ExplanationStore&) const = default;

private:
    ExplanationMap exact_;
    ExplanationMap caseFolded_;
};

} // namespace quellon
