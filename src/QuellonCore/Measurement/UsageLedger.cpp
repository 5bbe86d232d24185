#include "QuellonCore/Measurement/UsageLedger.h"

#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Support/Checked.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace quellon {

namespace {

/// Calls `use(label, bytes, pids)` for each application of the bucket's usage; `pids` is null where it names none.
template <typename Use>
void forEachUse(const UsageLedger::Bucket& bucket, Use use)
{
    auto carrier = bucket.pids.begin();
    for (const auto& [app, bytes] : bucket.usage) {
        while (carrier != bucket.pids.end() && carrier->first < app) ++carrier;
        const bool isNamed = carrier != bucket.pids.end() && carrier->first == app;
        use(app, bytes, isNamed ? &carrier->second : nullptr);
    }
}

void charge(UsageLedger::Bucket& bucket, std::string_view app, std::int32_t pid, std::uint64_t bytes)
{
    const auto usage = bucket.usage.lower_bound(app);
    if (usage != bucket.usage.end() && usage->first == app)
        usage->second = checkedAdd(usage->second, bytes);
    else
        bucket.usage.emplace_hint(usage, app, bytes);

    auto pids = bucket.pids.lower_bound(app);
    if (pids == bucket.pids.end() || pids->first != app) {
        pids = bucket.pids.emplace_hint(pids, app, std::set<std::int32_t>{});
    }
    pids->second.insert(pid);
}

std::uint64_t increase(std::uint64_t from, std::uint64_t to)
{
    return to > from ? to - from : 0;
}

bool standsBefore(const AppUsage& a, const AppUsage& b)
{
    return a.bytes != b.bytes ? a.bytes > b.bytes : a.app < b.app;
}

} // namespace

std::size_t UsageLedger::ConnectionHash::operator()(const ConnectionView& key) const
{
    constexpr std::size_t spread = 0x9E3779B9U; // 2^32 divided by the golden ratio
    return std::hash<std::string_view>{}(key.label) ^ (static_cast<std::uint32_t>(key.pid) * spread);
}

UsageLedger::UsageLedger(Seconds retentionSeconds, Seconds sampleInterval, CountDirection counts)
    : direction(counts), retentionSeconds_(retentionSeconds), sampleInterval_(sampleInterval)
{
}

std::vector<AppUsage> UsageLedger::ingest(const std::vector<ConnectionSample>& samples, Date at, const Resolve& resolve)
{
    const Seconds gapLimit = std::max(sampleInterval_ * gapIntervals, gapFloor);
    if (lastIngestAt_ && at - *lastIngestAt_ > gapLimit) resetBaseline();
    lastIngestAt_ = at;
    ++round_;

    Bucket bucket{at, {}, {}};
    for (const ConnectionSample& sample : samples) {
        const std::uint64_t bytes = counted(takeDelta(sample, at));
        if (bytes == 0) continue;
        if (const ProcessEntry* process = resolve(sample.pid)) {
            charge(bucket, ProcessTable::appLabel(process->command), sample.pid, bytes);
        }
    }
    forgetConnections(at);
    hasTrustedBaseline_ = true;

    include(bucket);
    state_.buckets.push_back(std::move(bucket));
    prune(at);
    return totals(retentionSeconds_, at);
}

UsageLedger::Counters UsageLedger::takeDelta(const ConnectionSample& sample, Date at)
{
    const Counters now{sample.bytesIn, sample.bytesOut};
    auto known = connections_.find(ConnectionView{sample.pid, sample.connection});
    if (known == connections_.end()) {
        known = connections_.emplace(ConnectionKey{sample.pid, sample.connection}, Connection{}).first;
    } else if (known->second.round != round_) {
        known->second.former = known->second.latest;
    }
    Connection& connection = known->second;
    connection.latest = now;
    connection.seenAt = at;
    connection.round = round_;

    if (connection.former) return {increase(connection.former->in, now.in), increase(connection.former->out, now.out)};
    // New since the sample before, or nothing known of the time before: all of it, or none.
    return hasTrustedBaseline_ ? now : Counters{};
}

std::uint64_t UsageLedger::counted(const Counters& delta) const
{
    switch (direction) {
    case CountDirection::incoming:
        return delta.in;
    case CountDirection::outgoing:
        return delta.out;
    case CountDirection::both:
        break;
    }
    return checkedAdd(delta.in, delta.out);
}

/// A connection may be missing from a sample or two and come back; it must not look new then.
void UsageLedger::forgetConnections(Date at)
{
    const Seconds memory = std::max(sampleInterval_ * memoryIntervals, memoryFloor);
    std::erase_if(connections_, [&](const auto& each) { return !(at - each.second.seenAt < memory); });
}

void UsageLedger::include(const Bucket& bucket)
{
    forEachUse(bucket, [this](const std::string& app, std::uint64_t bytes, const std::set<std::int32_t>* pids) {
        Sum& sum = sums_[app];
        sum.bytes = checkedAdd(sum.bytes, bytes);
        ++sum.buckets;
        if (pids == nullptr) return;
        for (const std::int32_t pid : *pids) ++sum.pids[pid];
    });
}

void UsageLedger::exclude(const Bucket& bucket)
{
    forEachUse(bucket, [this](const std::string& app, std::uint64_t bytes, const std::set<std::int32_t>* pids) {
        const auto found = sums_.find(app);
        Sum& sum = found->second;
        if (--sum.buckets == 0) {
            sums_.erase(found);
            return;
        }
        sum.bytes -= bytes;
        if (pids == nullptr) return;
        for (const std::int32_t pid : *pids) {
            const auto carrier = sum.pids.find(pid);
            if (--carrier->second == 0) sum.pids.erase(carrier);
        }
    });
}

