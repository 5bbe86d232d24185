#include "QuellonCore/Support/Fatal.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace quellon {

namespace {

std::atomic<void (*)()> cleanupBeforeEnd{nullptr};

} // namespace

void setFatalCleanup(void (*cleanup)())
{
    cleanupBeforeEnd = cleanup;
}

void fatal(std::string_view what)
{
    // Taken out first: a clean-up that fails comes here again.
    if (auto* const cleanup = cleanupBeforeEnd.exchange(nullptr)) cleanup();
    constexpr int softwareError = 70;
    std::fprintf(stderr, "fatal: %.*s\n", static_cast<int>(what.size()), what.data());
    std::fflush(nullptr);
    std::_Exit(softwareError);
}

} // namespace quellon
