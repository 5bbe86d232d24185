#pragma once

#include <functional>
#include <thread>

namespace quellon {

/// A thread that runs `body`, with all signals blocked, so that they go to the main thread. Not joinable when the
/// system has nothing left to make one of.
[[nodiscard]] std::thread startBackgroundThread(std::function<void()> body);

} // namespace quellon
