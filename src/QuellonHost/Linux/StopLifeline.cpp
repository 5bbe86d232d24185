#include "QuellonHost/Linux/StopLifeline.h"

#include "QuellonHost/Posix/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon::StopLifeline {

namespace {

/// A pipe that nobody writes to: it ends when we do.
const std::optional<Pipe>& life()
{
    static const auto& pipe = *new auto(makePipe()); // must not end before the process
    return pipe;
}

void closeRange(int first, int last)
{
    if (first > last || syscall(SYS_close_range, first, last, 0) == 0) return;
    const int most = static_cast<int>(sysconf(_SC_OPEN_MAX)) - 1; // a kernel before 5.9
    for (int descriptor = first; descriptor <= std::min(last, most); ++descriptor) close(descriptor);
}

/// Keeps nothing of ours open other than these two: whoever reads what we print must see our end.
void closeAllBut(int one, int other)
{
    constexpr int last = 0x7FFFFFFF;
    const auto [lower, upper] = std::minmax(one, other);
    closeRange(0, lower - 1);
    closeRange(lower + 1, upper - 1);
    closeRange(upper + 1, last);
}

/// The life of the child, with nothing but what is safe after a fork from many threads.
[[noreturn]] void hold(int process, int end)
{
    setsid(); // the terminal's signals are not meant for it
    if (chdir("/") != 0) _exit(1);
    closeAllBut(process, end);
    pollfd watched{end, POLLIN, 0};
    const int ready = poll(&watched, 1, static_cast<int>(std::chrono::milliseconds{span}.count()));
    if (ready > 0) (void)syscall(SYS_pidfd_send_signal, process, SIGCONT, nullptr, 0);
    _exit(0);
}

} // namespace

void tie(int process)
{
    if (!life()) return;
    const int end = life()->readEnd.get();
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before); // no handler of ours may run in the child
    const pid_t child = fork();
    if (child == 0) {
        // A child of the first process, which reaps it.
        if (fork() != 0) _exit(0);
        hold(process, end);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {}
}

} // namespace quellon::StopLifeline
