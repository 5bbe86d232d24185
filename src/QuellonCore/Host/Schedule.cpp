#include "QuellonCore/Host/Schedule.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

namespace quellon {

namespace {

constexpr Schedule::Moment shortestInterval = std::chrono::milliseconds{1};

} // namespace

struct Schedule::Entry {
    Place place;
    Moment interval{}; ///< Zero for what runs once.
    RunLoop::Work work;
};

struct Schedule::State {
    mutable std::mutex lock;
    std::map<Place, std::shared_ptr<Entry>> entries;
    Ticket nextTicket = 0;
};

/// Takes its entry out of the schedule. The entry itself lives on while its work runs, so work may destroy its own
/// handle.
class Schedule::Cancellation final : public RunLoop::Scheduled {
public:
    Cancellation(std::weak_ptr<State> state, std::shared_ptr<Entry> entry)
        : state_{std::move(state)}, entry_{std::move(entry)}
    {
    }
    Cancellation(const Cancellation&) = delete;
    Cancellation& operator=(const Cancellation&) = delete;
    ~Cancellation() override
    {
        const auto state = state_.lock();
        if (!state) return;
        const std::lock_guard guard{state->lock};
        state->entries.erase(entry_->place); // what the work captured goes with `entry_`, after the lock
    }

private:
    std::weak_ptr<State> state_;
    std::shared_ptr<Entry> entry_;
};

Schedule::Schedule() : state_{std::make_shared<State>()} {}

Schedule::~Schedule()
{
    clear();
}

Schedule::Moment Schedule::fromSeconds(Seconds delay)
{
    constexpr Seconds most = std::chrono::hours{24 * 365 * 100};
    if (!(delay.count() > 0.0)) return Moment::zero();
    return std::chrono::round<Moment>(std::min(delay, most));
}

void Schedule::post(Moment due, RunLoop::Work work)
{
    post({due, takeTicket()}, std::move(work));
}

void Schedule::post(Place place, RunLoop::Work work)
{
    auto entry = std::make_shared<Entry>(Entry{place, {}, std::move(work)});
    const std::lock_guard guard{state_->lock};
    state_->entries.emplace(place, std::move(entry));
}

RunLoop::Handle Schedule::once(Moment due, RunLoop::Work work)
{
    return add(due, Moment::zero(), std::move(work));
}

RunLoop::Handle Schedule::repeating(Moment due, Moment interval, RunLoop::Work work)
{
    return add(due, std::max(interval, shortestInterval), std::move(work));
}

RunLoop::Handle Schedule::add(Moment due, Moment interval, RunLoop::Work work)
{
    auto entry = std::make_shared<Entry>(Entry{{due, takeTicket()}, interval, std::move(work)});
    auto handle = std::make_unique<Cancellation>(state_, entry);
    const std::lock_guard guard{state_->lock};
    state_->entries.emplace(entry->place, std::move(entry));
    return handle;
}

std::optional<Schedule::Place> Schedule::front() const
{
    const std::lock_guard guard{state_->lock};
    if (state_->entries.empty()) return std::nullopt;
    return state_->entries.begin()->first;
}

Schedule::Ticket Schedule::takeTicket()
{
    const std::lock_guard guard{state_->lock};
    return state_->nextTicket++;
}

bool Schedule::runNext(Moment now, Ticket limit)
{
    std::shared_ptr<Entry> entry;
    {
        const std::lock_guard guard{state_->lock};
        const auto first = state_->entries.begin();
        if (first == state_->entries.end() || first->first.due > now || first->first.ticket >= limit) return false;
        entry = first->second;
        state_->entries.erase(first);
        if (entry->interval > Moment::zero()) {
            const auto missed = (now - entry->place.due) / entry->interval;
            entry->place = {entry->place.due + entry->interval * (missed + 1), state_->nextTicket++};
            state_->entries.emplace(entry->place, entry);
        }
    }
    if (entry->interval > Moment::zero()) {
        entry->work();
    } else {
        const auto work = std::move(entry->work); // let go of with the call, not with the handle
        work();
    }
    return true;
}

void Schedule::clear()
{
    std::map<Place, std::shared_ptr<Entry>> dropped; // destroyed after the lock: captured handles take it too
    const std::lock_guard guard{state_->lock};
    dropped.swap(state_->entries);
}

} // namespace quellon
