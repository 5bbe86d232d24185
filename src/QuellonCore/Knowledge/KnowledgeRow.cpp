#include "QuellonCore/Knowledge/KnowledgeRow.h"

#include <optional>
#include <string>

namespace quellon {

namespace {

std::optional<std::string> unlessEmpty(std::string_view text)
{
    return text.empty() ? std::nullopt : std::optional{std::string{text}};
}

} // namespace

ExplanationMap explanations(std::span<const KnowledgeRow> rows)
{
    ExplanationMap result;
    for (const KnowledgeRow& row : rows) {
        result.emplace(row.key, AppExplanation{.whatItIs = std::string{row.whatItIs},
                                               .whyTraffic = std::string{row.whyTraffic},
                                               .category = row.category,
                                               .vendor = unlessEmpty(row.vendor),
                                               .limitAdvice = row.limitAdvice,
                                               .limitNote = unlessEmpty(row.limitNote),
                                               .confidence = row.confidence,
                                               .source = AppExplanation::Source::pack});
    }
    return result;
}

} // namespace quellon
