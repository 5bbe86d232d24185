#pragma once

#include "QuellonCore/Host/RunLoop.h"
#include "QuellonCore/Host/Schedule.h"
#include "QuellonHost/Posix/Descriptor.h"
#include "QuellonHost/Posix/DescriptorWatches.h"
#include "QuellonHost/Posix/SignalRelay.h"
#include "QuellonHost/Posix/WorkerPool.h"

#include <atomic>
#include <functional>
#include <optional>
#include <utility>

namespace quellon {

/// The run loop of a real process. It belongs to the thread that makes it, and one process has one at a time. Either
/// that thread calls `run`, or another loop (a toolkit's) watches `descriptor` and `nextDeadline` and calls `turn`.
class PosixRunLoop final : public RunLoop {
public:
    /// `onWorkerStart` runs first on each background thread, to lower its priority where a system can do that without
    /// lowering that of the thread's child processes as well.
    explicit PosixRunLoop(std::function<void()> onWorkerStart = {});
    /// Drops what is scheduled and background work that has not begun, and waits for the rest of it: whoever can cut
    /// it short does so first. Signals get the dispositions that they had before.
    ~PosixRunLoop() override;
    PosixRunLoop(const PosixRunLoop&) = delete;
    PosixRunLoop& operator=(const PosixRunLoop&) = delete;

    void post(Work work) override;
    void postAfter(Seconds delay, Work work) override;
    [[nodiscard]] Handle after(Seconds delay, Work work) override;
    [[nodiscard]] Handle every(Seconds interval, Work work) override;
    void background(Work work, Work done) override;
    [[nodiscard]] Handle onSignal(Signal signal, Work work) override;

    /// Runs `ready`, again and again, while the descriptor can be read or its other end is gone, until the handle is
    /// destroyed or the loop ends. Main thread only, and only for a loop that is `run`: another loop watches
    /// descriptors itself.
    [[nodiscard]] Handle watch(int descriptor, Work ready) { return watches_.add(descriptor, std::move(ready)); }

    /// Runs what becomes due, sleeping in between, until `quit`. Returns at once when `quit` came before.
    void run();
    /// Makes `run` return after the work that is running. Any thread.
    void quit();

    /// Readable when `turn` has something to do or `nextDeadline` has moved.
    [[nodiscard]] int descriptor() const { return wake_.readEnd.get(); }
    /// How long from now until something is due, 0 when it already is; absent when nothing is scheduled.
    [[nodiscard]] std::optional<Seconds> nextDeadline() const;
    /// Runs what is due now, and nothing that this very work schedules. Never sleeps. Ends early after `quit`.
    void turn();

private:
    Pipe wake_;
    std::atomic<bool> woken_{false}; ///< A byte is in the pipe, or about to be.
    std::atomic<bool> quit_{false};
    Schedule schedule_;
    DescriptorWatches watches_;
    SignalRelay signals_;
    WorkerPool workers_; ///< Last, so that no background thread outlives what it posts to.

    void wake();
    void drainWake();
};

} // namespace quellon
