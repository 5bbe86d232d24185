#include "QuellonProbe/PsRole.h"

#include "QuellonProbe/TemporaryFolder.h"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace quellon {
namespace {

using testing::TemporaryFolder;

std::string stat(const std::string& comm, const std::string& group, const std::string& start = "5",
                 const std::string& flags = "0", const std::string& state = "S")
{
    return "1 (" + comm + ") " + state + " 1 " + group + " 1 0 -1 " + flags + " 1 2 3 4 5 6 7 8 20 0 1 0 " + start +
           " 9\n";
}

/// A row of this user with the two numbers and the path.
std::string row(int pid, int group, const std::string& path)
{
    std::array<char, 64> numbers;
    std::snprintf(numbers.data(), numbers.size(), "%5d %5u %5d ", pid, geteuid(), group);
    return numbers.data() + path + "\n";
}

class PsRoleTest : public ::testing::Test {
protected:
    void process(int pid, const std::string& statText, const std::string& executable = "") const
    {
        folder_.write("proc/" + std::to_string(pid) + "/stat", statText);
        if (!executable.empty()) folder_.link("proc/" + std::to_string(pid) + "/exe", executable);
    }

    TemporaryFolder folder_;
};

TEST_F(PsRoleTest, listsEveryProcess)
{
    folder_.executable("root/opt/browser/browser");
    process(7, stat("browser-helper", "7"), "/opt/browser/browser-helper");
    process(12, stat("foreign daemon", "12"));
    process(2, stat("kworker/0:1", "0", "0", "2097152"));
    process(123456, stat("x", "100000"), "/usr/bin/x (deleted)");
    process(13, stat("a\nb", "13"));
    process(14, stat(" ", "14"));
    process(15, stat("py", "15"), "/usr/bin/python3.11");
    process(16, stat("odd", "16"), "/opt/a\nb\xFF");
    process(17, "rubbish");
    folder_.write("proc/18/other", "");
    const ProcFolder proc{folder_.path() + "/proc"};
    ProcessNames names{proc, folder_.path() + "/root"};
    PsRole role{proc, names};
    EXPECT_EQ(role.answer(), row(2, 0, "[kworker/0:1]") + row(7, 7, "/opt/browser/browser") +
                                 row(12, 12, "foreign daemon") + row(13, 13, "a?b") + row(14, 14, "?") +
                                 row(15, 15, "/usr/bin/python3.11") + row(16, 16, "/opt/a?b\xEF\xBF\xBD") +
                                 row(123456, 100000, "/usr/bin/x"));
}

TEST_F(PsRoleTest, seesAnotherProgramInTheSameProcess)
{
    process(7, stat("sh", "7"), "/usr/bin/dash");
    const ProcFolder proc{folder_.path() + "/proc"};
    ProcessNames names{proc, folder_.path()};
    PsRole role{proc, names};
    EXPECT_EQ(role.answer(), row(7, 7, "/usr/bin/dash"));
    process(7, stat("curl", "7"), "/usr/bin/curl");
    EXPECT_EQ(role.answer(), row(7, 7, "/usr/bin/curl"));
}

TEST_F(PsRoleTest, asksTheSandboxForItsApplication)
{
    const std::string info = "[Application]\nname=org.x.Player\n";
    process(7, stat("player", "7"), "/app/bin/player");
    folder_.write("proc/7/root/.flatpak-info", info);
    process(8, stat("player", "8"), "/app/bin/player");
    const ProcFolder proc{folder_.path() + "/proc"};
    ProcessNames names{proc, folder_.path()};
    PsRole role{proc, names};
    const auto first = row(7, 7, "/var/lib/flatpak/app/org.x.Player/files/bin/player");
    EXPECT_EQ(role.answer(), first + row(8, 8, "/app/bin/player"));
    folder_.remove("proc/7/root");
    EXPECT_EQ(role.answer(), first + row(8, 8, "/app/bin/player")) << "asked once in a process's life";
    process(7, stat("player", "7", "6"), "/app/bin/player");
    EXPECT_EQ(role.answer(), row(7, 7, "/app/bin/player") + row(8, 8, "/app/bin/player")) << "a later process";
}

TEST_F(PsRoleTest, forgetsProcessesThatEnded)
{
    const ProcFolder proc{(folder_.write("proc/1/stat", stat("init", "1")), folder_.path() + "/proc")};
    ProcessNames names{proc, folder_.path()};
    PsRole role{proc, names};
    for (int pid = 2; pid < 50; ++pid) process(pid, stat("x", "1"), "/usr/bin/x" + std::to_string(pid));
    process(50, stat("x", "1"), "/app/bin/x");
    ASSERT_TRUE(role.answer());
    EXPECT_EQ(names.remembered(), 50U);
    for (int pid = 2; pid <= 50; ++pid) folder_.remove("proc/" + std::to_string(pid));
    EXPECT_EQ(role.answer(), row(1, 1, "init"));
    EXPECT_EQ(names.remembered(), 0U);
}

TEST_F(PsRoleTest, listsSeenProcessesThatEnded)
{
    process(7, stat("sh", "7"), "/usr/bin/dash");
    process(20, stat("curl", "20", "5", "0", "Z"));
    process(22, stat("late", "22", "9"), "/usr/bin/late");
    folder_.write("proc/23/other", "");
    const ProcFolder proc{folder_.path() + "/proc"};
    ProcessNames names{proc, folder_.path()};
    PsRole role{proc, names};
    const auto user = geteuid();
    const std::vector<SeenProcess> seen{
        {3, user, 2, "/opt/first"},  {7, user, 7, "/usr/bin/before"}, {12, user, 12, "/opt/a b"},
        {20, user, 19, "/opt/curl"}, {22, user, 22, "/opt/earlier"},  {23, user, 23, "/opt/gone"},
        {99, user, 99, "/opt/last"},
    };
    const auto expected = row(3, 2, "/opt/first") + row(7, 7, "/usr/bin/dash") + row(12, 12, "/opt/a b") +
                          row(20, 19, "/opt/curl") + row(22, 22, "/usr/bin/late") + row(23, 23, "/opt/gone") +
                          row(99, 99, "/opt/last");
    EXPECT_EQ(role.answer(seen), expected);
    EXPECT_EQ(role.answer(seen), expected) << "as often as it is asked";
    EXPECT_EQ(role.answer(), row(7, 7, "/usr/bin/dash") + row(20, 20, "curl") + row(22, 22, "/usr/bin/late"));
}

TEST_F(PsRoleTest, refusesWithoutProcesses)
{
    const ProcFolder none{folder_.path() + "/none"};
    ProcessNames names{none};
    PsRole role{none, names};
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(role.answer(), std::nullopt);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "quellon-probe: the list of processes can't be read: Bad file descriptor\n");
}

