#pragma once

#include "QuellonCore/Support/Time.h"
#include "QuellonHost/Posix/Descriptor.h"

#include <chrono>
#include <cstddef>
#include <span>

namespace quellon {

/// A moment of steady time.
using Deadline = std::chrono::steady_clock::time_point;

/// `timeout` from now. A century is the most.
[[nodiscard]] Deadline deadlineAfter(Seconds timeout);

/// Ends waits on other threads, once and for all.
class Interruption {
public:
    Interruption();
    /// Any thread.
    void interrupt();
    /// Readable when interrupted.
    [[nodiscard]] int descriptor() const { return pipe_.readEnd.get(); }

private:
    Pipe pipe_;
};

enum class WaitEnd { ready, deadline, interrupted };

/// Waits until the descriptor has one of the poll events, is at its end or broken, or until the wait ends otherwise.
/// An interruption wins over the rest, and a deadline that has passed over what is ready.
[[nodiscard]] WaitEnd waitFor(int descriptor, short events, Deadline deadline, const Interruption& interruption);

/// What one read gave.
struct ReadStep {
    WaitEnd wait = WaitEnd::ready;
    std::size_t count = 0; ///< With `ready`: 0 is the end of file.
};

/// Waits for bytes and reads what is there, at most a buffer full. An error counts as the end of file.
[[nodiscard]] ReadStep readStep(int descriptor, std::span<char> buffer, Deadline deadline,
                                const Interruption& interruption);

} // namespace quellon
