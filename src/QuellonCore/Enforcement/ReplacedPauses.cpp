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

void ReplacedPauses::keep(const Host& host, const std::string& app, const std::vector<SuspendedApp>& suspended,
                          const std::vector<std::int32_t>& acted, const ProcessTable::Entries& table)
{
    std::set<std::int32_t> frozen;
    const auto kept = byApp_.find(app);
    if (kept != byApp_.end()) frozen.insert(kept->second.pids.begin(), kept->second.pids.end());
    for (const SuspendedApp& entry : suspended) {
        if (entry.app == app) frozen.insert(entry.pids.begin(), entry.pids.end());
    }
    std::vector<std::int32_t> pids;
    std::copy_if(frozen.begin(), frozen.end(), std::back_inserter(pids), [&](std::int32_t pid) {
        const ProcessEntry* process = table.find(pid);
        return process != nullptr && ProcessTable::appLabel(process->command) == app &&
               std::find(acted.begin(), acted.end(), pid) == acted.end();
    });
    if (pids.empty()) {
        byApp_.erase(app);
    } else if (kept == byApp_.end() || kept->second.pids != pids) {
        // Where none can be had, the one that there is stays: it holds most of them.
        if (auto lifeline = host.processes.lifeline(pids)) {
            byApp_.insert_or_assign(app, Kept{std::move(pids), std::move(lifeline)});
        }
    }
}

void ReplacedPauses::thaw(std::string_view app)
{
    const auto kept = byApp_.find(app);
    if (kept == byApp_.end()) return;
    kept->second.lifeline->thaw();
    byApp_.erase(kept);
}

void ReplacedPauses::thawAll()
{
    for (const auto& [app, kept] : byApp_) kept.lifeline->thaw();
    byApp_.clear();
}

void ReplacedPauses::prune(const Host& host, const std::vector<SuspendedApp>& suspended)
{
    const auto isPaused = [&](const std::string& app) {
        return std::any_of(suspended.begin(), suspended.end(),
                           [&](const SuspendedApp& entry) { return entry.app == app; });
    };
    const auto isAlive = [&](std::int32_t pid) { return Enforcer::isAlive(host, pid); };
    std::erase_if(byApp_, [&](const auto& each) {
        const Kept& kept = each.second;
        const bool isForgotten = !isPaused(each.first);
        if (isForgotten) kept.lifeline->thaw();
        return isForgotten || std::none_of(kept.pids.begin(), kept.pids.end(), isAlive);
    });
}

} // namespace quellon
