#pragma once

#include "QuellonCore/Knowledge/AppExplanation.h"

#include <span>
#include <string_view>

namespace quellon {

/// One row of a knowledge pack, as the build writes it into the program's constant data.
struct KnowledgeRow {
    std::string_view key;
    std::string_view whatItIs;
    std::string_view whyTraffic;
    AppExplanation::Category category;
    std::string_view vendor; ///< Empty: none.
    AppExplanation::LimitAdvice limitAdvice;
    std::string_view limitNote; ///< Empty: none.
    AppExplanation::Confidence confidence;
};

/// The rows as explanations by their keys, with the source `pack`. The keys are distinct.
[[nodiscard]] ExplanationMap explanations(std::span<const KnowledgeRow> rows);

} // namespace quellon
