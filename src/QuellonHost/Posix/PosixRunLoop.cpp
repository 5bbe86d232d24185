#include "QuellonHost/Posix/PosixRunLoop.h"

#include "QuellonCore/Support/Fatal.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <unistd.h>
#include <utility>

namespace quellon {

namespace {

Schedule::Moment steadyNow()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

/// The time until `deadline` for poll, rounded up so that the moment has come afterwards; -1 is for ever.
int pollMilliseconds(const std::optional<Seconds>& deadline)
{
    constexpr double longest = 3'600'000.0;
    if (!deadline) return -1;
    return static_cast<int>(std::min(std::ceil(deadline->count() * 1000.0), longest));
}

Pipe nonBlockingPipe()
{
    auto pipe = makePipe();
    if (!pipe) fatal("no descriptor left for the run loop");
    setNonBlocking(pipe->readEnd);
    setNonBlocking(pipe->writeEnd);
    return std::move(*pipe);
}

} // namespace

PosixRunLoop::PosixRunLoop(std::function<void()> onWorkerStart)
    : wake_{nonBlockingPipe()}, signals_{wake_.writeEnd.get()}, workers_{std::move(onWorkerStart)}
{
}

PosixRunLoop::~PosixRunLoop() = default;

void PosixRunLoop::post(Work work)
{
    schedule_.post(steadyNow(), std::move(work));
    wake();
}

void PosixRunLoop::postAfter(Seconds delay, Work work)
{
    schedule_.post(steadyNow() + Schedule::fromSeconds(delay), std::move(work));
    wake();
}

RunLoop::Handle PosixRunLoop::after(Seconds delay, Work work)
{
    auto handle = schedule_.once(steadyNow() + Schedule::fromSeconds(delay), std::move(work));
    wake();
    return handle;
}

RunLoop::Handle PosixRunLoop::every(Seconds interval, Work work)
{
    const auto step = Schedule::fromSeconds(interval);
    auto handle = schedule_.repeating(steadyNow() + step, step, std::move(work));
    wake();
    return handle;
}

void PosixRunLoop::background(Work work, Work done)
{
    workers_.add([this, work = std::move(work), done = std::move(done)]() mutable {
        work();
        work = nullptr; // on this thread, before the main thread can know that it is over
        post(std::move(done));
    });
}

RunLoop::Handle PosixRunLoop::onSignal(Signal signal, Work work)
{
    return signals_.add(signal, std::move(work));
}

void PosixRunLoop::run()
{
    while (!quit_) {
        watches_.wait(descriptor(), pollMilliseconds(nextDeadline()));
        turn();
        while (!quit_ && watches_.runNext()) {}
    }
}

void PosixRunLoop::quit()
{
    quit_ = true;
    wake();
}

std::optional<Seconds> PosixRunLoop::nextDeadline() const
{
    const auto first = schedule_.front();
    if (!first) return std::nullopt;
    return std::max(Seconds{0}, Seconds{first->due - steadyNow()});
}

void PosixRunLoop::turn()
{
    drainWake();
    signals_.collect([this](Work work) { schedule_.post(steadyNow(), std::move(work)); });
    const auto now = steadyNow();
    const auto limit = schedule_.takeTicket();
    while (!quit_ && schedule_.runNext(now, limit)) {}
}

/// One byte is enough for any number of calls until `drainWake`.
void PosixRunLoop::wake()
{
    if (woken_.exchange(true)) return;
    const char byte = 0;
    // A pipe that is full of signals' bytes wakes as well.
    if (write(wake_.writeEnd.get(), &byte, 1) < 0) woken_ = false;
}

/// Must come before looking for what is due: whoever schedules something later wakes again.
void PosixRunLoop::drainWake()
{
    std::array<char, 64> bytes{};
    while (read(descriptor(), bytes.data(), bytes.size()) > 0) {}
    woken_ = false;
}

} // namespace quellon
