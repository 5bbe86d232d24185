#include "QuellonHost/Posix/BackgroundThread.h"

#include <csignal>
#include <system_error>
#include <utility>

namespace quellon {

std::thread startBackgroundThread(std::function<void()> body)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before); // a thread begins with the mask of the one that makes it
    std::thread result;
    try {
        result = std::thread{std::move(body)};
    } catch (const std::system_error&) { // at the limit of tasks, or of memory
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return result;
}

} // namespace quellon
