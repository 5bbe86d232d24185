#include "QuellonHost/Posix/Waiting.h"

#include "QuellonCore/Host/Schedule.h"
#include "QuellonCore/Support/Fatal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace quellon {

namespace {

/// For poll, rounded up, so that the deadline has passed afterwards.
int millisecondsUntil(Deadline deadline)
{
    using std::chrono::milliseconds;
    constexpr milliseconds longest = std::chrono::hours{1};
    const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp(left, milliseconds::zero(), longest).count());
}

} // namespace

Deadline deadlineAfter(Seconds timeout)
{
    return std::chrono::steady_clock::now() +
           std::chrono::duration_cast<Deadline::duration>(Schedule::fromSeconds(timeout));
}

Interruption::Interruption()
{
    auto pipe = makePipe();
    if (!pipe) fatal("no descriptor left for child processes");
    pipe_ = std::move(*pipe);
    setNonBlocking(pipe_.writeEnd);
}

void Interruption::interrupt()
{
    const char byte = 0;                                   // never read, so every wait sees it
    if (write(pipe_.writeEnd.get(), &byte, 1) < 0) return; // full, thus seen
}

WaitEnd waitFor(int descriptor, short events, Deadline deadline, const Interruption& interruption)
{
    while (true) {
        std::array<pollfd, 2> waited{{{descriptor, events, 0}, {interruption.descriptor(), POLLIN, 0}}};
        const int ready = poll(waited.data(), waited.size(), millisecondsUntil(deadline));
        if (ready > 0 && waited[1].revents != 0) return WaitEnd::interrupted;
        if (std::chrono::steady_clock::now() >= deadline) return WaitEnd::deadline;
        if (ready > 0) return WaitEnd::ready;
    }
}

ReadStep readStep(int descriptor, std::span<char> buffer, Deadline deadline, const Interruption& interruption)
{
    while (true) {
        const WaitEnd end = waitFor(descriptor, POLLIN, deadline, interruption);
        if (end != WaitEnd::ready) return {end};
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count >= 0) return {WaitEnd::ready, static_cast<std::size_t>(count)};
        if (errno != EINTR && errno != EAGAIN) return {WaitEnd::ready, 0};
    }
}

} // namespace quellon
