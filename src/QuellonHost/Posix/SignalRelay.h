#pragma once

#include "QuellonCore/Host/RunLoop.h"

#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <vector>

namespace quellon {

/// Carries signals out of handler context: a handler notes the arrival and wakes the run loop, which asks for what has
/// arrived. A handler rather than "ignored", because a child process inherits the latter. One at a time a process.
class SignalRelay {
public:
    /// `wakeDescriptor`, non-blocking, gets a byte when a signal has arrived.
    explicit SignalRelay(int wakeDescriptor);
    /// Gives the signals back their earlier dispositions.
    ~SignalRelay();
    SignalRelay(const SignalRelay&) = delete;
    SignalRelay& operator=(const SignalRelay&) = delete;

    /// `work` is called for arrivals from now on, until the handle, which may outlive the relay, is destroyed.
    [[nodiscard]] RunLoop::Handle add(RunLoop::Signal signal, RunLoop::Work work);

    /// Gives each piece of work for each signal that has arrived since the last call to `post`. Arrivals that came
    /// together count as one.
    void collect(const std::function<void(RunLoop::Work)>& post);

private:
    struct Slot {
        bool taken = false;
        struct sigaction before {};
        std::vector<std::weak_ptr<RunLoop::Work>> works;
    };
    std::array<Slot, 2> slots_;
};

} // namespace quellon
