#pragma once

#include <csignal>

namespace quellon {

/// Makes a change of the terminal's size readable: while it lives, a SIGWINCH leaves a byte at `descriptor`. One at a
/// time a process.
class ResizeSignal {
public:
    ResizeSignal();
    /// Gives the signal its earlier disposition.
    ~ResizeSignal();
    ResizeSignal(const ResizeSignal&) = delete;
    ResizeSignal& operator=(const ResizeSignal&) = delete;

    /// Readable after a change; negative when the system had no descriptor left, in which case changes go unnoticed.
    [[nodiscard]] int descriptor() const { return readEnd_; }
    /// Takes away what has arrived.
    void drain();

private:
    int readEnd_ = -1;
    struct sigaction before_ {};
};

} // namespace quellon
