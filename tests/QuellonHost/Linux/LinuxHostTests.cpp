#include "QuellonHost/Linux/LinuxHost.h"
#include "QuellonHost/Support/TemporaryFolder.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quellon {
namespace {

using namespace std::chrono_literals;

TEST(LinuxProcessControl, processName)
{
    EXPECT_EQ(LinuxProcessControl::processName("/usr/bin/Quellon"), "Quellon");
    EXPECT_EQ(LinuxProcessControl::processName("/usr/bin/Quellon (deleted)"), "Quellon");
    EXPECT_EQ(LinuxProcessControl::processName("/a/b (deleted)/c"), "c");
    EXPECT_EQ(LinuxProcessControl::processName(""), "");
    EXPECT_EQ(LinuxProcessControl{}.processName(), std::filesystem::read_symlink("/proc/self/exe").filename());
}

TEST(LinuxProcessControl, executable)
{
    EXPECT_EQ(LinuxProcessControl::executable(), std::filesystem::canonical("/proc/self/exe"));
}

TEST(LinuxProcessControl, aDetachedChildHasASessionOfItsOwnAndNoStreams)
{
    const testing::TemporaryFolder folder;
    const auto seen = folder.path() / "seen";
    LinuxProcessControl control;
    // Written under another name first, so that the file is whole when it is there.
    const std::string script = "streams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2); cd " +
                               folder.path().string() +
                               " && { echo $$; cut -d' ' -f6 /proc/$$/stat; echo \"$streams\"; } > part; mv part seen";
    ASSERT_TRUE(control.spawnDetached({"/bin/sh", {"-c", script}}));
    const auto patience = std::chrono::steady_clock::now() + 20s;
    while (!std::filesystem::exists(seen) && std::chrono::steady_clock::now() < patience) std::this_thread::yield();

    std::ifstream file{seen};
    std::string pid;
    std::string session;
    std::string streams[3];
    file >> pid >> session >> streams[0] >> streams[1] >> streams[2];
    EXPECT_FALSE(pid.empty());
    EXPECT_EQ(session, pid);
    for (const auto& stream : streams) EXPECT_EQ(stream, "/dev/null");
}

TEST(LinuxProcessControl, aDetachedChildThatCannotBeStarted)
{
    LinuxProcessControl control;
    EXPECT_FALSE(control.spawnDetached({"/no/such/program", {}}));
}

/// As many descriptors as are open now and so many more, until it goes.
class FewDescriptors {
public:
    explicit FewDescriptors(rlim_t more)
    {
        getrlimit(RLIMIT_NOFILE, &before_);
        const int next = dup(STDIN_FILENO);
        close(next);
        rlimit few = before_;
        few.rlim_cur = static_cast<rlim_t>(next) + more;
        setrlimit(RLIMIT_NOFILE, &few);
    }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
};

TEST(LinuxProcessControl, withoutADescriptorForItAProcessCanOnlyBeThawed)
{
    const pid_t child = fork();
    while (child == 0) pause();
    int status = 0;
    LinuxProcessControl control;
    const auto referenceWith = [&](rlim_t descriptors) {
        const FewDescriptors few{descriptors};
        return control.reference(child);
    };
    for (const rlim_t left : {20U, 0U}) { // so few that pipes and files need them more, and none
        SCOPED_TRACE(left);
        const auto process = referenceWith(left);
        EXPECT_EQ(process->pid(), child);
        EXPECT_TRUE(process->isAlive());
        for (const auto signal : {ProcessSignal::stop, ProcessSignal::terminate, ProcessSignal::kill}) {
            EXPECT_FALSE(process->send(signal));
        }
        EXPECT_EQ(waitpid(child, &status, WNOHANG | WUNTRACED), 0) << "nothing has reached it";
        ::kill(child, SIGSTOP);
        EXPECT_EQ(waitpid(child, &status, WUNTRACED), child);
        EXPECT_TRUE(process->send(ProcessSignal::continue_));
        EXPECT_EQ(waitpid(child, &status, WCONTINUED), child);
        EXPECT_TRUE(WIFCONTINUED(status));
    }
    const auto process = control.reference(child);
    EXPECT_TRUE(process->send(ProcessSignal::kill)) << "with enough of them";
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_FALSE(referenceWith(0)->send(ProcessSignal::continue_)) << "it has ended";
}

TEST(LinuxProcessControl, metricsFromTheTexts)
{
    constexpr std::string_view status = "Name:\tVmRSS: 9 kB\nVmRSSX:\t1 kB\nVmRSS:\t   51200 kB\nThreads:\t7\n";
    constexpr std::string_view rollup = "00400000-7ffe rollup\nRss: 51200 kB\nPrivate_Clean:  100 kB\n"
                                        "Private_Dirty: 20000 kB\nSwap: 400 kB\nSwapPss: 9 kB\n";
    struct Case {
        const char* name;
        std::string_view status;
        std::string_view rollup;
        std::optional<ProcessMetrics> metrics;
    };
    const Case cases[] = {
        {"both", status, rollup, ProcessMetrics{52'428'800, 20'992'000, 7}},
        {"no rollup", status, "", ProcessMetrics{52'428'800, 52'428'800, 7}},
        {"no threads", "VmRSS: 1 kB\n", rollup, std::nullopt},
        {"no number of threads", "VmRSS: 1 kB\nThreads:\t\n", rollup, std::nullopt},
        {"no memory", "Threads: 7\n", rollup, std::nullopt},
        {"no number", "VmRSS: kB\n", rollup, std::nullopt},
        {"beyond all numbers", "VmRSS: 99999999999999999999 kB\n", rollup, std::nullopt},
        {"nothing", "", "", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LinuxProcessControl::metrics(c.status, c.rollup), c.metrics);
    }
}

TEST(LinuxProcessControl, metricsSeeMemoryAndThreads)
{
    const LinuxProcessControl control;
    std::thread{[] {}}.join(); // a sanitizer brings up a thread of its own with the first one
    const auto before = control.metrics();
    ASSERT_TRUE(before.has_value());
    constexpr std::size_t size = std::size_t{32} << 20U;
    const std::vector<char> ballast(size, 'x');
    ProcessMetrics during;
    std::thread{[&] { during = control.metrics().value(); }}.join();
    EXPECT_EQ(ballast[size - 1], 'x');
    EXPECT_GE(during.residentBytes, before->residentBytes + size * 9 / 10);
    EXPECT_GE(during.footprintBytes, before->footprintBytes + size * 9 / 10);
    EXPECT_EQ(during.threadCount, before->threadCount + 1);
}

TEST(JournalLog, fields)
{
    EXPECT_THAT(JournalLog::fields("shell", LogLevel::error, "two\nlines"),
                ::testing::ElementsAre("SYSLOG_IDENTIFIER=quellon", "PRIORITY=3",
                                       "QUELLON_SUBSYSTEM=com.brennix.quellon", "QUELLON_CATEGORY=shell",
                                       "MESSAGE=two\nlines"));
    EXPECT_THAT(JournalLog::fields("sampling", LogLevel::info, "%s"),
                ::testing::ElementsAre("SYSLOG_IDENTIFIER=quellon", "PRIORITY=6",
                                       "QUELLON_SUBSYSTEM=com.brennix.quellon", "QUELLON_CATEGORY=sampling",
                                       "MESSAGE=%s"));
}

TEST(LinuxHost, findsTheProbe)
{
    const testing::TemporaryFolder root;
    const auto bin = root / "bin";
    const auto lib = root / "lib/quellon";
    const auto libexec = root / "libexec/quellon";
    for (const auto& folder : {bin, lib, libexec}) std::filesystem::create_directories(folder);
    EXPECT_EQ(LinuxHost::findProbe(bin), bin / "quellon-probe") << "in none of them";
    (void)root.script("lib/quellon/quellon-probe", "");
    EXPECT_EQ(LinuxHost::findProbe(bin), lib / "quellon-probe");
    (void)root.script("libexec/quellon/quellon-probe", "");
    EXPECT_EQ(LinuxHost::findProbe(bin), libexec / "quellon-probe");
    std::ofstream{bin / "quellon-probe"} << "can't be run";
    EXPECT_EQ(LinuxHost::findProbe(bin), libexec / "quellon-probe");
    (void)root.script("bin/quellon-probe", "");
    EXPECT_EQ(LinuxHost::findProbe(bin), bin / "quellon-probe");
}

TEST(LinuxHost, endsAtOnceThoughAToolRuns)
{
    const testing::TemporaryFolder folder;
    const auto probe = folder.script("quellon-probe", "#!/bin/sh\nread -r line; echo > \"$0.asked\"; kill -STOP $$\n");
    bool done = false;
    const auto begin = std::chrono::steady_clock::now();
    {
        LinuxHost system{probe};
        const Host host = system.host();
        for (int i = 0; i < 3; ++i) {
            host.runLoop.background(
                [host] {
                    (void)host.commands.run(host.platform.tool(ToolRole::nettop), 1000s);
                    (void)host.commands.run({"/bin/sh", {"-c", "exec sleep 1000"}}, 1000s);
                },
                [&] { done = true; });
        }
        const auto timer = host.runLoop.every(1ms, [&] {
            if (std::filesystem::exists(probe.string() + ".asked")) system.runLoop().quit();
        });
        system.runLoop().run();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s);
    EXPECT_FALSE(done);
}

} // namespace
} // namespace quellon
