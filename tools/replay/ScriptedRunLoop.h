#pragma once

#include "QuellonCore/Host/RunLoop.h"
#include "QuellonCore/Host/Schedule.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace quellon {

/// A run loop in virtual time, which passes in `advance` and in `block` and nowhere else. Background work is ordinary
/// blocking code on a thread of its own, but exactly one thread runs at any moment: the main thread waits while
/// background work computes, and background work that blocks is parked until virtual time has reached its moment. Two
/// runs of one program are therefore alike to the last detail.
class ScriptedRunLoop final : public RunLoop {
public:
    ScriptedRunLoop();
    ~ScriptedRunLoop() override;
    ScriptedRunLoop(const ScriptedRunLoop&) = delete;
    ScriptedRunLoop& operator=(const ScriptedRunLoop&) = delete;

    void post(Work work) override;
    void postAfter(Seconds delay, Work work) override;
    [[nodiscard]] Handle after(Seconds delay, Work work) override;
    [[nodiscard]] Handle every(Seconds interval, Work work) override;
    void background(Work work, Work done) override;
    [[nodiscard]] Handle onSignal(Signal signal, Work work) override;

    /// Lets virtual time pass, and runs in order everything that is due within it, what became due meanwhile included.
    /// 0 runs what is due now. Main thread only, and not from within scheduled work.
    void advance(Seconds duration);

    /// Virtual time since construction. Any thread.
    [[nodiscard]] Seconds elapsed() const;

    /// Runs background work in flight to its end, with every `block` refused, and drops everything that is scheduled,
    /// no `done` called. Destruction does the same; who owns what background work uses calls this first.
    void finish();

    /// The caller waits for this long. In background work, the world goes on meanwhile. On the main thread, only
    /// background work does; what the main thread should have run meanwhile is run late. False when the loop
    /// finishes: then no time has passed and the caller ends as soon as it can.
    [[nodiscard]] bool block(Seconds duration);

    /// A signal arrives; what `onSignal` asked for runs in the next `advance`. False when the signal was never asked
    /// for, in which case it ends a real process.
    [[nodiscard]] bool raise(Signal signal);

    /// As `raise`, but at once, ahead of everything that is due: the main thread was waiting for something to do.
    [[nodiscard]] bool deliver(Signal signal);

    /// The process has ended: nothing is run any more.
    void end() { ended_ = true; }

    /// As `finish`; then a new process begins at this moment of virtual time, with nothing scheduled and no signal
    /// asked for. Main thread only, and not from within scheduled work.
    void restart();

private:
    struct Worker;
    struct Job;
    struct Handlers {
        bool asked = false;
        std::vector<std::weak_ptr<Work>> works;
    };

    Schedule main_;       ///< What the main thread runs. All tickets are its.
    Schedule background_; ///< Where background work begins or goes on.
    std::atomic<Schedule::Moment::rep> now_{0};
    bool ended_ = false;
    bool finishing_ = false;
    std::array<Handlers, 2> signals_;

    std::mutex baton_; ///< Guards who runs: `Worker::running`, and through it all that the threads share.
    std::vector<std::unique_ptr<Worker>> workers_;
    std::vector<Worker*> idle_;

    [[nodiscard]] Schedule::Moment now() const { return Schedule::Moment{now_.load()}; }
    void moveTo(Schedule::Moment moment);
    bool runFirst(Schedule::Moment until);
    void runBackground(Schedule::Moment until);
    void begin(const std::shared_ptr<Job>& job);
    void resume(Worker& worker);
    void park(Worker& worker);
    void serve(Worker& worker);
};

} // namespace quellon
