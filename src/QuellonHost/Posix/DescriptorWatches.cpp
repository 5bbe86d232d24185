#include "QuellonHost/Posix/DescriptorWatches.h"

#include <cstddef>
#include <poll.h>
#include <utility>

namespace quellon {

namespace {

/// Keeps what it holds alive.
template <typename T>
class Holder final : public RunLoop::Scheduled {
public:
    explicit Holder(std::shared_ptr<T> held) : held_{std::move(held)} {}

private:
    std::shared_ptr<T> held_;
};

} // namespace

RunLoop::Handle DescriptorWatches::add(int descriptor, RunLoop::Work ready)
{
    auto watch = std::make_shared<Watch>(Watch{descriptor, std::move(ready)});
    watches_.push_back(watch);
    return std::make_unique<Holder<Watch>>(std::move(watch));
}

void DescriptorWatches::wait(int wakeDescriptor, int milliseconds)
{
    std::erase_if(watches_, [](const auto& each) { return each.expired(); });
    std::vector<pollfd> waited{{wakeDescriptor, POLLIN, 0}};
    for (const auto& each : watches_) {
        const auto watch = each.lock();
        waited.push_back({watch->descriptor, POLLIN, 0});
    }
    const bool any = poll(waited.data(), static_cast<nfds_t>(waited.size()), milliseconds) > 0;
    for (std::size_t i = 0; i < watches_.size(); ++i) watches_[i].lock()->isReady = any && waited[i + 1].revents != 0;
}

bool DescriptorWatches::runNext()
{
    // By index: work may add a watch, or end one, its own included.
    for (std::size_t i = 0; i < watches_.size(); ++i) {
        const auto watch = watches_[i].lock();
        if (!watch || !watch->isReady) continue;
        watch->isReady = false;
        watch->ready();
        return true;
    }
    return false;
}

} // namespace quellon
