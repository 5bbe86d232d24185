#include "QuellonHost/Posix/Descriptor.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace quellon {

namespace {

/// A pipe whose ends are closed on exec. Where the system can't make one in a single step, a child started by another
/// thread in between may inherit it.
bool closeOnExecPipe(std::array<int, 2>& ends)
{
#ifdef __APPLE__
    if (pipe(ends.data()) != 0) return false;
    for (const int end : ends) (void)fcntl(end, F_SETFD, FD_CLOEXEC);
    return true;
#else
    return pipe2(ends.data(), O_CLOEXEC) == 0;
#endif
}

/// The same file under a number above the standard descriptors, which a child gets replaced.
Descriptor aboveStandard(Descriptor descriptor)
{
    if (descriptor.get() > STDERR_FILENO) return descriptor;
    return Descriptor{fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1)};
}

} // namespace

bool Descriptor::close()
{
    if (number_ < 0) return true;
    // Whatever it says, the number is free afterwards.
    return ::close(std::exchange(number_, -1)) == 0 || errno == EINTR;
}

std::optional<Pipe> makePipe()
{
    std::array<int, 2> ends{};
    if (!closeOnExecPipe(ends)) return std::nullopt;
    Descriptor readEnd{ends[0]};
    Descriptor writeEnd{ends[1]};
    Pipe result{aboveStandard(std::move(readEnd)), aboveStandard(std::move(writeEnd))};
    if (!result.readEnd || !result.writeEnd) return std::nullopt;
    return result;
}

void setNonBlocking(const Descriptor& descriptor)
{
    const int flags = fcntl(descriptor.get(), F_GETFL);
    if (flags >= 0) (void)fcntl(descriptor.get(), F_SETFL, flags | O_NONBLOCK);
}

} // namespace quellon
