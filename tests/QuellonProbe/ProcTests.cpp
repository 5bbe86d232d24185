#include "QuellonProbe/Proc.h"

#include "QuellonProbe/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <unistd.h>

namespace quellon {
namespace {

using testing::TemporaryFolder;

/// Fields 3 to 22 of a stat file, and one more.
std::string fields(const std::string& parent, const std::string& group, const std::string& flags,
                   const std::string& start, const std::string& state = "S")
{
    return " " + state + " " + parent + " " + group + " 1 0 -1 " + flags + " 1 2 3 4 5 6 7 8 20 0 1 0 " + start +
           " 999\n";
}

TEST(ProcFolder, parseStat)
{
    struct Case {
        const char* name;
        std::string text;
        std::optional<ProcessStat> stat;
    };
    const auto good = fields("41", "40", "4194560", "123456789012");
    const Case cases[] = {
        {"ordinary", "42 (bash)" + good, ProcessStat{"bash", 41, 40, false, 123456789012, false}},
        {"closing bracket in the name", "42 (a) S 1)" + good,
         ProcessStat{"a) S 1", 41, 40, false, 123456789012, false}},
        {"blanks and brackets", "42 ((sd-pam) x)" + good,
         ProcessStat{"(sd-pam) x", 41, 40, false, 123456789012, false}},
        {"line feed in the name", "42 (a\nb)" + good, ProcessStat{"a\nb", 41, 40, false, 123456789012, false}},
        {"empty name", "42 ()" + good, ProcessStat{"", 41, 40, false, 123456789012, false}},
        {"kernel thread", "2 (kthreadd)" + fields("0", "0", "2129984", "0"),
         ProcessStat{"kthreadd", 0, 0, true, 0, false}},
        {"group outside of this namespace", "2 (x)" + fields("0", "-1", "0", "5"),
         ProcessStat{"x", 0, -1, false, 5, false}},
        {"not reaped", "2 (x)" + fields("1", "2", "0", "5", "Z"), ProcessStat{"x", 1, 2, false, 5, true}},
        {"being taken away", "2 (x)" + fields("1", "2", "0", "5", "X"), ProcessStat{"x", 1, 2, false, 5, true}},
        {"empty", "", std::nullopt},
        {"no name", "42 bash" + good, std::nullopt},
        {"brackets the wrong way", "42 )bash(" + good, std::nullopt},
        {"ends before the start time", "42 (bash) S 41 40 1 0 -1 0 1 2 3 4 5 6 7 8 20 0 1 0", std::nullopt},
        {"parent is no number", "42 (bash)" + fields("x", "40", "0", "5"), std::nullopt},
        {"start time too large", "42 (bash)" + fields("1", "40", "0", "18446744073709551616"), std::nullopt},
        {"start time with a tail", "42 (bash)" + fields("1", "40", "0", "5x"), std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ProcFolder::parseStat(c.text), c.stat);
    }
}

TEST(ProcFolder, parsePid)
{
    struct Case {
        const char* name;
        std::string_view text;
        std::optional<std::int32_t> pid;
    };
    constexpr Case cases[] = {
        {"one", "1", 1},
        {"greatest", "2147483647", 2147483647},
        {"too great", "2147483648", std::nullopt},
        {"zero", "0", std::nullopt},
        {"negative", "-1", std::nullopt},
        {"plus", "+1", std::nullopt},
        {"empty", "", std::nullopt},
        {"blank before", " 1", std::nullopt},
        {"tail", "1x", std::nullopt},
        {"hexadecimal", "0x1", std::nullopt},
        {"self", "self", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ProcFolder::parsePid(c.text), c.pid);
    }
}

TEST(ProcFolder, listsTheProcessesOfAFolder)
{
    const TemporaryFolder folder;
    for (const auto* name : {"10", "9", "200", "1"}) folder.write(std::string{name} + "/stat", "");
    folder.write("self/stat", "");
    folder.write("sys/x", "");
    folder.write("12a/stat", "");
    const ProcFolder proc{folder.path()};
    std::vector<std::int32_t> pids{77};
    EXPECT_TRUE(proc.list(pids));
    EXPECT_EQ(pids, (std::vector<std::int32_t>{1, 9, 10, 200}));
    folder.remove("9");
    EXPECT_TRUE(proc.list(pids)) << "a second pass begins at the front";
    EXPECT_EQ(pids, (std::vector<std::int32_t>{1, 10, 200}));
}

TEST(ProcFolder, answersByAbsence)
{
    const TemporaryFolder folder;
    folder.write("5/stat", "rubbish");
    const ProcFolder proc{folder.path()};
    EXPECT_FALSE(proc.stat(5));
    EXPECT_FALSE(proc.stat(6));
    EXPECT_FALSE(proc.owner(6));
    EXPECT_FALSE(proc.group(5));
    EXPECT_FALSE(proc.group(6));
    EXPECT_FALSE(proc.executable(5));
    EXPECT_FALSE(proc.file(5, "cgroup"));
    EXPECT_FALSE(proc.file(5, std::string(500, 'x')));
    EXPECT_EQ(proc.owner(5), geteuid());
    EXPECT_EQ(proc.file(5, "stat"), "rubbish");
    const ProcFolder none{folder.path() + "/none"};
    std::vector<std::int32_t> pids{1};
    EXPECT_FALSE(none.list(pids));
    EXPECT_TRUE(pids.empty());
    EXPECT_FALSE(none.stat(5));
}

TEST(ProcFolder, groupIsTheFoldersOwn)
{
    const TemporaryFolder folder;
    folder.write(std::to_string(getpid()) + "/stat", "1 (x)" + fields("1", "77", "0", "5"));
    folder.link("self", "1");
    EXPECT_EQ(ProcFolder{folder.path()}.group(getpid()), 77);
}

TEST(ProcFolder, readsThisProcess)
{
    const ProcFolder proc;
    std::vector<std::int32_t> pids;
    ASSERT_TRUE(proc.list(pids));
    EXPECT_TRUE(std::is_sorted(pids.begin(), pids.end()));
    EXPECT_TRUE(std::binary_search(pids.begin(), pids.end(), getpid()));
    const auto stat = proc.stat(getpid());
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->parent, getppid());
    EXPECT_EQ(stat->group, getpgrp());
    EXPECT_EQ(proc.group(getpid()), getpgrp());
    EXPECT_FALSE(proc.group(std::numeric_limits<std::int32_t>::max()));
    EXPECT_FALSE(stat->isKernelThread);
    EXPECT_GT(stat->startTicks, 0U);
    EXPECT_EQ(proc.owner(getpid()), geteuid());
    EXPECT_EQ(proc.executable(getpid()), std::filesystem::read_symlink("/proc/self/exe").string());
}

} // namespace
} // namespace quellon
