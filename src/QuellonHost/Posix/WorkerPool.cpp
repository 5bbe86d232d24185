#include "QuellonHost/Posix/WorkerPool.h"

#include "QuellonHost/Posix/BackgroundThread.h"

#include <utility>

namespace quellon {

WorkerPool::WorkerPool(Work onStart) : onStart_{std::move(onStart)} {}

WorkerPool::~WorkerPool()
{
    std::deque<Work> dropped;
    {
        const std::lock_guard guard{lock_};
        ends_ = true;
        dropped.swap(queue_);
        changed_.notify_all();
    }
    for (auto& thread : threads_) thread.join();
}

void WorkerPool::add(Work work)
{
    std::unique_lock lock{lock_};
    if (ends_) return;
    queue_.push_back(std::move(work));
    if (queue_.size() <= idle_ || threads_.size() == mostThreads) {
        changed_.notify_one();
        return;
    }
    if (auto thread = startBackgroundThread([this] { serve(); }); thread.joinable()) {
        threads_.push_back(std::move(thread));
    } else if (threads_.empty()) { // nobody else would ever come for it
        const Work own = std::move(queue_.back());
        queue_.pop_back();
        lock.unlock();
        own();
    }
}

void WorkerPool::serve()
{
    if (onStart_) onStart_();
    std::unique_lock lock{lock_};
    while (true) {
        ++idle_;
        changed_.wait(lock, [&] { return ends_ || !queue_.empty(); });
        --idle_;
        if (ends_) return;
        Work work = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        work();
        work = nullptr; // what it captured goes without the lock
        lock.lock();
    }
}

} // namespace quellon
