#include "QuellonCore/Support/Fatal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace quellon {

namespace {

/// The cleanups that live, oldest first.
struct Cleanups {
    /// Held by `fatal` to the end, so that a second thread that fails does not cut the work short. Recursive, because
    /// that work may fail.
    std::recursive_mutex lock;
    std::vector<std::function<void()>*> works;
};

/// Never freed: a background thread may still fail while the process ends.
Cleanups& cleanups()
{
    static auto* const all = new Cleanups;
    return *all;
}

} // namespace

FatalCleanup::FatalCleanup(std::function<void()> work) : work_(std::move(work))
{
    const std::lock_guard guard{cleanups().lock};
    cleanups().works.push_back(&work_);
}

FatalCleanup::~FatalCleanup()
{
    const std::lock_guard guard{cleanups().lock};
    std::erase(cleanups().works, &work_);
}

void fatal(std::string_view what)
{
    auto& [lock, works] = cleanups();
    const std::lock_guard guard{lock};
    while (!works.empty()) {
        // Taken out first: work that fails comes here again.
        const auto* const work = works.front();
        works.erase(works.begin());
        (*work)();
    }
    constexpr int softwareError = 70;
    std::fprintf(stderr, "fatal: %.*s\n", static_cast<int>(what.size()), what.data());
    std::fflush(nullptr);
    std::_Exit(softwareError);
}

} // namespace quellon
