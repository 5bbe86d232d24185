#include "QuellonHost/Posix/PosixFileStore.h"
#include "QuellonHost/Posix/PosixProcessControl.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "ScriptedHost.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon {
namespace {

using DataFolder = PosixFileStore::DataFolder;

mode_t mode(const std::filesystem::path& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

class PosixFileStoreTest : public ::testing::Test {
protected:
    ScriptedHost host;
    testing::TemporaryFolder folder;
    [[nodiscard]] PosixFileStore store(DataFolder data = DataFolder::xdg) { return {host.host().processes, data}; }
};

TEST_F(PosixFileStoreTest, whereTheFoldersAre)
{
    struct Case {
        const char* name;
        const char* home;
        const char* dataHome; ///< Null: not set.
        DataFolder data;
        const char* support;
    };
    constexpr Case cases[] = {
        {"XDG, not set", "/home/a", nullptr, DataFolder::xdg, "/home/a/.local/share"},
        {"XDG, set", "/home/a", "/data/b", DataFolder::xdg, "/data/b"},
        {"XDG, relative", "/home/a", "data", DataFolder::xdg, "/home/a/.local/share"},
        {"XDG, empty", "/home/a", "", DataFolder::xdg, "/home/a/.local/share"},
        {"macOS", "/Users/a", "/data/b", DataFolder::library, "/Users/a/Library/Application Support"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedHost world;
        world.environment("HOME", c.home);
        if (c.dataHome != nullptr) world.environment("XDG_DATA_HOME", c.dataHome);
        const PosixFileStore files{world.host().processes, c.data};
        EXPECT_EQ(files.homeDirectory(), c.home);
        EXPECT_EQ(files.applicationSupportDirectory(), c.support);
    }
}

TEST_F(PosixFileStoreTest, homeFromTheUserDatabase)
{
    const auto expected = store().homeDirectory();
    EXPECT_TRUE(expected.is_absolute());
    for (const char* useless : {"", "relative/home"}) {
        host.environment("HOME", useless);
        EXPECT_EQ(store().homeDirectory(), expected);
    }
}

TEST_F(PosixFileStoreTest, temporaryFolder)
{
    EXPECT_EQ(store().temporaryDirectory(), "/tmp");
    host.environment("TMPDIR", "relative");
    EXPECT_EQ(store().temporaryDirectory(), "/tmp");
    host.environment("TMPDIR", "/var/tmp/mine");
    EXPECT_EQ(store().temporaryDirectory(), "/var/tmp/mine");
}

TEST_F(PosixFileStoreTest, onlyTheUserReads)
{
    auto files = store();
    const mode_t before = umask(0);
    ASSERT_TRUE(files.createDirectories(folder / "a/b"));
    ASSERT_TRUE(files.write(folder / "a/b/file", "x"));
    umask(before);
    EXPECT_EQ(mode(folder / "a"), 0700U);
    EXPECT_EQ(mode(folder / "a/b"), 0700U);
    EXPECT_EQ(mode(folder / "a/b/file"), 0600U);

    ASSERT_EQ(chmod((folder / "a/b/file").c_str(), 0644), 0);
    ASSERT_EQ(chmod((folder / "a").c_str(), 0755), 0);
    ASSERT_TRUE(files.write(folder / "a/b/file", "y"));
    ASSERT_TRUE(files.createDirectories(folder / "a/b"));
    EXPECT_EQ(mode(folder / "a/b/file"), 0600U);
    EXPECT_EQ(mode(folder / "a"), 0755U) << "a folder that was there is the user's own affair";
}

TEST_F(PosixFileStoreTest, makesTheFolderThatWritingMeans)
{
    auto files = store();
    ASSERT_TRUE(files.createDirectories(folder / "real/inner"));
    std::filesystem::create_symlink("real/inner", folder / "link");
    EXPECT_TRUE(files.createDirectories(folder / "link/../state/./deep"));
    EXPECT_TRUE(files.write(folder / "link/../state/deep/file", "x"));
    EXPECT_EQ(files.read(folder / "real/state/deep/file"), "x") << "beside what the link leads to";
}

TEST_F(PosixFileStoreTest, aWorkingFolderThatIsGoneIsToldSo)
{
    ASSERT_TRUE(store().createDirectories(folder / "gone"));
    const pid_t child = fork();
    if (child == 0) {
        auto files = store();
        if (chdir((folder / "gone").c_str()) != 0 || rmdir((folder / "gone").c_str()) != 0) _exit(2);
        const bool made = files.createDirectories("state") || files.write("state/file", "x");
        _exit(made ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(PosixFileStoreTest, aFullDiskIsToldSo)
{
    auto files = store();
    const mode_t before = mode("/dev/full");
    EXPECT_FALSE(files.write("/dev/full", "x"));
    EXPECT_EQ(mode("/dev/full"), before);
}

TEST_F(PosixFileStoreTest, aFileThatMayNotGrowIsToldSo)
{
    auto files = store();
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool fits = files.write(folder / "fits", std::string(1000, 'x'));
    const bool exceeds = files.write(folder / "exceeds", std::string(1001, 'x'));
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(fits);
    EXPECT_FALSE(exceeds);
}

/// Tries everything in a folder where nothing may be changed. The name of what succeeded all the same; empty when all
/// is well.
std::string allowedIn(const std::filesystem::path& folder, PosixFileStore files)
{
    if (files.write(folder / "new", "new")) return "write";
    if (files.createDirectories(folder / "below")) return "createDirectories";
    if (files.remove(folder / "old")) return "remove";
    if (files.replace(folder / "old", folder / "moved")) return "replace";
    return files.read(folder / "old") == "old" ? "" : "content";
}

TEST_F(PosixFileStoreTest, aReadOnlyFolderIsToldSo)
{
    ASSERT_TRUE(store().write(folder / "old", "old"));
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534; // the superuser could write anywhere
        const bool isRoot = geteuid() == 0;
        if (isRoot && (chown(folder.path().c_str(), nobody, nobody) != 0 ||
                       chown((folder / "old").c_str(), nobody, nobody) != 0 || setuid(nobody) != 0)) {
            _exit(2);
        }
        if (chmod(folder.path().c_str(), 0500) != 0) _exit(3);
        const std::string allowed = allowedIn(folder.path(), store());
        std::fputs(allowed.c_str(), stderr);
        (void)chmod(folder.path().c_str(), 0700);
        _exit(allowed.empty() ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(PosixFileStoreTest, aNamedPipeDoesNotBlock)
{
    auto files = store();
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(files.read(folder / "pipe"), std::nullopt);
    EXPECT_FALSE(files.write(folder / "pipe", "x"));
}

TEST_F(PosixFileStoreTest, aHugeFileIsRefusedAtOnce)
{
    const auto files = store();
    std::ofstream{folder / "huge"} << "{}";
    std::filesystem::resize_file(folder / "huge", 100'000'000); // a hole: nothing is written
    EXPECT_EQ(files.read(folder / "huge"), std::nullopt);
}

TEST_F(PosixFileStoreTest, oddNames)
{
    auto files = store();
    for (const char* name : {"with blank", "new\nline", "\xFF\xFE", "-rf", "ümlaut"}) {
        ASSERT_TRUE(files.write(folder / name, name));
        EXPECT_EQ(files.read(folder / name), name);
    }
    EXPECT_FALSE(files.write(folder / std::string(300, 'n'), "x"));
    EXPECT_EQ(files.read(folder / std::string(300, 'n')), std::nullopt);
}

TEST(PosixProcessControl, theEnvironmentIsThatOfTheStart)
{
    class Control final : public PosixProcessControl {
    public:
        [[nodiscard]] std::string processName() const override { return {}; }
        [[nodiscard]] std::optional<ProcessMetrics> metrics() const override { return std::nullopt; }
    };
    ASSERT_EQ(setenv("QUELLON_TEST_VARIABLE", "a=b", 1), 0);
    ASSERT_EQ(setenv("QUELLON_TEST_EMPTY", "", 1), 0);
    const Control control;
    unsetenv("QUELLON_TEST_VARIABLE");
    unsetenv("QUELLON_TEST_EMPTY");
    EXPECT_EQ(control.environment("QUELLON_TEST_VARIABLE"), "a=b");
    EXPECT_EQ(control.environment("QUELLON_TEST_EMPTY"), "");
    EXPECT_EQ(control.environment("QUELLON_TEST"), std::nullopt);
    EXPECT_EQ(control.processID(), getpid());
}

TEST(PosixProcessControl, exitFlushesAndKeepsTheStatus)
{
    class Control final : public PosixProcessControl {
    public:
        [[nodiscard]] std::string processName() const override { return {}; }
        [[nodiscard]] std::optional<ProcessMetrics> metrics() const override { return std::nullopt; }
    };
    const testing::TemporaryFolder folder;
    const std::string file = folder / "out";
    const pid_t child = fork();
    if (child == 0) {
        std::FILE* out = std::fopen(file.c_str(), "w");
        std::fputs("buffered", out);
        Control{}.exit(7);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_EQ(std::filesystem::file_size(file), 8U);
}

} // namespace
} // namespace quellon
