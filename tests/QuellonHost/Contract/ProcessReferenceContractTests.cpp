#include "QuellonHost/SystemHost.h"
#include "ScriptedHost.h"

#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon {
namespace {

/// A child that does nothing, and this user's right over it.
class RealProcess {
public:
    RealProcess()
    {
        pid_ = fork();
        if (pid_ == 0) {
            for (;;) pause();
        }
    }
    RealProcess(const RealProcess&) = delete;
    RealProcess& operator=(const RealProcess&) = delete;
    ~RealProcess()
    {
        if (!ended_) ::kill(pid_, SIGKILL);
        reap();
    }
    [[nodiscard]] ProcessControl& processes() { return host_.processes; }
    [[nodiscard]] std::int32_t pid() const { return pid_; }
    [[nodiscard]] bool isStopped()
    {
        int status = 0;
        return waitpid(pid_, &status, WUNTRACED) == pid_ && WIFSTOPPED(status);
    }
    [[nodiscard]] bool isContinued()
    {
        int status = 0;
        return waitpid(pid_, &status, WCONTINUED) == pid_ && WIFCONTINUED(status);
    }
    /// Waits for the end.
    void reap()
    {
        if (!ended_) waitpid(pid_, nullptr, 0);
        ended_ = true;
    }

private:
    SystemHost system_;
    Host host_ = system_.host();
    pid_t pid_ = 0;
    bool ended_ = false;
};

class ScriptedOne {
public:
    ScriptedOne() { world_.process(501, {.start = "A"}); }
    [[nodiscard]] ProcessControl& processes() { return host_.processes; }
    [[nodiscard]] std::int32_t pid() const { return 501; }
    [[nodiscard]] bool isStopped() { return world_.process(501).stopped; }
    [[nodiscard]] bool isContinued() { return !world_.process(501).stopped; }
    void reap() {}

private:
    ScriptedHost world_;
    Host host_ = world_.host();
};

template <typename World>
class ProcessReferenceContract : public ::testing::Test {
protected:
    World world;
    std::unique_ptr<ProcessReference> process = world.processes().reference(world.pid());
};
using Worlds = ::testing::Types<RealProcess, ScriptedOne>;
TYPED_TEST_SUITE(ProcessReferenceContract, Worlds);

TYPED_TEST(ProcessReferenceContract, freezesAndThaws)
{
    EXPECT_EQ(this->process->pid(), this->world.pid());
    EXPECT_TRUE(this->process->isAlive());
    EXPECT_TRUE(this->process->send(ProcessSignal::stop));
    EXPECT_TRUE(this->world.isStopped());
    EXPECT_TRUE(this->process->isAlive());
    EXPECT_TRUE(this->process->send(ProcessSignal::continue_));
    EXPECT_TRUE(this->world.isContinued());
}

TYPED_TEST(ProcessReferenceContract, aProcessThatHasEndedIsNotReached)
{
    EXPECT_TRUE(this->process->send(ProcessSignal::terminate));
    this->world.reap();
    EXPECT_FALSE(this->process->isAlive());
    EXPECT_FALSE(this->process->send(ProcessSignal::continue_));
    EXPECT_FALSE(this->world.processes().reference(this->world.pid())->isAlive());
}

TYPED_TEST(ProcessReferenceContract, killEndsAFrozenProcess)
{
    EXPECT_TRUE(this->process->send(ProcessSignal::stop));
    EXPECT_TRUE(this->process->send(ProcessSignal::kill));
    this->world.reap();
    EXPECT_FALSE(this->process->isAlive());
}

TYPED_TEST(ProcessReferenceContract, idsThatAreNoProcess)
{
    // Given to the system as they stand, 0 and -1 would mean this test's group and everybody.
    for (const std::int32_t pid : {0, -1, -this->world.pid(), INT32_MIN, INT32_MAX}) {
        SCOPED_TRACE(pid);
        const auto none = this->world.processes().reference(pid);
        EXPECT_EQ(none->pid(), pid);
        EXPECT_FALSE(none->isAlive());
        EXPECT_FALSE(none->send(ProcessSignal::continue_));
    }
    EXPECT_TRUE(this->process->isAlive());
}

} // namespace
} // namespace quellon
