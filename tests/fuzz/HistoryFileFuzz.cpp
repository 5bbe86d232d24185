#include "QuellonCore/Enforcement/EnforcementHistory.h"
#include "StateFile.h"

#include <algorithm>

namespace {

using namespace quellon;

void query(const EnforcementHistory& history, std::string_view app, Date now)
{
    const std::size_t enforced = history.count(app, now);
    const std::size_t asked = history.askCount(app, now);
    FUZZ_CHECK(enforced + asked <= history.records.size());
    FUZZ_CHECK(enforced > 0 || history.wastedBytes(app, now) == 0);
    FUZZ_CHECK(asked > 0 || history.askedBytes(app, now) == 0);
    FUZZ_CHECK(history.askCount(app, now, EnforcementHistory::noticeInterval) <= asked);
    FUZZ_CHECK(history.lastRecord(app, now).has_value() == (enforced > 0));
    FUZZ_CHECK(history.isRepeatOffender(app, now) == (enforced > 1));
}

/// A prune changes no answer.
void useAt(const EnforcementHistory& history, Date now)
{
    EnforcementHistory pruned = history;
    pruned.prune(now);
    FUZZ_CHECK(pruned.records.size() <= history.records.size());
    const std::size_t most = std::min<std::size_t>(history.records.size(), 16);
    for (std::size_t i = 0; i < most; ++i) {
        const std::string& app = history.records[i].app;
        query(history, app, now);
        FUZZ_CHECK(pruned.count(app, now) == history.count(app, now));
        FUZZ_CHECK(pruned.askedBytes(app, now) == history.askedBytes(app, now));
        FUZZ_CHECK(pruned.shouldSendNotice(app, now) == history.shouldSendNotice(app, now));
    }
    for (const auto& [app, at] : history.lastNoticeAt) {
        FUZZ_CHECK(pruned.shouldSendNotice(app, now) == history.shouldSendNotice(app, now));
    }
    // What a file holds leaves room for what is recorded later.
    const std::string app = pruned.records.empty() ? "new" : pruned.records.back().app;
    constexpr std::uint64_t much = std::uint64_t{1} << 63;
    pruned.record(app, much, now, EnforcementAction::kill, std::nullopt, false, EnforcementHistory::Kind::enforced);
    FUZZ_CHECK(pruned.lastRecord(app, now).has_value());
    FUZZ_CHECK(pruned.wastedBytes(app, now) >= much);
}

void useHistory(const EnforcementHistory& history)
{
    useAt(history, Date{});
    useAt(history, Date{Seconds{1e300}});
    if (history.records.empty()) return;
    useAt(history, history.records.front().at);
    useAt(history, history.records.back().at + EnforcementHistory::window);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    quellon::fuzz::checkStateFile(data, size, quellon::fromJson<quellon::EnforcementHistory>, useHistory);
    return 0;
}
