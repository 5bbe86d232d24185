#include "QuellonCore/Knowledge/ExplanationStore.h"

#include "QuellonCore/Knowledge/KnowledgePack.h"
#include "QuellonCore/Knowledge/LinuxKnowledgePack.h"
#include "QuellonCore/Support/CaseFold.h"

#include <set>
#include <string>
#include <utility>

namespace quellon {

namespace {

using Names = std::set<std::string, std::less<>>;

Names foldedNames(const ExplanationMap& rows)
{
    Names names;
    for (const auto& [key, row] : rows) names.insert(caseFolded(key));
    return names;
}

void addOutranked(ExplanationMap& rows, const ExplanationMap& further)
{
    const Names taken = foldedNames(rows);
    for (const auto& [key, row] : further) {
        if (!taken.contains(caseFolded(key))) rows.emplace(key, row);
    }
}

ExplanationMap unambiguous(const ExplanationMap& rows)
{
    ExplanationMap result;
    Names collisions;
    for (const auto& [key, row] : rows) {
        std::string folded = caseFolded(key);
        if (!result.emplace(folded, row).second) collisions.insert(std::move(folded));
    }
    for (const std::string& each : collisions) result.erase(each);
    return result;
}

} // namespace

ExplanationStore::ExplanationStore(ExplanationMap pack, const ExplanationMap& further) : exact_{std::move(pack)}
{
    addOutranked(exact_, further);
    caseFolded_ = unambiguous(exact_);
}

ExplanationStore ExplanationStore::forPlatform(const Platform& platform)
{
    if (platform.name == LinuxKnowledgePack::platformName)
        return ExplanationStore{KnowledgePack::entries(), LinuxKnowledgePack::entries()};
    return ExplanationStore{KnowledgePack::entries()};
}

std::optional<AppExplanation> ExplanationStore::explanation(std::string_view name) const
{
    if (const auto place = exact_.find(name); place != exact_.end()) return place->second;
    if (const auto place = caseFolded_.find(quellon::caseFolded(name)); place != caseFolded_.end())
        return place->second;
    return std::nullopt;
}

} // namespace quellon
