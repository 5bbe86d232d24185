#include "QuellonHost/SystemHost.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quellon {
namespace {

/// A child of the test, frozen and thawed under its eyes.
class Victim {
public:
    Victim() : pid_{fork()}
    {
        while (pid_ == 0) pause();
    }
    Victim(const Victim&) = delete;
    Victim& operator=(const Victim&) = delete;
    ~Victim()
    {
        ::kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    [[nodiscard]] pid_t pid() const { return pid_; }
    /// Waits until the next thing happens to it; whether that is the one.
    [[nodiscard]] bool isStoppedNext() const
    {
        int status = 0;
        return waitpid(pid_, &status, WUNTRACED | WCONTINUED) == pid_ && WIFSTOPPED(status);
    }
    [[nodiscard]] bool isContinuedNext() const
    {
        int status = 0;
        return waitpid(pid_, &status, WUNTRACED | WCONTINUED) == pid_ && WIFCONTINUED(status);
    }
    /// Whether it was left as it is so far.
    [[nodiscard]] bool isUntouched() const { return waitpid(pid_, nullptr, WUNTRACED | WCONTINUED | WNOHANG) == 0; }

private:
    pid_t pid_;
};

/// Another guard, in a process of its own. It has no child but those that its work leaves it.
class OtherGuard {
public:
    template <typename Work>
    explicit OtherGuard(Work work)
    {
        if (pipe(done_) != 0) throw std::runtime_error{"no pipe"};
        pid_ = fork();
        if (pid_ != 0) return;
        work();
        const char isAlone = waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD ? 'y' : 'n';
        (void)!write(done_[1], &isAlone, 1);
        for (;;) pause();
    }
    OtherGuard(const OtherGuard&) = delete;
    OtherGuard& operator=(const OtherGuard&) = delete;
    ~OtherGuard()
    {
        for (const int end : done_) close(end);
    }

    /// Waits until its work is done; whether no child of it is left.
    [[nodiscard]] bool isAlone()
    {
        char answer = 0;
        return read(done_[0], &answer, 1) == 1 && answer == 'y';
    }
    void dieOf(int signal)
    {
        ::kill(pid_, signal);
        waitpid(pid_, nullptr, 0);
    }

private:
    int done_[2]{};
    pid_t pid_ = 0;
};

class LifelineTest : public ::testing::Test {
protected:
    SystemHost system;
    ProcessControl& processes = system.host().processes;
    Victim first;
    Victim second;
    const std::vector<std::int32_t> both{first.pid(), second.pid()};
};

TEST_F(LifelineTest, letsEverybodyGoOnWhenTheGuardDies)
{
    for (const int signal : {SIGKILL, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(signal);
        OtherGuard guard{[&] {
            static const auto lifeline = processes.lifeline(both);
            for (const std::int32_t pid : both) ::kill(pid, SIGSTOP);
        }};
        EXPECT_FALSE(guard.isAlone()) << "there is the lifeline";
        ASSERT_TRUE(first.isStoppedNext());
        ASSERT_TRUE(second.isStoppedNext());
        EXPECT_TRUE(first.isUntouched());
        guard.dieOf(signal);
        EXPECT_TRUE(first.isContinuedNext());
        EXPECT_TRUE(second.isContinuedNext());
    }
}

TEST_F(LifelineTest, isNoneAnyMoreOnceItIsDropped)
{
    OtherGuard guard{[&] {
        auto lifeline = processes.lifeline(both);
        for (const std::int32_t pid : both) ::kill(pid, SIGSTOP);
        lifeline.reset();
    }};
    EXPECT_TRUE(guard.isAlone()) << "so that nobody is left who could thaw anything";
    ASSERT_TRUE(first.isStoppedNext());
    ASSERT_TRUE(second.isStoppedNext());
    guard.dieOf(SIGKILL);
    EXPECT_TRUE(first.isUntouched());
    EXPECT_TRUE(second.isUntouched());
}

TEST_F(LifelineTest, thawsAtOnce)
{
    const auto lifeline = processes.lifeline(both);
    ASSERT_NE(lifeline, nullptr);
    for (const std::int32_t pid : both) ::kill(pid, SIGSTOP);
    EXPECT_TRUE(first.isStoppedNext());
    EXPECT_TRUE(second.isStoppedNext());
    lifeline->thaw();
    EXPECT_TRUE(first.isContinuedNext());
    EXPECT_TRUE(second.isContinuedNext());
}

TEST_F(LifelineTest, ofNobodyThereIsNone)
{
    EXPECT_EQ(processes.lifeline({}), nullptr);
    // Given to a shell as they stand, these would mean this test's group and everybody.
    EXPECT_EQ(processes.lifeline({0, -1, -first.pid()}), nullptr);
    EXPECT_NE(processes.lifeline({0, first.pid()}), nullptr);
}

TEST_F(LifelineTest, whereNothingCanBeStartedThereIsNone)
{
    ProcessControl& control = processes;
    const std::vector<std::int32_t> pids = both;
    ASSERT_NE(control.lifeline(pids), nullptr);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0; // not even a pipe
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const auto lifeline = control.lifeline(pids);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(lifeline, nullptr);
}

} // namespace
} // namespace quellon
