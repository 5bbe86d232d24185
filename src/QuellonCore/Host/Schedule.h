#pragma once

#include "QuellonCore/Host/RunLoop.h"

#include <chrono>
#include <compare>
#include <cstdint>
#include <memory>
#include <optional>

namespace quellon {

/// What a run loop has to do and when: the part that real and scripted loops share. Work is ordered by its due moment,
/// and within one moment by the order in which it was scheduled; a repeating timer counts as scheduled anew at each of
/// its calls, just before the call. Safe from any thread, except that work runs only where `runNext` is called, and
/// that handles belong to that thread too. Handles may outlive the schedule.
class Schedule {
public:
    /// A moment as the time since an origin of the owner's choice.
    using Moment = std::chrono::nanoseconds;
    using Ticket = std::uint64_t;
    /// Where something stands in the order.
    struct Place {
        Moment due{};
        Ticket ticket = 0;
        auto operator<=>(const Place&) const = default;
    };

    Schedule();
    ~Schedule();
    Schedule(const Schedule&) = delete;
    Schedule& operator=(const Schedule&) = delete;

    /// A delay as whole nanoseconds, rounded; negative and not a number give 0, and a hundred years is the most.
    [[nodiscard]] static Moment fromSeconds(Seconds delay);

    /// Schedules `work` once, for good.
    void post(Moment due, RunLoop::Work work);
    /// Schedules `work` once, until the handle is destroyed.
    [[nodiscard]] RunLoop::Handle once(Moment due, RunLoop::Work work);
    /// Schedules `work` first at `due`, then at every multiple of `interval` after it, until the handle is destroyed.
    /// Due moments that have passed when it is called are left out. An interval below a millisecond counts as one.
    [[nodiscard]] RunLoop::Handle repeating(Moment due, Moment interval, RunLoop::Work work);

    /// Schedules `work` once, for good, at a place whose ticket was taken before.
    void post(Place place, RunLoop::Work work);

    /// The place of the first thing; absent when nothing is scheduled.
    [[nodiscard]] std::optional<Place> front() const;

    /// Takes the next ticket. Tickets count up from 0, one for each thing scheduled; what is scheduled later stands
    /// behind this one within the same moment.
    [[nodiscard]] Ticket takeTicket();

    /// Runs the first thing, when it is due at `now` and its ticket is below `limit`. False when there is none.
    bool runNext(Moment now, Ticket limit = UINT64_MAX);

    /// Drops everything.
    void clear();

private:
    struct Entry;
    struct State;
    class Cancellation;
    std::shared_ptr<State> state_;

    RunLoop::Handle add(Moment due, Moment interval, RunLoop::Work work);
};

} // namespace quellon
