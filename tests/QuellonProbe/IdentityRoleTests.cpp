#include "QuellonProbe/IdentityRole.h"

#include "QuellonProbe/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon {
namespace {

using testing::TemporaryFolder;

TEST(IdentityRole, readsStartAndParent)
{
    const TemporaryFolder folder;
    folder.write("sys/kernel/random/boot_id", "0b7c-11\n");
    folder.write("7/stat", "7 (a b) c) S 3 7 1 0 -1 0 1 2 3 4 5 6 7 8 20 0 1 0 4711 9\n");
    const ProcFolder proc{folder.path()};
    EXPECT_EQ(IdentityRole::start(proc, 7), "0b7c-11 4711\n");
    EXPECT_EQ(IdentityRole::parent(proc, 7), "3\n");
    EXPECT_EQ(IdentityRole::start(proc, 8), "") << "no such process";
    EXPECT_EQ(IdentityRole::parent(proc, 8), "");
}

TEST(IdentityRole, refusesWithoutABoot)
{
    const TemporaryFolder folder;
    folder.write("7/stat", "7 (a) S 3 7 1 0 -1 0 1 2 3 4 5 6 7 8 20 0 1 0 4711 9\n");
    const ProcFolder proc{folder.path()};
    const ProcFolder none{folder.path() + "/none"};
    EXPECT_EQ(IdentityRole::start(proc, 7), std::nullopt);
    EXPECT_EQ(IdentityRole::parent(none, 7), std::nullopt);
}

TEST(IdentityRole, tellsLiveProcessesApart)
{
    const ProcFolder proc;
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    ASSERT_GT(child, 0);
    EXPECT_EQ(IdentityRole::parent(proc, child), std::to_string(getpid()) + "\n");
    EXPECT_EQ(IdentityRole::parent(proc, getpid()), std::to_string(getppid()) + "\n");
    const auto start = IdentityRole::start(proc, child);
    ASSERT_TRUE(start);
    EXPECT_EQ(*start, proc.file("sys/kernel/random/boot_id")->substr(0, 36) + " " +
                          std::to_string(proc.stat(child)->startTicks) + "\n");
    EXPECT_EQ(IdentityRole::start(proc, child), start);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_EQ(IdentityRole::start(proc, child), "");
    EXPECT_EQ(IdentityRole::parent(proc, child), "");
}

} // namespace
} // namespace quellon
