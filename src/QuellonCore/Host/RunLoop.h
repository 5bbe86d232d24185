#pragma once

#include "QuellonCore/Support/Time.h"

#include <functional>
#include <memory>

namespace quellon {

/// Seam: the main thread's queue, its timers and its signals, and the way off the main thread. All work given to
/// `post`, `after`, `every` and `onSignal`, and every `done`, runs on the main thread, one at a time. Things due at the
/// same moment run in the order in which they were scheduled.
class RunLoop {
public:
    using Work = std::function<void()>;

    /// Something scheduled. Its destruction cancels what has not run yet; both happen on the main thread.
    class Scheduled {
    public:
        virtual ~Scheduled() = default;
    };
    using Handle = std::unique_ptr<Scheduled>;

    /// The signals that ask the program to end. Others that do so, as of a terminal that goes, arrive as `terminate`.
    enum class Signal { terminate, interrupt };

    virtual ~RunLoop() = default;

    /// Runs `work` in a later turn of the main thread. May be called from any thread. What is still queued when the
    /// loop ends is dropped without being run.
    virtual void post(Work work) = 0;

    /// Runs `work` once, after `delay` of steady time, and can't be cancelled. The end of the loop drops it. Any
    /// thread.
    virtual void postAfter(Seconds delay, Work work) = 0;

    /// Runs `work` once, after `delay` of steady time (a change of the wall clock does not matter).
    [[nodiscard]] virtual Handle after(Seconds delay, Work work) = 0;

    /// Runs `work` again and again, first after `interval`. A main thread that was busy over several due moments
    /// gets one call, and the phase is kept.
    [[nodiscard]] virtual Handle every(Seconds interval, Work work) = 0;

    /// Runs `work` on a background thread of low priority, then `done` on the main thread. `work` must not touch what
    /// the main thread owns. When the loop ends first, `done` is dropped.
    virtual void background(Work work, Work done) = 0;

    /// From now on the signal no longer ends the process: `work` runs on the main thread for each arrival (arrivals
    /// that come together may give one call). Destroying the handle leaves the signal without effect.
    [[nodiscard]] virtual Handle onSignal(Signal signal, Work work) = 0;
};

} // namespace quellon
