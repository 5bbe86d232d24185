#include "QuellonHost/Posix/Waiting.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "QuellonHost/SystemHost.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;

/// Waits until it holds; false when that takes too long.
bool comesTrue(const std::function<bool()>& holds)
{
    const Deadline deadline = deadlineAfter(Seconds{20.0});
    while (!holds()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

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
    /// Waits until the next thing happens to it; whether that is the one, and came in time.
    [[nodiscard]] bool isStoppedNext() const
    {
        const int status = nextStatus();
        return status != nothing && WIFSTOPPED(status);
    }
    [[nodiscard]] bool isContinuedNext() const
    {
        const int status = nextStatus();
        return status != nothing && WIFCONTINUED(status);
    }
    /// Whether it was left as it is so far.
    [[nodiscard]] bool isUntouched() const { return waitpid(pid_, nullptr, WUNTRACED | WCONTINUED | WNOHANG) == 0; }

private:
    static constexpr int nothing = 0; // which would be an orderly end; nobody ends so here

    [[nodiscard]] int nextStatus() const
    {
        int status = nothing;
        (void)comesTrue([&] { return waitpid(pid_, &status, WUNTRACED | WCONTINUED | WNOHANG) != 0; });
        return status;
    }

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
        if (pid_ != 0) dieOf(SIGKILL);
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
        waitpid(std::exchange(pid_, 0), nullptr, 0);
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

TEST_F(LifelineTest, endsWithTheGuardWhateverElseThatStarted)
{
    const testing::TemporaryFolder folder;
    const auto place = folder / "pid";
    OtherGuard guard{[&] {
        static const auto one = processes.lifeline({first.pid()});
        static const auto other = processes.lifeline({second.pid()});
        (void)processes.spawnDetached({"/bin/sh", {"-c", "echo $$ > " + place.string() + "; exec sleep 60"}});
        for (const std::int32_t pid : both) ::kill(pid, SIGSTOP);
    }};
    EXPECT_FALSE(guard.isAlone());
    pid_t outliving = 0;
    EXPECT_TRUE(comesTrue([&] { return bool{std::ifstream{place} >> outliving}; }));
    ASSERT_TRUE(first.isStoppedNext());
    ASSERT_TRUE(second.isStoppedNext());
    guard.dieOf(SIGKILL);
    EXPECT_TRUE(first.isContinuedNext());
    EXPECT_TRUE(second.isContinuedNext());
    ASSERT_GT(outliving, 0);
    EXPECT_EQ(::kill(outliving, SIGKILL), 0) << "it has outlived the guard";
}

TEST_F(LifelineTest, reachesTheOthersWhenOneIsGone)
{
    const auto gone = std::make_unique<Victim>()->pid();
    OtherGuard guard{[&] {
        static const auto lifeline = processes.lifeline({gone, first.pid(), gone, second.pid()});
        for (const std::int32_t pid : both) ::kill(pid, SIGSTOP);
    }};
    EXPECT_FALSE(guard.isAlone());
    ASSERT_TRUE(first.isStoppedNext());
    ASSERT_TRUE(second.isStoppedNext());
    guard.dieOf(SIGKILL);
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

TEST_F(LifelineTest, isOfThousandsButNotOfMoreThanASystemCouldRun)
{
    EXPECT_NE(processes.lifeline(std::vector<std::int32_t>(10'000, first.pid())), nullptr);
    EXPECT_EQ(processes.lifeline(std::vector<std::int32_t>(200'000, first.pid())), nullptr)
        << "nothing can be started with so long an argument";
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