void UsageLedger::prune(Date now)
{
    const Date oldest = now - retentionSeconds_;
    std::erase_if(state_.buckets, [&](const Bucket& bucket) {
        const bool isTooOld = bucket.at < oldest;
        if (isTooOld) exclude(bucket);
        return isTooOld;
    });
}

Date UsageLedger::cutoff(Seconds window, Date at) const
{
    return at - std::min(retentionSeconds_, window);
}

bool UsageLedger::holdsOnlySince(Date cutoff) const
{
    return std::all_of(state_.buckets.begin(), state_.buckets.end(),
                       [&](const Bucket& bucket) { return bucket.at >= cutoff; });
}

std::vector<AppUsage> UsageLedger::totals(Seconds window, Date at) const
{
    const Date since = cutoff(window, at);
    auto result = holdsOnlySince(since) ? sumOfAll() : sumSince(since);
    std::sort(result.begin(), result.end(), standsBefore);
    return result;
}

std::vector<AppUsage> UsageLedger::sumOfAll() const
{
    std::vector<AppUsage> result;
    result.reserve(sums_.size());
    for (const auto& [app, sum] : sums_) {
        AppUsage& usage = result.emplace_back(AppUsage{app, sum.bytes, {}});
        for (const auto& [pid, buckets] : sum.pids) usage.pids.insert(usage.pids.end(), pid);
    }
    return result;
}

std::vector<AppUsage> UsageLedger::sumSince(Date cutoff) const
{
    std::vector<AppUsage> result;
    std::unordered_map<std::string_view, std::size_t> places; // of the applications in `result`
    for (const Bucket& bucket : state_.buckets) {
        if (bucket.at < cutoff) continue;
        forEachUse(bucket, [&](const std::string& app, std::uint64_t bytes, const std::set<std::int32_t>* pids) {
            const auto [place, isNew] = places.try_emplace(app, result.size());
            if (isNew) result.push_back({app, 0, {}});
            AppUsage& usage = result[place->second];
            usage.bytes = checkedAdd(usage.bytes, bytes);
            if (pids != nullptr) usage.pids.insert(pids->begin(), pids->end());
        });
    }
    return result;
}

std::uint64_t UsageLedger::total(std::string_view app, Seconds window, Date at) const
{
    const Date since = cutoff(window, at);
    if (holdsOnlySince(since)) {
        const auto sum = sums_.find(app);
        return sum != sums_.end() ? sum->second.bytes : 0;
    }
    std::uint64_t bytes = 0;
    for (const Bucket& bucket : state_.buckets) {
        if (bucket.at < since) continue;
        const auto usage = bucket.usage.find(app);
        if (usage != bucket.usage.end()) bytes = checkedAdd(bytes, usage->second);
    }
    return bytes;
}

void UsageLedger::restore(std::vector<Bucket> buckets, Date now)
{
    resetAll();
    std::erase_if(buckets, [oldest = now - retentionSeconds_](const Bucket& bucket) { return bucket.at < oldest; });
    state_.buckets = std::move(buckets);
    for (const Bucket& bucket : state_.buckets) include(bucket);
}

void UsageLedger::setRetention(Seconds seconds, Date now)
{
    retentionSeconds_ = seconds;
    prune(now);
}

void UsageLedger::resetBaseline()
{
    connections_.clear();
    lastIngestAt_.reset();
    hasTrustedBaseline_ = false;
}

void UsageLedger::resetAll()
{
    resetBaseline();
    state_.buckets.clear();
    sums_.clear();
}

void UsageLedger::clear(std::string_view app)
{
    for (Bucket& bucket : state_.buckets) {
        if (const auto usage = bucket.usage.find(app); usage != bucket.usage.end()) bucket.usage.erase(usage);
        if (const auto pids = bucket.pids.find(app); pids != bucket.pids.end()) bucket.pids.erase(pids);
    }
    if (const auto sum = sums_.find(app); sum != sums_.end()) sums_.erase(sum);
}

std::optional<UsageLedger::Bucket> UsageLedger::Bucket::fromJson(const Json& json)
{
    JsonFields fields{json};
    Bucket bucket;
    fields.required("at", bucket.at);
    fields.required("usage", bucket.usage);
    fields.required("pids", bucket.pids);
    return fields.result(std::move(bucket));
}

Json UsageLedger::Bucket::toJson() const
{
    Json json = Json::object();
    putField(json, "at", at);
    putField(json, "usage", usage);
    putField(json, "pids", pids);
    return json;
}

std::optional<UsageLedger::Snapshot> UsageLedger::Snapshot::fromJson(const Json& json)
{
    JsonFields fields{json};
    Snapshot snapshot;
    fields.required("buckets", snapshot.buckets);

    // Sums end the program when they overflow, which no file may bring about.
    std::unordered_map<std::string_view, std::uint64_t> sums;
    for (const Bucket& bucket : snapshot.buckets) {
        for (const auto& [app, bytes] : bucket.usage) {
            std::uint64_t& sum = sums[app];
            if (bytes > UINT64_MAX - sum) return std::nullopt;
            sum += bytes;
        }
    }
    return fields.result(std::move(snapshot));
}

Json UsageLedger::Snapshot::toJson() const
{
    Json json = Json::object();
    putField(json, "buckets", buckets);
    return json;
}

} // namespace quellon
