#include "QuellonHost/Posix/ChildProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

extern char** environ; // NOLINT: POSIX leaves the declaration to the program

namespace quellon {

namespace {

/// A child that had not ended when its owner went on. Its standard input ends no sooner than it does: what it does at
/// the end of that is its owner's to decide.
struct Leftover {
    pid_t pid = 0;
    Descriptor input;
};

struct Leftovers {
    std::mutex lock;
    std::vector<Leftover> children;
};

Leftovers& leftovers()
{
    static auto& instance = *new Leftovers; // background threads may outlive static destruction
    return instance;
}

/// Reaps without waiting. False when the child still runs.
bool reapNow(pid_t pid)
{
    pid_t result = 0;
    do result = waitpid(pid, nullptr, WNOHANG);
    while (result < 0 && errno == EINTR);
    return result != 0; // an error: there is no such child any more
}

/// The attributes and file actions of one start.
class SpawnPlan {
public:
    SpawnPlan()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    /// A child with these ends of our pipes; an `input` below 0 leaves it our own standard input.
    [[nodiscard]] bool fill(int output, int input, bool ownGroup)
    {
        return setAttributes(ownGroup ? POSIX_SPAWN_SETPGROUP : 0) &&
               (input < 0 ? keepInput() : posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO) == 0) &&
               posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO) == 0 && openNull(STDERR_FILENO);
    }

    /// A child in a session of its own, with this end of our pipe; an `input` below 0 leaves it without streams.
    [[nodiscard]] bool fillDetached(int input)
    {
        return setAttributes(POSIX_SPAWN_SETSID) &&
               (input < 0 ? openNull(STDIN_FILENO)
                          : posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO) == 0) &&
               openNull(STDOUT_FILENO) && openNull(STDERR_FILENO);
    }

    /// Closes what is not ours to mark as closed on exec, such as the descriptors of a library. Last of the actions.
    [[nodiscard]] bool closeOthers()
    {
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 34)
        return posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0;
#else
        return true;
#endif
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};

private:
    [[nodiscard]] bool setAttributes(int flags)
    {
        sigset_t defaults;
        sigfillset(&defaults);
        for (const int number : {SIGHUP, SIGTSTP, SIGKILL, SIGSTOP}) sigdelset(&defaults, number);
        sigset_t none;
        sigemptyset(&none);
        flags |= POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
#ifdef __APPLE__
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT; // what no file action names is closed
#endif
        return posix_spawnattr_setsigdefault(&attributes, &defaults) == 0 &&
               posix_spawnattr_setsigmask(&attributes, &none) == 0 && posix_spawnattr_setpgroup(&attributes, 0) == 0 &&
               posix_spawnattr_setflags(&attributes, static_cast<short>(flags)) == 0;
    }

    [[nodiscard]] bool keepInput()
    {
#ifdef __APPLE__
        return posix_spawn_file_actions_addinherit_np(&actions, STDIN_FILENO) == 0;
#else
        return true;
#endif
    }

    [[nodiscard]] bool openNull(int stream)
    {
        const int mode = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY;
        return posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", mode, 0) == 0;
    }
};

/// Starts the command by the plan; absent when that failed.
std::optional<pid_t> spawn(Command command, SpawnPlan& plan)
{
    std::vector<char*> words{command.path.data()};
    for (auto& argument : command.arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    pid_t pid = 0;
    if (!plan.closeOthers()) return std::nullopt;
    if (posix_spawn(&pid, words.front(), &plan.actions, &plan.attributes, words.data(), environ) != 0) {
        return std::nullopt;
    }
    return pid;
}

/// Gives up a child that has not ended.
void leave(Leftover child)
{
    const std::lock_guard guard{leftovers().lock};
    leftovers().children.push_back(std::move(child));
}

} // namespace

std::optional<ChildProcess> ChildProcess::start(const Command& command, Options options)
{
    auto output = makePipe();
    auto input = options.withInput ? makePipe() : Pipe{};
    if (!output || !input) return std::nullopt;
    if (options.withInput) setNonBlocking(input->writeEnd);

    SpawnPlan plan;
    if (!plan.fill(output->writeEnd.get(), input->readEnd.get(), options.ownGroup)) return std::nullopt;
    const auto pid = spawn(command, plan);
    if (!pid) return std::nullopt;
    return ChildProcess{*pid, std::move(output->readEnd), std::move(input->writeEnd)};
}

std::optional<ChildProcess> ChildProcess::startDetached(const Command& command, bool withInput)
{
    auto input = withInput ? makePipe() : Pipe{};
    if (!input) return std::nullopt;
    if (withInput) setNonBlocking(input->writeEnd);

    SpawnPlan plan;
    if (!plan.fillDetached(input->readEnd.get())) return std::nullopt;
    const auto pid = spawn(command, plan);
    if (!pid) return std::nullopt;
    return ChildProcess{*pid, {}, std::move(input->writeEnd)};
}

ChildProcess::ChildProcess(pid_t pid, Descriptor outputEnd, Descriptor inputEnd)
    : output{std::move(outputEnd)}, input{std::move(inputEnd)}, pid_{pid}
{
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : output{std::move(other.output)}, input{std::move(other.input)}, pid_{std::exchange(other.pid_, 0)}
{
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept
{
    std::swap(output, other.output);
    std::swap(input, other.input);
    std::swap(pid_, other.pid_);
    return *this;
}

ChildProcess::~ChildProcess()
{
    if (pid_ != 0 && !reapNow(pid_)) leave({pid_, std::move(input)});
}

void ChildProcess::kill() const
{
    if (pid_ == 0) return;
    (void)::kill(pid_, SIGTERM);
    (void)::kill(pid_, SIGKILL);
}

void ChildProcess::awaitExit() const
{
    if (pid_ == 0) return;
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {}
}

bool ChildProcess::reap(Deadline deadline)
{
    using namespace std::chrono_literals;
    std::chrono::nanoseconds pause = 100us;
    while (pid_ != 0) {
        if (reapNow(pid_)) {
            pid_ = 0;
            break;
        }
        const auto left = deadline - std::chrono::steady_clock::now();
        if (left <= left.zero()) return false;
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(pause, left));
        pause = std::min<std::chrono::nanoseconds>(pause * 2, 20ms);
    }
    return true;
}

void ChildProcess::reapLeftovers()
{
    const std::lock_guard guard{leftovers().lock};
    std::erase_if(leftovers().children, [](const Leftover& child) { return reapNow(child.pid); });
}

} // namespace quellon
