#include "QuellonHost/Posix/SignalRelay.h"

#include <atomic>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace quellon {

namespace {

constexpr std::array<int, 2> numbers{SIGTERM, SIGINT}; // in the order of RunLoop::Signal

std::atomic<int> wakeDescriptor{-1};
std::array<std::atomic<bool>, 2> arrived{};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

extern "C" void noteArrival(int number)
{
    const int savedError = errno;
    arrived[number == SIGTERM ? 0 : 1] = true;
    const char byte = 0;
    if (write(wakeDescriptor, &byte, 1) < 0) errno = savedError; // a full pipe wakes as well
}

class KeptWork final : public RunLoop::Scheduled {
public:
    explicit KeptWork(std::shared_ptr<RunLoop::Work> work) : work_{std::move(work)} {}

private:
    std::shared_ptr<RunLoop::Work> work_;
};

} // namespace

SignalRelay::SignalRelay(int wakeDescriptorNumber)
{
    wakeDescriptor = wakeDescriptorNumber;
    for (auto& each : arrived) each = false;
}

SignalRelay::~SignalRelay()
{
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (slots_[i].taken) (void)sigaction(numbers[i], &slots_[i].before, nullptr);
    }
    wakeDescriptor = -1;
}

RunLoop::Handle SignalRelay::add(RunLoop::Signal signal, RunLoop::Work work)
{
    const auto index = static_cast<std::size_t>(signal);
    auto& slot = slots_[index];
    auto shared = std::make_shared<RunLoop::Work>(std::move(work));
    slot.works.push_back(shared);
    if (!slot.taken) {
        struct sigaction action {};
        action.sa_handler = noteArrival;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        slot.taken = sigaction(numbers[index], &action, &slot.before) == 0;
    }
    return std::make_unique<KeptWork>(std::move(shared));
}

void SignalRelay::collect(const std::function<void(RunLoop::Work)>& post)
{
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (!arrived[i].exchange(false)) continue;
        for (const auto& each : slots_[i].works) {
            post([each] {
                if (const auto work = each.lock()) (*work)();
            });
        }
    }
}

} // namespace quellon
