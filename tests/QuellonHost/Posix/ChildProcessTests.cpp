#include "QuellonHost/Posix/ChildProcess.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon {
namespace {

/// What a shell that runs the script writes to its standard output.
std::string said(const std::string& script)
{
    auto child = ChildProcess::start({"/bin/sh", {"-c", script}}, {});
    if (!child) return "not started";
    std::string result;
    char byte = 0;
    while (read(child->output.get(), &byte, 1) == 1) result += byte;
    child->awaitExit();
    EXPECT_TRUE(child->reap(Deadline{}));
    return result;
}

/// Has a signal ignored by this process while it lives.
class Ignored {
public:
    explicit Ignored(int signal) : signal_{signal}, before_{std::signal(signal, SIG_IGN)} {}
    Ignored(const Ignored&) = delete;
    Ignored& operator=(const Ignored&) = delete;
    ~Ignored() { (void)std::signal(signal_, before_); }

private:
    int signal_;
    void (*before_)(int);
};

TEST(ChildProcess, noDescriptorButTheStandardOnesIsInherited)
{
    // As a library opens one that thinks of no children.
    const Descriptor open{::open("/dev/null", O_RDONLY)}; // NOLINT: without O_CLOEXEC
    ASSERT_GT(open.get(), STDERR_FILENO);
    const std::string place = "/dev/fd/" + std::to_string(open.get());
    ASSERT_EQ(access(place.c_str(), F_OK), 0) << "the way to look works";
    EXPECT_EQ(said("test -e " + place + " && echo open || echo closed"), "closed\n");
}

TEST(ChildProcess, whatWeIgnoreEndsAChildAllTheSame)
{
    struct Case {
        const char* name;
        int signal;
        bool isIgnored;
    };
    constexpr Case cases[] = {
        {"INT", SIGINT, false},   {"QUIT", SIGQUIT, false}, {"TERM", SIGTERM, false},
        {"PIPE", SIGPIPE, false}, {"USR1", SIGUSR1, false}, {"what nohup has ignored: HUP", SIGHUP, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Ignored ignored{c.signal};
        EXPECT_EQ(said("kill -" + std::to_string(c.signal) + " $$; echo ignored"), c.isIgnored ? "ignored\n" : "");
    }
}

TEST(ChildProcess, itsInputDoesNotEndBeforeItDoes)
{
    auto child = ChildProcess::startDetached({"/bin/sh", {"-c", "read -r end"}}, true);
    ASSERT_TRUE(child);
    const pid_t pid = child->pid();
    const int input = child->input.get();
    child.reset();
    ASSERT_NE(fcntl(input, F_GETFD), -1);
    ChildProcess::reapLeftovers();
    EXPECT_NE(fcntl(input, F_GETFD), -1) << "it still runs";
    kill(pid, SIGKILL);
    siginfo_t info{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT), 0);
    ChildProcess::reapLeftovers();
    EXPECT_EQ(fcntl(input, F_GETFD), -1) << "it was reaped";
}

} // namespace
} // namespace quellon
