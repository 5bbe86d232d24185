#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Measurement/UsageLedger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace quellon {
namespace {

using Bucket = UsageLedger::Bucket;
using Usages = std::vector<AppUsage>;

/// The ledger said plainly: no sum is kept, every key is a text, and each sample makes its map of counters anew.
struct NaiveLedger {
    struct Counters {
        std::uint64_t in;
        std::uint64_t out;
        Date seenAt;
    };
    Seconds retention;
    Seconds interval;
    CountDirection direction;
    std::map<std::string, Counters> previous{};
    std::deque<Bucket> buckets{};
    std::optional<Date> lastIngestAt{};
    bool hasTrustedBaseline = false;

    Usages ingest(const std::vector<ConnectionSample>& samples, Date at, const UsageLedger::Resolve& resolve)
    {
        if (lastIngestAt && at - *lastIngestAt > std::max(4.0 * interval, Seconds{30})) resetBaseline();
        lastIngestAt = at;
        std::map<std::string, Counters> seen;
        Bucket bucket{at, {}, {}};
        for (const auto& sample : samples) {
            seen.insert_or_assign(sample.key(), Counters{sample.bytesIn, sample.bytesOut, at});
            std::uint64_t in = sample.bytesIn;
            std::uint64_t out = sample.bytesOut;
            if (const auto known = previous.find(sample.key()); known != previous.end()) {
                in = in >= known->second.in ? in - known->second.in : 0;
                out = out >= known->second.out ? out - known->second.out : 0;
            } else if (!hasTrustedBaseline) {
                continue;
            }
            if (direction == CountDirection::incoming) out = 0;
            if (direction == CountDirection::outgoing) in = 0;
            if (in + out == 0) continue;
            const ProcessEntry* process = resolve(sample.pid);
            if (process == nullptr) continue;
            const std::string app{ProcessTable::appLabel(process->command)};
            bucket.usage[app] += in + out;
            bucket.pids[app].insert(sample.pid);
        }
        for (const auto& [key, counters] : previous) {
            if (at - counters.seenAt < std::max(24.0 * interval, Seconds{120})) seen.insert({key, counters});
        }
        previous = seen;
        hasTrustedBaseline = true;
        buckets.push_back(bucket);
        prune(at);
        return totals(retention, at);
    }

    void prune(Date now)
    {
        std::erase_if(buckets, [&](const Bucket& bucket) { return bucket.at < now - retention; });
    }

    [[nodiscard]] Usages totals(Seconds window, Date at) const
    {
        std::map<std::string, AppUsage> sums;
        for (const auto& bucket : buckets) {
            if (bucket.at < at - std::min(retention, window)) continue;
            for (const auto& [app, bytes] : bucket.usage) {
                AppUsage& sum = sums[app];
                sum.app = app;
                sum.bytes += bytes;
                if (const auto pids = bucket.pids.find(app); pids != bucket.pids.end()) {
                    sum.pids.insert(pids->second.begin(), pids->second.end());
                }
            }
        }
        Usages result;
        for (const auto& [app, sum] : sums) result.push_back(sum);
        std::stable_sort(result.begin(), result.end(), [](auto& a, auto& b) { return a.bytes > b.bytes; });
        return result;
    }

    void resetBaseline()
    {
        previous.clear();
        lastIngestAt.reset();
        hasTrustedBaseline = false;
    }

    void clear(const std::string& app)
    {
        for (auto& bucket : buckets) {
            bucket.usage.erase(app);
            bucket.pids.erase(app);
        }
    }
};

/// Drives both ledgers through one random life.
class Life {
public:
    explicit Life(std::uint64_t seed) : random_{seed} {}

    void step()
    {
        switch (below(20)) {
        case 0:
            return restore();
        case 1:
            return clear();
        case 2:
            return change();
        case 3:
            return reset();
        default:
            return ingest();
        }
    }

