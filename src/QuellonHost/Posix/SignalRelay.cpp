#include "QuellonHost/Posix/SignalRelay.h"

#include <atomic>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace quellon {

namespace {

/// A signal of the system, and what it arrives as.
struct Meaning {
    int number;
    RunLoop::Signal signal;
};
constexpr std::array<Meaning, 4> meanings{{
    {SIGTERM, RunLoop::Signal::terminate},
    {SIGHUP, RunLoop::Signal::terminate},
    {SIGQUIT, RunLoop::Signal::terminate},
    {SIGINT, RunLoop::Signal::interrupt},
}};

std::atomic<int> wakeDescriptor{-1};
std::array<std::atomic<bool>, 2> arrived{}; // in the order of RunLoop::Signal
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

extern "C" void noteArrival(int number)
{
    const int savedError = errno;
    for (const Meaning& each : meanings) {
        if (each.number == number) arrived[static_cast<std::size_t>(each.signal)] = true;
    }
    const char byte = 0;
    if (write(wakeDescriptor, &byte, 1) < 0) errno = savedError; // a full pipe wakes as well
}

/// Whether the signal was ignored before the program began, and is of those that stay so.
bool staysIgnored(int number)
{
    struct sigaction now {};
    return number == SIGHUP && sigaction(number, nullptr, &now) == 0 && now.sa_handler == SIG_IGN;
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
    for (std::size_t i = 0; i < meanings.size(); ++i) {
        if (before_[i]) (void)sigaction(meanings[i].number, &*before_[i], nullptr);
    }
    wakeDescriptor = -1;
}

RunLoop::Handle SignalRelay::add(RunLoop::Signal signal, RunLoop::Work work)
{
    auto shared = std::make_shared<RunLoop::Work>(std::move(work));
    works_[static_cast<std::size_t>(signal)].push_back(shared);
    take(signal);
    return std::make_unique<KeptWork>(std::move(shared));
}

void SignalRelay::take(RunLoop::Signal signal)
{
    struct sigaction action {};
    action.sa_handler = noteArrival;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < meanings.size(); ++i) {
        const auto [number, meaning] = meanings[i];
        if (meaning != signal || before_[i] || staysIgnored(number)) continue;
        struct sigaction before {};
        if (sigaction(number, &action, &before) == 0) before_[i] = before;
    }
}

void SignalRelay::collect(const std::function<void(RunLoop::Work)>& post)
{
    for (std::size_t i = 0; i < works_.size(); ++i) {
        if (!arrived[i].exchange(false)) continue;
        for (const auto& each : works_[i]) {
            post([each] {
                if (const auto work = each.lock()) (*work)();
            });
        }
    }
}

} // namespace quellon
