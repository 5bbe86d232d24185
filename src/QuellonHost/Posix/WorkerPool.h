#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace quellon {

/// Threads for work that may block for long: each piece gets an idle thread or a new one, up to `mostThreads`; beyond
/// that, and when the system has no more to give, it waits for its turn.
class WorkerPool {
public:
    using Work = std::function<void()>;
    static constexpr std::size_t mostThreads = 16;

    /// `onStart` runs first on each thread. All signals are blocked there, so that they go to the main thread.
    explicit WorkerPool(Work onStart);
    /// Drops what has not begun, and waits for what has.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Any thread. While there is no thread at all, since the system gives none, the caller's does the work at once.
    void add(Work work);

private:
    Work onStart_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<Work> queue_;
    std::vector<std::thread> threads_;
    std::size_t idle_ = 0;
    bool ends_ = false;

    void serve();
};

} // namespace quellon
