#include "QuellonCore/Enforcement/ReplacedPauses.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace quellon {

ReplacedPauses::~ReplacedPauses()
{
    thawAll();
}

void ReplacedPauses::keep(const std::string& app, const std::vector<SuspendedApp>& suspended,
                          const std::vector<std::int32_t>& acted, const ProcessTable::Entries& table)
{
    std::set<std::int32_t> frozen;
    const auto before = byApp_.find(app);
    const auto wasKept = [&](std::int32_t pid) {
        return before != byApp_.end() && std::ranges::binary_search(before->second.pids, pid);
    };
    if (before != byApp_.end()) frozen.insert(before->second.pids.begin(), before->second.pids.end());
    for (const SuspendedApp& entry : suspended) {
        if (entry.app == app) frozen.insert(entry.pids.begin(), entry.pids.end());
    }
    for (const std::int32_t pid : acted) frozen.erase(pid); // on record with the new freeze

    std::vector<std::int32_t> stay;
    std::vector<std::int32_t> go;
    for (const std::int32_t pid : frozen) {
        if (!Enforcer::isAlive(host_, pid)) continue;
        const ProcessEntry* process = table.find(pid);
        if (process == nullptr || ProcessTable::appLabel(process->command) == app)
            stay.push_back(pid);
        else if (wasKept(pid))
            go.push_back(pid);
    }
    Enforcer::resume(host_, go);
    hold(app, std::move(stay));
}

/// From now on these are the application's.
void ReplacedPauses::hold(const std::string& app, std::vector<std::int32_t> pids)
{
    const auto kept = byApp_.find(app);
    if (pids.empty()) {
        if (kept != byApp_.end()) byApp_.erase(kept);
    } else if (kept != byApp_.end() && kept->second.held == pids) {
        kept->second.pids = std::move(pids);
    } else if (auto lifeline = host_.processes.lifeline(pids)) {
        byApp_.insert_or_assign(app, Kept{pids, pids, std::move(lifeline)}); // the old one goes when the new is there
    } else if (kept != byApp_.end()) {
        kept->second.pids = std::move(pids);
    }
}

void ReplacedPauses::thaw(std::string_view app)
{
    const auto kept = byApp_.find(app);
    if (kept == byApp_.end()) return;
    Enforcer::resume(host_, kept->second.pids);
    byApp_.erase(kept);
}

void ReplacedPauses::thawAll()
{
    for (const auto& [app, kept] : byApp_) Enforcer::resume(host_, kept.pids);
    byApp_.clear();
}

void ReplacedPauses::prune(const std::vector<SuspendedApp>& suspended)
{
    const auto isPaused = [&](const std::string& app) {
        return std::ranges::any_of(suspended, [&](const SuspendedApp& entry) { return entry.app == app; });
    };
    for (auto& [app, kept] : byApp_) {
        std::erase_if(kept.pids, [&](std::int32_t pid) { return !Enforcer::isAlive(host_, pid); });
        if (isPaused(app)) continue;
        Enforcer::resume(host_, kept.pids);
        kept.pids.clear();
    }
    std::erase_if(byApp_, [](const auto& each) { return each.second.pids.empty(); });
}

} // namespace quellon