    void compare()
    {
        ASSERT_EQ(ledger_.snapshot().buckets, model_.buckets);
        ASSERT_EQ(ledger_.rememberedConnections(), model_.previous.size());
        const Seconds edge = model_.buckets.empty() ? Seconds{} : at_ - model_.buckets[below(model_.buckets.size())].at;
        for (const Seconds window :
             {Seconds{0}, Seconds{60}, Seconds{static_cast<double>(below(900))}, edge, Seconds{1e6}}) {
            const Date at = below(3) == 0 ? at_ + Seconds{static_cast<double>(below(900)) - 600.0} : at_;
            const Usages expected = model_.totals(window, at);
            ASSERT_EQ(ledger_.totals(window, at), expected);
            for (const char* app : apps) {
                const auto usage =
                    std::find_if(expected.begin(), expected.end(), [&](auto& u) { return u.app == app; });
                ASSERT_EQ(ledger_.total(app, window, at), usage != expected.end() ? usage->bytes : 0U);
            }
        }
    }

private:
    static constexpr std::array<const char*, 6> apps{"alpha", "beta", "gamma", "Player", "", "zeta"};

    /// Below `limit`. Not a standard distribution, whose results differ between libraries.
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

    void ingest()
    {
        static constexpr std::array<double, 14> gaps{5, 5, 5, 5, 5, 5, 0, 4.5, 30, 30.5, 119, 120, -7.5, -400};
        at_ += Seconds{gaps[below(gaps.size())]};
        std::vector<ConnectionSample> samples;
        for (std::uint64_t i = below(12); i > 0; --i) {
            const auto pid = static_cast<std::int32_t>(below(5));
            samples.push_back({pid, "c" + std::to_string(below(4)), below(4) * 1'000 + below(3), below(3) * 100});
        }
        const auto resolve = [this](std::int32_t pid) -> const ProcessEntry* {
            return pid == 4 ? nullptr : &processes_[static_cast<std::size_t>(pid)];
        };
        ASSERT_EQ(ledger_.ingest(samples, at_, resolve), model_.ingest(samples, at_, resolve));
        if (below(10) == 0) processes_[below(4)].command = std::string{"/bin/"} + apps[below(4)];
    }

    void restore()
    {
        std::deque<Bucket> buckets;
        for (std::uint64_t i = below(30); i > 0; --i) {
            Bucket& bucket = buckets.emplace_back();
            bucket.at = at_ - Seconds{static_cast<double>(below(1'000)) - 30.0};
            for (const char* app : apps) {
                if (below(3) == 0) bucket.usage[app] = below(5) * 100;
                if (below(3) == 0) bucket.pids[app] = {static_cast<std::int32_t>(below(9)), 3};
            }
        }
        ledger_.restore(buckets, at_);
        model_.buckets = buckets;
        model_.resetBaseline();
        model_.prune(at_);
    }

    void clear()
    {
        const std::string app = apps[below(apps.size())];
        ledger_.clear(app);
        model_.clear(app);
    }

    void change()
    {
        const Seconds retention{static_cast<double>(below(6)) * 150.0};
        const Seconds interval{static_cast<double>(1 + below(15))};
        ledger_.setRetention(retention, at_);
        ledger_.setSampleInterval(interval);
        ledger_.direction = countDirections.rows[below(3)].value;
        model_.retention = retention;
        model_.prune(at_);
        model_.interval = interval;
        model_.direction = ledger_.direction;
    }

    void reset()
    {
        ledger_.resetBaseline();
        model_.resetBaseline();
        if (below(4) != 0) return;
        ledger_.resetAll();
        model_.buckets.clear();
    }

    std::mt19937_64 random_;
    Date at_{Seconds{800'000'000}};
    UsageLedger ledger_{Seconds{600}, Seconds{5}, CountDirection::both};
    NaiveLedger model_{Seconds{600}, Seconds{5}, CountDirection::both};
    std::array<ProcessEntry, 4> processes_{{
        {0, 0, 0, "/Applications/Player.app/Contents/MacOS/Player"},
        {1, 0, 1, "/bin/alpha"},
        {2, 0, 2, "/bin/beta"},
        {3, 0, 3, "/Applications/Player.app/Contents/Helper.app/Contents/MacOS/Helper"},
    }};
};

TEST(UsageLedger, doesWhatThePlainLedgerDoes)
{
    for (std::uint64_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        Life life{seed};
        for (int step = 0; step < 250; ++step) {
            SCOPED_TRACE(step);
            life.step();
            life.compare();
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

} // namespace
} // namespace quellon
