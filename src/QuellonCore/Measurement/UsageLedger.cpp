#include "QuellonCore/Measurement/UsageLedger.h"

#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Support/Checked.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace quellon {

namespace {

/// Calls `use(label, bytes, pids)` for each application of the bucket's usage.
template <typename Use>
void forEachUse(const UsageLedger::Bucket& bucket, Use use)
{
    static const UsageSums::Pids none;
    auto carrier = bucket.pids.begin();
    for (const auto& [app, bytes] : bucket.usage) {
        while (carrier != bucket.pids.end() && carrier->first < app) ++carrier;
        const bool isNamed = carrier != bucket.pids.end() && carrier->first == app;
        use(app, bytes, isNamed ? carrier->second : none);
    }
}

bool isEarlier(const UsageLedger::Bucket& a, const UsageLedger::Bucket& b)
{
    return a.at < b.at;
}

void charge(UsageLedger::Bucket& bucket, std::string_view app, std::int32_t pid, std::uint64_t bytes)
{
    std::uint64_t& usage = bucket.usage[app];
    usage = checkedAdd(usage, bytes);
    bucket.pids[app].insert(pid);
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
    bucket.usage.shrinkToFit(); // it stays for hours
    bucket.pids.shrinkToFit();
    forgetConnections(at);
    hasTrustedBaseline_ = true;

    include(bucket);
    isAscending_ = isAscending_ && (state_.buckets.empty() || !isEarlier(bucket, state_.buckets.back()));
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
    forEachUse(bucket, [&](const std::string& app, std::uint64_t bytes, const UsageSums::Pids& pids) {
        sums_.add(app, bucket.at, bytes, pids);
    });
}

void UsageLedger::exclude(const Bucket& bucket, Date oldest)
{
    forEachUse(bucket, [&](const std::string& app, std::uint64_t, const UsageSums::Pids& pids) {
        sums_.dropBefore(oldest, app, pids);
    });
}

void UsageLedger::prune(Date now)
{
    auto& buckets = state_.buckets;
    const Date oldest = now - retentionSeconds_;
    while (!buckets.empty() && buckets.front().at < oldest) {
        exclude(buckets.front(), oldest);
        buckets.pop_front();
    }
    if (isAscending_) return;
    std::erase_if(buckets, [&](const Bucket& bucket) {
        const bool isTooOld = bucket.at < oldest;
        if (isTooOld) exclude(bucket, oldest);
        return isTooOld;
    });
    isAscending_ = std::is_sorted(buckets.begin(), buckets.end(), isEarlier);
}

Date UsageLedger::cutoff(Seconds window, Date at) const
{
    return at - std::min(retentionSeconds_, window);
}

std::vector<AppUsage> UsageLedger::totals(Seconds window, Date at) const
{
    auto result = sums_.since(cutoff(window, at));
    std::sort(result.begin(), result.end(), standsBefore);
    return result;
}

std::uint64_t UsageLedger::total(std::string_view app, Seconds window, Date at) const
{
    return sums_.bytesSince(cutoff(window, at), app);
}

void UsageLedger::restore(std::deque<Bucket> buckets, Date now)
{
    resetAll();
    std::erase_if(buckets, [oldest = now - retentionSeconds_](const Bucket& bucket) { return bucket.at < oldest; });
    state_.buckets = std::move(buckets);
    isAscending_ = std::is_sorted(state_.buckets.begin(), state_.buckets.end(), isEarlier);

    // In the order of their dates, so that a file in any order costs the same.
    std::vector<const Bucket*> ascending;
    for (const Bucket& bucket : state_.buckets) ascending.push_back(&bucket);
    std::stable_sort(ascending.begin(), ascending.end(),
                     [](const Bucket* a, const Bucket* b) { return isEarlier(*a, *b); });
    for (const Bucket* bucket : ascending) include(*bucket);
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
    isAscending_ = true;
    sums_.clear();
}

void UsageLedger::clear(std::string_view app)
{
    for (Bucket& bucket : state_.buckets) {
        bucket.usage.erase(app);
        bucket.pids.erase(app);
    }
    sums_.erase(app);
}

} // namespace quellon
