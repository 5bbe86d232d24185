#include "ScriptedRunLoop.h"

#include <algorithm>
#include <utility>

namespace quellon {

struct ScriptedRunLoop::Job {
    Work work;
    Work done;
    Schedule::Ticket ticket = 0; ///< Its place within a moment, wherever it goes on and ends; taken when it begins.
};

struct ScriptedRunLoop::Worker {
    std::condition_variable changed;
    bool running = false; ///< It has the baton.
    bool quits = false;
    std::shared_ptr<Job> job; ///< Absent while idle.
    std::thread thread;
    inline static thread_local Worker* current = nullptr; ///< The worker whose thread this is; null on the main thread.
};

namespace {

/// Keeps the work of `onSignal` alive.
class SignalHandle final : public RunLoop::Scheduled {
public:
    explicit SignalHandle(std::shared_ptr<RunLoop::Work> work) : work_{std::move(work)} {}

private:
    std::shared_ptr<RunLoop::Work> work_;
};

} // namespace

ScriptedRunLoop::ScriptedRunLoop() = default;

ScriptedRunLoop::~ScriptedRunLoop()
{
    finish();
    {
        const std::lock_guard guard{baton_};
        for (const auto& worker : workers_) {
            worker->quits = true;
            worker->changed.notify_all();
        }
    }
    for (const auto& worker : workers_) worker->thread.join();
}

void ScriptedRunLoop::finish()
{
    finishing_ = true;
    ended_ = true;
    background_.clear();
    for (const auto& worker : workers_) {
        while (worker->job) resume(*worker);
    }
    main_.clear();
}

void ScriptedRunLoop::post(Work work)
{
    main_.post(now(), std::move(work));
}

void ScriptedRunLoop::postAfter(Seconds delay, Work work)
{
    main_.post(now() + Schedule::fromSeconds(delay), std::move(work));
}

RunLoop::Handle ScriptedRunLoop::after(Seconds delay, Work work)
{
    return main_.once(now() + Schedule::fromSeconds(delay), std::move(work));
}

RunLoop::Handle ScriptedRunLoop::every(Seconds interval, Work work)
{
    const auto step = Schedule::fromSeconds(interval);
    return main_.repeating(now() + step, step, std::move(work));
}

void ScriptedRunLoop::background(Work work, Work done)
{
    auto job = std::make_shared<Job>(Job{std::move(work), std::move(done)});
    background_.post({now(), main_.takeTicket()}, [this, job = std::move(job)] { begin(job); });
}

RunLoop::Handle ScriptedRunLoop::onSignal(Signal signal, Work work)
{
    auto shared = std::make_shared<Work>(std::move(work));
    auto& handlers = signals_[static_cast<std::size_t>(signal)];
    handlers.asked = true;
    handlers.works.push_back(shared);
    return std::make_unique<SignalHandle>(std::move(shared));
}

bool ScriptedRunLoop::raise(Signal signal)
{
    const auto& handlers = signals_[static_cast<std::size_t>(signal)];
    for (const auto& each : handlers.works) {
        post([each] {
            if (const auto work = each.lock()) (*work)();
        });
    }
    return handlers.asked;
}

bool ScriptedRunLoop::deliver(Signal signal)
{
    const auto handlers = signals_[static_cast<std::size_t>(signal)];
    for (const auto& each : handlers.works) {
        if (const auto work = each.lock()) (*work)();
    }
    return handlers.asked;
}

void ScriptedRunLoop::restart()
{
    finish();
    signals_ = {};
    finishing_ = false;
    ended_ = false;
}

void ScriptedRunLoop::advance(Seconds duration)
{
    const auto until = now() + Schedule::fromSeconds(duration);
    while (!ended_ && runFirst(until)) {}
    if (!ended_) moveTo(until);
}

Seconds ScriptedRunLoop::elapsed() const
{
    return now();
}

bool ScriptedRunLoop::block(Seconds duration)
{
    if (finishing_) return false;
    const auto until = now() + Schedule::fromSeconds(duration);
    if (until == now()) return true;
    if (Worker* const worker = Worker::current) {
        background_.post({until, worker->job->ticket}, [this, worker] { resume(*worker); });
        park(*worker);
        return !finishing_;
    }
    runBackground(until);
    moveTo(until);
    return true;
}

void ScriptedRunLoop::moveTo(Schedule::Moment moment)
{
    now_ = std::max(now(), moment).count();
}

/// Runs the first thing that is due by `until` or by now, whichever is later. False when there is none.
bool ScriptedRunLoop::runFirst(Schedule::Moment until)
{
    const auto onMain = main_.front();
    const auto behind = background_.front();
    const bool inBackground = behind && (!onMain || *behind < *onMain);
    const auto& first = inBackground ? behind : onMain;
    if (!first || first->due > std::max(until, now())) return false;
    moveTo(first->due);
    return (inBackground ? background_ : main_).runNext(now());
}

void ScriptedRunLoop::runBackground(Schedule::Moment until)
{
    for (auto first = background_.front(); first && first->due <= until; first = background_.front()) {
        moveTo(first->due);
        background_.runNext(now());
    }
}

void ScriptedRunLoop::begin(const std::shared_ptr<Job>& job)
{
    job->ticket = main_.takeTicket();
    if (idle_.empty()) {
        workers_.push_back(std::make_unique<Worker>());
        Worker& worker = *workers_.back();
        worker.thread = std::thread{[this, &worker] { serve(worker); }};
        idle_.push_back(&worker);
    }
    Worker& worker = *idle_.back();
    idle_.pop_back();
    worker.job = job;
    resume(worker);
}

/// Gives the baton to the worker and waits until it is back: the job has ended, or is parked.
void ScriptedRunLoop::resume(Worker& worker)
{
    std::unique_lock lock{baton_};
    worker.running = true;
    worker.changed.notify_all();
    worker.changed.wait(lock, [&] { return !worker.running; });
}

/// Gives the baton back and waits until it is this worker's again.
void ScriptedRunLoop::park(Worker& worker)
{
    std::unique_lock lock{baton_};
    worker.running = false;
    worker.changed.notify_all();
    worker.changed.wait(lock, [&] { return worker.running || worker.quits; });
}

void ScriptedRunLoop::serve(Worker& worker)
{
    Worker::current = &worker;
    {
        std::unique_lock lock{baton_};
        worker.changed.wait(lock, [&] { return worker.running || worker.quits; });
    }
    while (!worker.quits) {
        worker.job->work();
        main_.post({now(), worker.job->ticket}, std::move(worker.job->done));
        worker.job.reset();
        idle_.push_back(&worker);
        park(worker);
    }
}

} // namespace quellon
