#include "QuellonCore/Enforcement/EnforcementHistory.h"

#include "QuellonCore/Support/Checked.h"
#include "QuellonCore/Support/FiledSum.h"

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

using Kind = EnforcementHistory::Kind;
using Record = EnforcementHistory::Record;

/// Calls `use` for each record of the application in the window, in their order.
template <typename Use>
void forEachInWindow(const EnforcementHistory& history, std::string_view app, Date now, Kind kind, Use use)
{
    for (const Record& record : history.records) {
        if (record.app != app || record.at < now - EnforcementHistory::window || record.effectiveKind() != kind)
            continue;
        use(record);
    }
}

std::uint64_t sumInWindow(const EnforcementHistory& history, std::string_view app, Date now, Kind kind)
{
    std::uint64_t sum = 0;
    forEachInWindow(history, app, now, kind, [&sum](const Record& record) { sum = checkedAdd(sum, record.bytes); });
    return sum;
}

bool canBeSummed(const std::vector<Record>& records)
{
    FiledSum sum;
    return std::ranges::all_of(records, [&sum](const Record& record) { return sum.add(record.bytes); });
}

} // namespace

std::size_t EnforcementHistory::count(std::string_view app, Date now) const
{
    std::size_t result = 0;
    forEachInWindow(*this, app, now, Kind::enforced, [&result](const Record& /*record*/) { ++result; });
    return result;
}

std::uint64_t EnforcementHistory::wastedBytes(std::string_view app, Date now) const
{
    return sumInWindow(*this, app, now, Kind::enforced);
}

std::size_t EnforcementHistory::askCount(std::string_view app, Date now, Seconds within) const
{
    std::size_t result = 0;
    forEachInWindow(*this, app, now, Kind::asked, [&](const Record& record) {
        if (record.at >= now - within) ++result;
    });
    return result;
}

std::uint64_t EnforcementHistory::askedBytes(std::string_view app, Date now) const
{
    return sumInWindow(*this, app, now, Kind::asked);
}

std::optional<Record> EnforcementHistory::lastRecord(std::string_view app, Date now) const
{
    const Record* last = nullptr;
    forEachInWindow(*this, app, now, Kind::enforced, [&last](const Record& record) { last = &record; });
    return last != nullptr ? std::optional{*last} : std::nullopt;
}

bool EnforcementHistory::isRepeatOffender(std::string_view app, Date now) const
{
    return isLoop(count(app, now));
}

bool EnforcementHistory::shouldSendNotice(std::string_view app, Date now) const
{
    const auto last = lastNoticeAt.find(app);
    return last == lastNoticeAt.end() || now - last->second >= noticeInterval;
}

void EnforcementHistory::record(std::string app, std::uint64_t bytes, Date at, std::optional<EnforcementAction> action,
                                std::optional<std::string> ruleLabel, bool loopBreaker, Kind kind)
{
    prune(at);
    records.push_back({std::move(app), at, bytes, action, std::move(ruleLabel),
                       loopBreaker ? std::optional{true} : std::nullopt, kind});
}

void EnforcementHistory::prune(Date now)
{
    std::erase_if(records, [now](const Record& record) { return record.at < now - window; });
    std::erase_if(lastNoticeAt, [now](const auto& notice) { return notice.second < now - noticeInterval; });
}

void EnforcementHistory::markNoticed(std::string_view app, Date at)
{
    lastNoticeAt.insert_or_assign(std::string{app}, at);
}

EnforcementAction EnforcementHistory::actionAfterLoopBreaker(EnforcementAction intended, std::size_t count)
{
    const bool ends = intended == EnforcementAction::terminate || intended == EnforcementAction::kill;
    return ends && isLoop(count) ? EnforcementAction::suspend : intended;
}

std::optional<Record> Record::fromJson(const Json& json)
{
    JsonFields fields{json};
    Record record;
    fields.required("app", record.app);
    fields.required("at", record.at);
    fields.required("bytes", record.bytes);
    fields.defaulted("action", record.action);
    fields.defaulted("ruleLabel", record.ruleLabel);
    fields.defaulted("loopBreaker", record.loopBreaker);
    fields.defaulted("kind", record.kind);
    return fields.result(std::move(record));
}

Json Record::toJson() const
{
    Json json = Json::object();
    putField(json, "app", app);
    putField(json, "at", at);
    putField(json, "bytes", bytes);
    putField(json, "action", action);
    putField(json, "ruleLabel", ruleLabel);
    putField(json, "loopBreaker", loopBreaker);
    putField(json, "kind", kind);
    return json;
}

std::optional<EnforcementHistory> EnforcementHistory::fromJson(const Json& json)
{
    JsonFields fields{json};
    EnforcementHistory history;
    fields.defaulted("records", history.records);
    fields.defaulted("lastNoticeAt", history.lastNoticeAt);
    fields.require(canBeSummed(history.records));
    return fields.result(std::move(history));
}

Json EnforcementHistory::toJson() const
{
    Json json = Json::object();
    putField(json, "records", records);
    putField(json, "lastNoticeAt", lastNoticeAt);
    return json;
}

} // namespace quellon
