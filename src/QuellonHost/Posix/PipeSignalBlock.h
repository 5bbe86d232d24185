#pragma once

#include <csignal>

namespace quellon {

/// While it lives, writing into a pipe that nobody reads gives this thread the error EPIPE and not the signal that
/// ends a program. Leaves the process's own disposition alone.
class PipeSignalBlock {
public:
    PipeSignalBlock()
    {
        sigemptyset(&signal_);
        sigaddset(&signal_, SIGPIPE);
        wasPending_ = isPending();
        pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    }
    ~PipeSignalBlock()
    {
        int number = 0;
        if (!wasPending_ && isPending()) sigwait(&signal_, &number);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;

private:
    sigset_t signal_{};
    sigset_t before_{};
    bool wasPending_ = false;

    [[nodiscard]] static bool isPending()
    {
        sigset_t pending;
        return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
    }
};

} // namespace quellon
