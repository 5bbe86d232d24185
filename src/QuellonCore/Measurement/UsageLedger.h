#pragma once

#include "QuellonCore/Measurement/AppUsage.h"
#include "QuellonCore/Measurement/ConnectionSample.h"
#include "QuellonCore/Measurement/CountDirection.h"
#include "QuellonCore/Measurement/ProcessEntry.h"
#include "QuellonCore/Measurement/UsageSums.h"
#include "QuellonCore/Support/FlatMap.h"
#include "QuellonCore/Support/FlatSet.h"
#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quellon {

/// Rolling per-application usage. Turns the running totals of connections into bytes per application and sample, and
/// charges nothing that it can't place in time. Not thread-safe; owned by the engine.
class UsageLedger {
public:
    /// What one sample charged.
    struct Bucket {
        Date at;                             ///< When the sample was taken.
        FlatMap<std::uint64_t> usage;        ///< Bytes by application label.
        FlatMap<FlatSet<std::int32_t>> pids; ///< Who carried them.
        bool operator==(const Bucket&) const = default;

        /// `at`, `usage` and `pids` are required.
        [[nodiscard]] static std::optional<Bucket> fromJson(const Json& json);
        [[nodiscard]] Json toJson() const;
    };

    /// All that is saved.
    struct Snapshot {
        std::deque<Bucket> buckets; ///< In the order of the samples: oldest first, unless the clock was set back.
        bool operator==(const Snapshot&) const = default;

        /// `buckets` is required. Absent also when all bytes together exceed `FiledSum::largest`.
        [[nodiscard]] static std::optional<Snapshot> fromJson(const Json& json);
        [[nodiscard]] Json toJson() const;

        /// The same as by way of `parseJson` and `dumpJson`, to the byte, without a JSON value in between: an hour of
        /// samples is some 60,000 numbers, which are written twice a minute while the program answers the user.
        [[nodiscard]] static std::optional<Snapshot> fromJsonText(std::string_view text);
        [[nodiscard]] std::optional<std::string> toJsonText() const;
    };

    /// The process of an id, or nothing.
    using Resolve = std::function<const ProcessEntry*(std::int32_t)>;

    /// The longest break between two samples across which deltas are charged: 4 sample intervals, at least 30 seconds.
    static constexpr double gapIntervals = 4.0;
    static constexpr Seconds gapFloor{30.0};
    /// How long a connection that is no longer listed keeps its counters: 24 sample intervals, at least 120 seconds.
    static constexpr double memoryIntervals = 24.0;
    static constexpr Seconds memoryFloor{120.0};

    /// An empty ledger, which keeps buckets for `retentionSeconds` and expects a sample every `sampleInterval`.
    UsageLedger(Seconds retentionSeconds, Seconds sampleInterval, CountDirection counts);

    /// Which bytes later samples count. What was counted stays.
    CountDirection direction;

    /// Takes one sample of running totals, taken `at`, and adds a bucket with what moved since the one before. The
    /// first sample, and one after a break that is too long, only set the baseline. Bytes of a process that `resolve`
    /// does not know are charged to nobody. Returns the totals over the whole retention.
    std::vector<AppUsage> ingest(const std::vector<ConnectionSample>& samples, Date at, const Resolve& resolve);

    /// Bytes per application in [at − min(window, retention), ∞), largest first, equals by label.
    [[nodiscard]] std::vector<AppUsage> totals(Seconds window, Date at) const;

    /// Bytes of `app` in [at − min(window, retention), ∞). 0 for an unknown app.
    [[nodiscard]] std::uint64_t total(std::string_view app, Seconds window, Date at) const;

    /// The present buckets. Valid until the next change of the ledger.
    [[nodiscard]] const Snapshot& snapshot() const { return state_; }

    /// Replaces the buckets, drops those older than the retention, and forgets the counters.
    void restore(std::deque<Bucket> buckets, Date now);

    /// How far back buckets are kept.
    [[nodiscard]] Seconds retentionSeconds() const { return retentionSeconds_; }

    /// Buckets that are too old for the new retention are lost for good.
    void setRetention(Seconds seconds, Date now);

    /// The time between samples, from which the two limits follow.
    void setSampleInterval(Seconds seconds) { sampleInterval_ = seconds; }

    /// Forgets the counters and keeps the buckets: the next sample is a baseline.
    void resetBaseline();

    /// Forgets counters and buckets.
    void resetAll();

    /// Removes an application from every bucket. The counters of its connections go on.
    void clear(std::string_view app);

    /// How many connections' counters are held.
    [[nodiscard]] std::size_t rememberedConnections() const { return connections_.size(); }

private:
    /// A connection's identity, in a form that is looked up without making a text.
    struct ConnectionKey {
        std::int32_t pid;
        std::string label;
    };
    struct ConnectionView {
        std::int32_t pid;
        std::string_view label;
    };
    struct ConnectionHash {
        using is_transparent = void;
        std::size_t operator()(const ConnectionView& key) const;
        std::size_t operator()(const ConnectionKey& key) const { return (*this)(ConnectionView{key.pid, key.label}); }
    };
    struct ConnectionEqual {
        using is_transparent = void;
        template <typename A, typename B>
        bool operator()(const A& a, const B& b) const
        {
            return a.pid == b.pid && a.label == b.label;
        }
    };
    struct Counters {
        std::uint64_t in = 0;
        std::uint64_t out = 0;
    };
    /// What is known of one connection. A label that stands twice in one sample is compared both times with the
    /// sample before, hence `former`.
    struct Connection {
        Counters latest;
        std::optional<Counters> former; ///< As of the sample before `round`.
        Date seenAt;
        std::uint64_t round = 0; ///< The sample that it was last listed in.
    };

    [[nodiscard]] Counters takeDelta(const ConnectionSample& sample, Date at);
    [[nodiscard]] std::uint64_t counted(const Counters& delta) const;
    void forgetConnections(Date at);
    void include(const Bucket& bucket);
    void exclude(const Bucket& bucket, Date oldest);
    void prune(Date now);
    [[nodiscard]] Date cutoff(Seconds window, Date at) const;

    Seconds retentionSeconds_;
    Seconds sampleInterval_;
    Snapshot state_;
    bool isAscending_ = true; ///< Whether the dates of the buckets ascend.
    UsageSums sums_;          ///< Of all present buckets.
    std::unordered_map<ConnectionKey, Connection, ConnectionHash, ConnectionEqual> connections_;
    std::optional<Date> lastIngestAt_;
    std::uint64_t round_ = 0;
    bool hasTrustedBaseline_ = false;
};

} // namespace quellon
