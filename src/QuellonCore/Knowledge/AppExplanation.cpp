#include "QuellonCore/Knowledge/AppExplanation.h"

#include <utility>

namespace quellon {

namespace {

/// Reads an enumeration of which a later version, or a service, may know more cases.
template <typename Enum>
auto orElse(Enum fallback)
{
    return [fallback](const Json& json) {
        return json.is_string() ? std::optional{fromJson<Enum>(json).value_or(fallback)} : std::nullopt;
    };
}

} // namespace

std::optional<AppExplanation> AppExplanation::fromJson(const Json& json)
{
    JsonFields fields{json};
    AppExplanation record;
    fields.defaulted("whatItIs", record.whatItIs);
    fields.defaulted("whyTraffic", record.whyTraffic);
    fields.defaulted("category", record.category, orElse(Category::other));
    fields.defaulted("vendor", record.vendor);
    fields.defaulted("limitAdvice", record.limitAdvice, orElse(LimitAdvice::caution));
    fields.defaulted("limitNote", record.limitNote);
    fields.defaulted("confidence", record.confidence, orElse(Confidence::generated));
    fields.defaulted("source", record.source, orElse(Source::cloud));
    return fields.result(std::move(record));
}

Json AppExplanation::toJson() const
{
    Json json = Json::object();
    putField(json, "whatItIs", whatItIs);
    putField(json, "whyTraffic", whyTraffic);
    putField(json, "category", category);
    putField(json, "vendor", vendor);
    putField(json, "limitAdvice", limitAdvice);
    putField(json, "limitNote", limitNote);
    putField(json, "confidence", confidence);
    putField(json, "source", source);
    return json;
}

} // namespace quellon
