#pragma once

#include "QuellonCore/Host/RunLoop.h"

#include <memory>
#include <vector>

namespace quellon {

/// The descriptors that a run loop waits for beside its own. Main thread only.
class DescriptorWatches {
public:
    /// `ready` belongs to each readiness of the descriptor from now on, until the handle, which may outlive this, is
    /// destroyed.
    [[nodiscard]] RunLoop::Handle add(int descriptor, RunLoop::Work ready);

    /// Waits until `wakeDescriptor` or a watched descriptor can be read, or its other end is gone, or for so many
    /// milliseconds; negative is for ever. May end early, as signals do.
    void wait(int wakeDescriptor, int milliseconds);

    /// Runs the work of the next descriptor that the last wait found ready. False when there is none left.
    bool runNext();

private:
    struct Watch {
        int descriptor;
        RunLoop::Work ready;
        bool isReady = false;
    };
    std::vector<std::weak_ptr<Watch>> watches_;
};

} // namespace quellon
