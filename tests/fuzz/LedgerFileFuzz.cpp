#include "Check.h"
#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Notifications/NotificationComposer.h"
#include "QuellonCore/Rules/RuleEvaluator.h"

#include <cstddef>
#include <cstdint>

namespace {

using namespace quellon;

/// A message about all applications at once, which adds up what they used.
void checkMessage(const UsageLedger& ledger, Date now)
{
    const GuardRule rule{UUID{}, ledger.retentionSeconds(), 0, ActionLevel::notify, true};
    const auto breaches = RuleEvaluator::evaluate({rule}, [&](Seconds window) { return ledger.totals(window, now); });
    FUZZ_CHECK(NotificationComposer::mergedPlan(breaches, std::nullopt).apps.size() == breaches.size());
}

void checkLedger(const UsageLedger::Snapshot& snapshot)
{
    constexpr Seconds retention{3'600};
    const Date now = snapshot.buckets.empty() ? Date{} : snapshot.buckets.front().at;
    UsageLedger ledger{retention, Seconds{5}, CountDirection::both};
    ledger.restore(snapshot.buckets, now);
    FUZZ_CHECK(ledger.snapshot().buckets.size() <= snapshot.buckets.size());
    for (const auto& bucket : ledger.snapshot().buckets) FUZZ_CHECK(bucket.at >= now - retention);
    for (const Seconds window : {retention, Seconds{60}}) {
        for (const auto& usage : ledger.totals(window, now)) {
            FUZZ_CHECK(ledger.total(usage.app, window, now) == usage.bytes);
        }
    }
    checkMessage(ledger, now);
    for (const auto& usage : ledger.totals(retention, now)) ledger.clear(usage.app);
    FUZZ_CHECK(ledger.totals(retention, now).empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    const auto json = parseJson(text);
    const auto read = decodeJson<UsageLedger::Snapshot>(text);
    FUZZ_CHECK(read.has_value() <= json.has_value());
    if (!json) return 0;

    const auto written = dumpJson(*json);
    FUZZ_CHECK(written.has_value());
    FUZZ_CHECK(!fuzz::contains(*written, "\n"));
    FUZZ_CHECK(parseJson(*written) == json);

    const auto snapshot = fromJson<UsageLedger::Snapshot>(*json);
    FUZZ_CHECK(read == snapshot);
    if (!snapshot) return 0;
    const auto saved = encodeJson(*snapshot);
    FUZZ_CHECK(saved.has_value());
    FUZZ_CHECK(saved == dumpJson(toJson(*snapshot)));
    FUZZ_CHECK(decodeJson<UsageLedger::Snapshot>(*saved) == snapshot);
    FUZZ_CHECK(fromJson<UsageLedger::Snapshot>(parseJson(*saved).value()) == snapshot);
    checkLedger(*snapshot);
    return 0;
}
