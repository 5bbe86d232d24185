#include "ChildTerminal.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds patience{20};

std::vector<char*> pointers(std::vector<std::string>& texts)
{
    std::vector<char*> result;
    for (std::string& each : texts) result.push_back(each.data());
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> environment(const ChildTerminal::Setup& setup)
{
    std::vector<std::pair<std::string, std::optional<std::string>>> variables{
        {"PATH", "/usr/bin:/bin"},  {"HOME", "/nonexistent"},
        {"LANG", "C.UTF-8"},        {"TZ", "UTC"},
        {"TERM", "xterm-256color"}, {"QUELLON_STATE_DIR", "/nonexistent"}};
    for (const auto& [name, value] : setup.environment) {
        std::erase_if(variables, [&name = name](const auto& each) { return each.first == name; });
        variables.emplace_back(name, value);
    }
    std::vector<std::string> result;
    for (const auto& [name, value] : variables) {
        if (value) result.push_back(name + "=" + *value);
    }
    return result;
}

} // namespace

ChildTerminal::ChildTerminal(const Setup& setup)
{
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) std::abort();
    slave_ = open(ptsname(master_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave_ < 0) std::abort();
    const winsize size{setup.height, setup.width, 0, 0};
    ioctl(slave_, TIOCSWINSZ, &size);
    tcgetattr(slave_, &before_);
    std::vector<std::string> words{setup.program};
    words.insert(words.end(), setup.arguments.begin(), setup.arguments.end());
    std::vector<std::string> variables = environment(setup);
    const auto arguments = pointers(words);
    const auto environmentPointers = pointers(variables);
    child_ = fork();
    if (child_ != 0) return;
    setsid();
    ioctl(slave_, TIOCSCTTY, 0);
    for (int number = 0; number < 3; ++number) dup2(slave_, number);
    if (setup.output >= 0) dup2(setup.output, STDOUT_FILENO);
    for (const int each : setup.ignored) (void)std::signal(each, SIG_IGN);
    if (chdir("/") != 0) _exit(127);
    if (setup.prepare != nullptr) setup.prepare();
    execve(setup.program.c_str(), arguments.data(), environmentPointers.data());
    _exit(127);
}

ChildTerminal::~ChildTerminal()
{
    if (child_ > 0) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    ::close(slave_);
    close();
}

bool ChildTerminal::readSome(int milliseconds)
{
    pollfd waited{master_, POLLIN, 0};
    if (poll(&waited, 1, milliseconds) <= 0) return false;
    std::array<char, 4096> bytes{};
    const ssize_t count = read(master_, bytes.data(), bytes.size());
    if (count <= 0) return false;
    screen_.append(bytes.data(), static_cast<std::size_t>(count));
    return true;
}

bool ChildTerminal::waitFor(std::string_view text)
{
    return waitUntil([&] {
        const auto found = screen_.find(text, seen_);
        if (found == std::string::npos) return false;
        seen_ = found + text.size();
        return true;
    });
}

bool ChildTerminal::waitUntil(const std::function<bool()>& holds)
{
    const auto deadline = Clock::now() + patience;
    while (Clock::now() < deadline) {
        if (holds()) return true;
        readSome(50);
    }
    return false;
}

void ChildTerminal::type(std::string_view keys)
{
    if (write(master_, keys.data(), keys.size()) < 0) std::abort();
}

void ChildTerminal::resize(unsigned short width, unsigned short height)
{
    const winsize size{height, width, 0, 0};
    ioctl(master_, TIOCSWINSZ, &size);
}

void ChildTerminal::signal(int number)
{
    kill(child_, number);
}

void ChildTerminal::close()
{
    if (master_ >= 0) ::close(master_);
    master_ = -1;
}

std::optional<int> ChildTerminal::wait()
{
    const auto deadline = Clock::now() + patience;
    while (Clock::now() < deadline) {
        int status = 0;
        if (waitpid(child_, &status, WNOHANG) == child_) {
            child_ = -1;
            while (readSome(0)) {}
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        readSome(10);
    }
    return std::nullopt;
}

bool ChildTerminal::isRestored() const
{
    termios now{};
    tcgetattr(slave_, &now);
    return now.c_lflag == before_.c_lflag && now.c_iflag == before_.c_iflag && now.c_oflag == before_.c_oflag &&
           now.c_cflag == before_.c_cflag && std::memcmp(now.c_cc, before_.c_cc, sizeof now.c_cc) == 0;
}

} // namespace quellon
