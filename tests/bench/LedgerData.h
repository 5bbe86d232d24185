#pragma once

#include "QuellonCore/Measurement/UsageLedger.h"

#include <fmt/format.h>

#include <cstdint>
#include <deque>
#include <string>

/// Ledgers as a busy machine fills them.
namespace quellon {

/// Which applications move bytes in which sample.
struct LedgerShape {
    int samples;
    int applications; ///< That show up at all.
    int activeEach;   ///< Of these in one sample.
};

inline constexpr Seconds ledgerInterval{5.0};
inline constexpr LedgerShape ledgerDay{17'280, 100, 20};
inline constexpr LedgerShape ledgerHour{720, 40, 40};

/// When the last of the samples was taken.
inline Date ledgerEnd(const LedgerShape& shape)
{
    return Date{Seconds{800'000'000.25}} + ledgerInterval * shape.samples;
}

/// The samples. Every application has two processes at a time, and others every hour.
inline std::deque<UsageLedger::Bucket> ledgerBuckets(const LedgerShape& shape)
{
    constexpr int samplesOfProcess = 720;
    std::deque<UsageLedger::Bucket> buckets;
    for (int sample = 1; sample <= shape.samples; ++sample) {
        UsageLedger::Bucket bucket{Date{Seconds{800'000'000.25}} + ledgerInterval * sample, {}, {}};
        for (int i = 0; i < shape.activeEach; ++i) {
            const int number = (sample * 7 + i) % shape.applications;
            const std::string app = fmt::format("Some Program {}", number);
            const int pid = 1'000 + number * 2 + sample / samplesOfProcess * 1'000;
            bucket.usage[app] = 1'000U + static_cast<std::uint64_t>(sample) * 37U % 100'000U;
            bucket.pids[app] = {pid, pid + 1};
        }
        buckets.push_back(std::move(bucket));
    }
    return buckets;
}

} // namespace quellon
