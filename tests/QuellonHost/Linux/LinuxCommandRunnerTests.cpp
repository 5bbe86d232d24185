#include "QuellonCore/Enforcement/Enforcer.h"
#include "QuellonHost/Linux/LinuxHost.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "ScriptedParts.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quellon {
namespace {

using namespace std::chrono_literals;
using Outcome = CommandResult::Outcome;

/// A child that waits for its end.
class Child {
public:
    Child() : pid_{fork()}
    {
        if (pid_ != 0) return;
        pause();
        _exit(0);
    }
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    void end()
    {
        if (ended_) return;
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        ended_ = true;
    }

private:
    pid_t pid_;
    bool ended_ = false;
};

std::string bootId()
{
    std::string text;
    std::ifstream{"/proc/sys/kernel/random/boot_id"} >> text;
    return text;
}

class LinuxCommandRunnerTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
    ScriptedLog log;

    static CommandResult ask(CommandRunner& runner, ToolRole role, const std::string& argument)
    {
        return runner.run(Platform::linux().tool(role, {argument}), 20s);
    }
};

TEST_F(LinuxCommandRunnerTest, whoAProcessIsNeedsNoHelper)
{
    LinuxCommandRunner runner{folder / "missing", log};
    Child child;
    const std::string pid = std::to_string(child.pid());
    const auto start = ask(runner, ToolRole::startTime, pid);
    EXPECT_EQ(start.outcome, Outcome::finished);
    EXPECT_TRUE(start.output.starts_with(bootId() + " ")) << start.output;
    EXPECT_TRUE(start.output.ends_with("\n"));
    EXPECT_EQ(ask(runner, ToolRole::startTime, pid), start) << "the same as long as it lives";
    EXPECT_EQ(ask(runner, ToolRole::parent, pid), (CommandResult{Outcome::finished, std::to_string(getpid()) + "\n"}));
    child.end();
    EXPECT_EQ(ask(runner, ToolRole::startTime, pid), (CommandResult{Outcome::finished, ""}));
    EXPECT_EQ(ask(runner, ToolRole::parent, pid), (CommandResult{Outcome::finished, ""}));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(LinuxCommandRunnerTest, whatIsNoProcess)
{
    LinuxCommandRunner runner{folder / "missing", log};
    for (const char* argument : {"", "0", "-1", "+1", "1 ", "self", "../1", "2147483648"}) {
        SCOPED_TRACE(argument);
        EXPECT_EQ(ask(runner, ToolRole::startTime, argument), (CommandResult{Outcome::finished, ""}));
        EXPECT_EQ(ask(runner, ToolRole::parent, argument), (CommandResult{Outcome::finished, ""}));
    }
}

TEST_F(LinuxCommandRunnerTest, allElseIsTheHelpers)
{
    const auto program =
        folder.script("helper", "#!/bin/sh\nwhile read -r line; do printf '%s\\n%s' ${#line} \"$line\"; "
                                "done\n");
    LinuxCommandRunner runner{program, log};
    EXPECT_EQ(runner.run({"quellon-probe", {"start"}}, 20s).output, "start");
    EXPECT_EQ(runner.run({"quellon-probe", {"start", "1", "2"}}, 20s).output, "start 1 2");
    EXPECT_EQ(runner.run({"quellon-probe", {"starts", "1"}}, 20s).output, "starts 1");
    EXPECT_EQ(ask(runner, ToolRole::ifconfig, "wlan0").output, "ifconfig wlan0");
}

TEST_F(LinuxCommandRunnerTest, aHelperThatHangsKeepsNobodyFromKnowingWhoIsWho)
{
    const auto program = folder.script("helper", "#!/bin/sh\nread -r line; echo > \"$0.asked\"; kill -STOP $$\n");
    LinuxCommandRunner runner{program, log};
    std::thread hanging{[&] { (void)runner.run({"quellon-probe", {"nettop"}}, 1'000s); }};
    while (!std::filesystem::exists(program.string() + ".asked")) std::this_thread::yield();
    const std::string self = std::to_string(getpid());
    EXPECT_EQ(ask(runner, ToolRole::parent, self).output, std::to_string(getppid()) + "\n");
    EXPECT_TRUE(ask(runner, ToolRole::startTime, self).output.starts_with(bootId()));
    runner.cancel();
    hanging.join();
}

TEST_F(LinuxCommandRunnerTest, theEnforcerTellsProcessesApartWithoutAHelper)
{
    LinuxHost system{folder / "missing"};
    const Host host = system.host();
    Child first;
    const auto start = Enforcer::startTime(host, first.pid());
    ASSERT_TRUE(start);
    EXPECT_NE(Enforcer::verified(host, first.pid(), *start), nullptr);
    EXPECT_EQ(Enforcer::verified(host, first.pid(), *start + "0"), nullptr);
    first.end();
    EXPECT_EQ(Enforcer::verified(host, first.pid(), *start), nullptr);
    EXPECT_TRUE(Enforcer::selfPIDChain(host).contains(getppid()) || getppid() <= 1);
}

} // namespace
} // namespace quellon
