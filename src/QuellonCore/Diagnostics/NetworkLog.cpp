#include "QuellonCore/Diagnostics/NetworkLog.h"

namespace quellon {

NetworkLogEntry NetworkLogEntry::make(const UUID& id, Service service, Action action,
                                      const std::optional<HttpResponse>& response, Date startedAt, Date now)
{
    NetworkLogEntry entry{id, now, service, action, {}, 0, now - startedAt};
    if (response) {
        entry.outcome.status = response->status;
        entry.responseBytes = response->body.size();
    }
    return entry;
}

NetworkLog& NetworkLog::shared()
{
    static NetworkLog log;
    return log;
}

void NetworkLog::record(const NetworkLogEntry& entry)
{
    const std::lock_guard guard{lock_};
    entries_.push_front(entry);
    if (entries_.size() > capacity) entries_.pop_back();
}

std::vector<NetworkLogEntry> NetworkLog::snapshot() const
{
    const std::lock_guard guard{lock_};
    return {entries_.begin(), entries_.end()};
}

void NetworkLog::clear()
{
    const std::lock_guard guard{lock_};
    entries_.clear();
}

} // namespace quellon
