#include "InternetTrap.h"

#include <array>
#include <bit>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quellon::InternetTrap {

namespace {

constexpr unsigned callNumber = offsetof(seccomp_data, nr);
/// The lower half of the first argument.
constexpr unsigned family = offsetof(seccomp_data, args) + (std::endian::native == std::endian::big ? 4 : 0);

constexpr sock_filter load(unsigned offset)
{
    return {BPF_LD | BPF_W | BPF_ABS, 0, 0, offset};
}

constexpr sock_filter skipIf(unsigned value, unsigned char ifEqual, unsigned char otherwise)
{
    return {BPF_JMP | BPF_JEQ | BPF_K, ifEqual, otherwise, value};
}

constexpr sock_filter give(unsigned result)
{
    return {BPF_RET | BPF_K, 0, 0, result};
}

} // namespace

void arm()
{
    std::array<sock_filter, 7> filter{
        load(callNumber),
        skipIf(SYS_socket, 0, 3),
        load(family),
        skipIf(AF_INET, 2, 0),
        skipIf(AF_INET6, 1, 0),
        give(SECCOMP_RET_ALLOW),
        give(SECCOMP_RET_KILL_PROCESS),
    };
    const sock_fprog program{filter.size(), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1UL, 0UL, 0UL, 0UL) != 0) _exit(126);
    if (prctl(PR_SET_SECCOMP, static_cast<unsigned long>(SECCOMP_MODE_FILTER), &program, 0UL, 0UL) != 0) _exit(126);
}

} // namespace quellon::InternetTrap
