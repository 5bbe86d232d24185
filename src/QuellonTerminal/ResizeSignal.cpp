#include "QuellonTerminal/ResizeSignal.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace quellon {

namespace {

// A handler can be given nothing, so the pipe's end for writing is a variable of the process.
volatile std::sig_atomic_t writeEnd = -1;

extern "C" void noteResize(int /*signal*/)
{
    const int before = errno;
    const char byte = 0;
    const ssize_t written = write(writeEnd, &byte, 1); // a full pipe has news enough
    static_cast<void>(written);
    errno = before;
}

void prepare(int descriptor)
{
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

} // namespace

ResizeSignal::ResizeSignal()
{
    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) != 0) return;
    prepare(ends[0]);
    prepare(ends[1]);
    readEnd_ = ends[0];
    writeEnd = ends[1];
    struct sigaction action {};
    action.sa_handler = noteResize;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGWINCH, &action, &before_);
}

ResizeSignal::~ResizeSignal()
{
    if (readEnd_ < 0) return;
    sigaction(SIGWINCH, &before_, nullptr);
    close(writeEnd);
    close(readEnd_);
}

void ResizeSignal::drain()
{
    std::array<char, 64> bytes{};
    while (read(readEnd_, bytes.data(), bytes.size()) > 0) {}
}

} // namespace quellon
