#include "QuellonCore/Rules/AppPolicyTable.h"

#include "QuellonCore/Rules/DevToolPresets.h"

#include <utility>

namespace quellon {

AppPolicyTable::AppPolicyTable(Entries entries) : entries_(std::move(entries))
{
    std::erase_if(entries_, [](const auto& entry) { return entry.second == AppPolicy::global; });
}

AppPolicy AppPolicyTable::policy(std::string_view app) const
{
    const auto found = entries_.find(app);
    return found != entries_.end() ? found->second : AppPolicy::global;
}

void AppPolicyTable::set(AppPolicy policy, std::string_view app)
{
    if (policy == AppPolicy::global)
        remove(app);
    else
        entries_.insert_or_assign(std::string{app}, policy);
}

void AppPolicyTable::remove(std::string_view app)
{
    if (const auto found = entries_.find(app); found != entries_.end()) entries_.erase(found);
}

std::vector<std::string> AppPolicyTable::apps(AppPolicy with) const
{
    std::vector<std::string> result;
    for (const auto& [app, policy] : entries_) {
        if (policy == with) result.push_back(app);
    }
    return result;
}

std::vector<std::string> AppPolicyTable::addDevToolPresets()
{
    std::vector<std::string> added;
    for (const std::string_view name : DevToolPresets::names) {
        if (entries_.try_emplace(std::string{name}, AppPolicy::always).second) added.emplace_back(name);
    }
    return added;
}

std::optional<AppPolicyTable> AppPolicyTable::fromJson(const Json& json)
{
    auto entries = quellon::fromJson<Entries>(json);
    return entries ? std::optional<AppPolicyTable>{std::in_place, *std::move(entries)} : std::nullopt;
}

Json AppPolicyTable::toJson() const
{
    return quellon::toJson(entries_);
}

} // namespace quellon