/// The columns of the row of this process: pid, uid, pgid, and the rest of the line.
std::vector<std::string> ownRow(const std::string& table)
{
    std::istringstream lines{table};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream columns{line};
        std::vector<std::string> row(4);
        columns >> row[0] >> row[1] >> row[2] >> std::ws;
        std::getline(columns, row[3]);
        if (row[0] == std::to_string(getpid())) return row;
    }
    return {};
}

TEST_F(PsRoleTest, agreesWithTheSystemsTool)
{
    FILE* tool = popen("ps -axo pid=,uid=,pgid=,exe= 2>/dev/null", "r");
    ASSERT_NE(tool, nullptr);
    std::string table;
    std::array<char, 4096> buffer;
    for (std::size_t size = 0; (size = fread(buffer.data(), 1, buffer.size(), tool)) > 0;)
        table.append(buffer.data(), size);
    if (pclose(tool) != 0) GTEST_SKIP() << "no ps with these columns here";
    const ProcFolder proc;
    ProcessNames names{proc};
    PsRole role{proc, names};
    const auto answer = role.answer();
    ASSERT_TRUE(answer);
    EXPECT_EQ(ownRow(*answer), ownRow(table));
    EXPECT_EQ(ownRow(*answer).size(), 4U);
}

} // namespace
} // namespace quellon
