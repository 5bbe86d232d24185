#pragma once

#include "QuellonCore/Host/RunLoop.h"

#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quellon {

/// Carries signals out of handler context: a handler notes the arrival and wakes the run loop, which asks for what has
/// arrived. A handler rather than "ignored", because a child process inherits the latter. One at a time a process.
///
/// `terminate` stands for SIGTERM, for SIGHUP (the terminal has gone) and for SIGQUIT (Ctrl-\). SIGHUP stays ignored
/// where it was, which is what nohup asks for.
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
    static constexpr std::size_t signalCount = 2; ///< Of RunLoop::Signal.
    static constexpr std::size_t numberCount = 4; ///< Of the system's signals that they stand for.

    std::array<std::vector<std::weak_ptr<RunLoop::Work>>, signalCount> works_;
    std::array<std::optional<struct sigaction>, numberCount> before_; ///< Of the signals that are taken.

    void take(RunLoop::Signal signal);
};

} // namespace quellon
