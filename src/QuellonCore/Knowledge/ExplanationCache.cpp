#include "QuellonCore/Knowledge/ExplanationCache.h"

#include <algorithm>
#include <utility>

namespace quellon {

void ExplanationCache::store(AppExplanation explanation, const std::string& name, Date at)
{
    entries.insert_or_assign(name, Entry{std::move(explanation), at});
    while (entries.size() > capacity) {
        entries.erase(std::min_element(entries.begin(), entries.end(), [](const auto& one, const auto& other) {
            return one.second.fetchedAt < other.second.fetchedAt;
        }));
    }
}

std::optional<AppExplanation> ExplanationCache::explanation(std::string_view name) const
{
    const auto found = entries.find(name);
    return found != entries.end() ? std::optional{found->second.explanation} : std::nullopt;
}

std::optional<ExplanationCache::Entry> ExplanationCache::Entry::fromJson(const Json& json)
{
    JsonFields fields{json};
    Entry entry;
    fields.required("explanation", entry.explanation);
    fields.required("fetchedAt", entry.fetchedAt);
    return fields.result(std::move(entry));
}

Json ExplanationCache::Entry::toJson() const
{
    Json json = Json::object();
    putField(json, "explanation", explanation);
    putField(json, "fetchedAt", fetchedAt);
    return json;
}

std::optional<ExplanationCache> ExplanationCache::fromJson(const Json& json)
{
    JsonFields fields{json};
    ExplanationCache cache;
    fields.defaulted("entries", cache.entries);
    return fields.result(std::move(cache));
}

Json ExplanationCache::toJson() const
{
    Json json = Json::object();
    putField(json, "entries", entries);
    return json;
}

} // namespace quellon
