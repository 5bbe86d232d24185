#pragma once

#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace quellon::testing {

/// A limit of this process on tasks, under which no thread can be started.
class NoThreads {
public:
    NoThreads()
    {
        getrlimit(RLIMIT_NPROC, &before_);
        const rlimit none{0, before_.rlim_max};
        setrlimit(RLIMIT_NPROC, &none);
    }
    ~NoThreads() { setrlimit(RLIMIT_NPROC, &before_); }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

    /// Whether the limit holds.
    [[nodiscard]] static bool holds()
    {
        try {
            std::thread{[] {}}.join();
            return false;
        } catch (const std::system_error&) {
            return true;
        }
    }

private:
    rlimit before_{};
};

/// What `check` says in a child process to which limits on tasks apply: they don't to root. False also when the child
/// did not live to say it: an exception ends it, and a minute does.
inline bool inUnprivilegedChild(const std::function<bool()>& check)
{
    constexpr uid_t nobody = 65534;
    const auto says = [&]() noexcept { return (geteuid() != 0 || setuid(nobody) == 0) && check(); };
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        _exit(says() ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace quellon::testing
