#include "QuellonCore/Measurement/UsageSums.h"

#include "QuellonCore/Support/Checked.h"

#include <algorithm>

namespace quellon {

void UsageSums::add(std::string_view app, Date at, std::uint64_t bytes, const Pids& pids)
{
    auto found = apps_.find(app);
    if (found == apps_.end()) found = apps_.emplace(app, App{}).first;
    App& sum = found->second;

    // Differences of counters modulo 2^64 are exact as long as the difference itself fits.
    if (!sum.charges.empty()) static_cast<void>(checkedAdd(sum.charged - sum.charges.front().before, bytes));
    auto place = std::upper_bound(sum.charges.begin(), sum.charges.end(), at,
                                  [](Date date, const Charge& charge) { return date < charge.at; });
    const std::uint64_t before = place == sum.charges.end() ? sum.charged : place->before;
    place = sum.charges.insert(place, Charge{at, before});
    std::for_each(place + 1, sum.charges.end(), [bytes](Charge& later) { later.before += bytes; });
    sum.charged += bytes;

    for (const std::int32_t pid : pids) {
        Date& latest = sum.pids.try_emplace(pid, at).first->second;
        latest = std::max(latest, at);
    }
}

void UsageSums::dropBefore(Date oldest, std::string_view app, const Pids& pids)
{
    const auto found = apps_.find(app);
    if (found == apps_.end()) return;
    App& sum = found->second;
    while (!sum.charges.empty() && sum.charges.front().at < oldest) sum.charges.pop_front();
    if (sum.charges.empty()) {
        apps_.erase(found);
        return;
    }
    for (const std::int32_t pid : pids) {
        const auto carrier = sum.pids.find(pid);
        if (carrier != sum.pids.end() && carrier->second < oldest) sum.pids.erase(carrier);
    }
}

void UsageSums::erase(std::string_view app)
{
    if (const auto found = apps_.find(app); found != apps_.end()) apps_.erase(found);
}

std::vector<AppUsage> UsageSums::since(Date cutoff) const
{
    std::vector<AppUsage> result;
    result.reserve(apps_.size());
    for (const auto& [app, sum] : apps_) {
        if (sum.charges.back().at < cutoff) continue;
        AppUsage& usage = result.emplace_back(AppUsage{app, sum.bytesSince(cutoff), {}});
        for (const auto& [pid, latest] : sum.pids) {
            if (latest >= cutoff) usage.pids.insert(usage.pids.end(), pid);
        }
    }
    return result;
}

std::uint64_t UsageSums::bytesSince(Date cutoff, std::string_view app) const
{
    const auto found = apps_.find(app);
    return found != apps_.end() ? found->second.bytesSince(cutoff) : 0;
}

std::uint64_t UsageSums::App::bytesSince(Date cutoff) const
{
    const auto first = std::lower_bound(charges.begin(), charges.end(), cutoff,
                                        [](const Charge& charge, Date date) { return charge.at < date; });
    return first != charges.end() ? charged - first->before : 0;
}

} // namespace quellon
