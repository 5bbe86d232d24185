#include "QuellonHost/Support/StuckLookup.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <mutex>
#include <netdb.h>

namespace quellon::testing {

namespace {

struct State {
    std::mutex lock;
    std::condition_variable changed;
    bool stuck = false;
    int inside = 0;
    bool blocksSignals = false;
};

State& state()
{
    static auto& instance = *new State; // threads of the library may outlive static destruction
    return instance;
}

bool mostSignalsBlocked()
{
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, SIGTERM) == 1 && sigismember(&mask, SIGINT) == 1;
}

void waitWhileStuck()
{
    auto& common = state();
    std::unique_lock guard{common.lock};
    ++common.inside;
    common.blocksSignals = mostSignalsBlocked();
    common.changed.notify_all();
    common.changed.wait(guard, [&] { return !common.stuck; });
    --common.inside;
    common.changed.notify_all();
}

} // namespace

StuckLookup::StuckLookup()
{
    const std::lock_guard guard{state().lock};
    state().stuck = true;
}

StuckLookup::~StuckLookup()
{
    std::unique_lock guard{state().lock};
    state().stuck = false;
    state().changed.notify_all();
    state().changed.wait(guard, [] { return state().inside == 0; });
}

bool StuckLookup::awaitBegin()
{
    std::unique_lock guard{state().lock};
    return state().changed.wait_for(guard, std::chrono::seconds{10}, [] { return state().inside > 0; });
}

bool StuckLookup::blocksSignals()
{
    const std::lock_guard guard{state().lock};
    return state().blocksSignals;
}

} // namespace quellon::testing

extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result)
{
    using quellon::testing::StuckLookup;
    using Lookup = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    const std::string_view name = node == nullptr ? "" : node;
    if (name == StuckLookup::host) quellon::testing::waitWhileStuck();
    if (name == StuckLookup::host || name == StuckLookup::absentHost) return EAI_NONAME;
    const auto system = reinterpret_cast<Lookup>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return system == nullptr ? EAI_FAIL : system(node, service, hints, result);
}
