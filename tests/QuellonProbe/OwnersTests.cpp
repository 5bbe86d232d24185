#include "QuellonProbe/Owners.h"

#include "QuellonProbe/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quellon {
namespace {

using testing::TemporaryFolder;

/// A folder of processes and one of control groups, as the kernel shows them.
class Owning : public ::testing::Test {
protected:
    void process(std::int32_t pid, const std::vector<std::string>& targets, const std::string& group = "/user",
                 const std::string& comm = "program", std::uint64_t startTicks = 500, const std::string& state = "S")
    {
        const auto folder = std::to_string(pid) + "/";
        proc.write(folder + "stat", std::to_string(pid) + " (" + comm + ") " + state +
                                        " 1 40 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 " + std::to_string(startTicks) +
                                        " 0 0 0\n");
        proc.write(folder + "cgroup", "1:cpu:/\n0::" + group + "\n");
        proc.write(folder + "fd/.keep", "");
        for (std::size_t i = 0; i < targets.size(); ++i) proc.link(folder + "fd/" + std::to_string(i), targets[i]);
        std::filesystem::create_directories(groups.path() + group);
    }
    [[nodiscard]] std::uint64_t group(const std::string& path) const
    {
        struct stat info {};
        return ::stat((groups.path() + path).c_str(), &info) == 0 ? info.st_ino : 0;
    }
    std::int32_t find(std::uint32_t inode, double now, std::uint64_t cgroup = 0, bool isNew = true)
    {
        std::vector<SocketSearch> searches{{inode, cgroup, isNew, 0}};
        owners().find(searches, now);
        return searches[0].owner;
    }
    Owners& owners()
    {
        if (!owners_) {
            folder_.emplace(proc.path());
            names_.emplace(*folder_, files.path());
            owners_.emplace(*folder_, ControlGroups{*folder_, groups.path()}, *names_);
        }
        return *owners_;
    }

    TemporaryFolder proc;
    TemporaryFolder groups;
    TemporaryFolder files; ///< where executables are looked up

private:
    std::optional<ProcFolder> folder_;
    std::optional<ProcessNames> names_;
    std::optional<Owners> owners_;
};

TEST_F(Owning, descriptorsThatAreNoSocket)
{
    struct Case {
        const char* name;
        const char* target;
        std::int32_t owner;
    };
    constexpr Case cases[] = {
        {"a file", "/dev/null", 0},
        {"a pipe", "pipe:[77]", 0},
        {"another socket", "socket:[771]", 0},
        {"a longer number that begins so", "socket:[7", 0},
        {"no number", "socket:[]", 0},
        {"too large a number", "socket:[99999999999]", 0},
        {"words behind the number", "socket:[77x]", 0},
        {"the socket", "socket:[77]", 42},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TemporaryFolder own;
        own.link("42/fd/0", c.target);
        const ProcFolder folder{own.path()};
        ProcessNames names{folder};
        Owners fresh{folder, ControlGroups{folder, own.path()}, names};
        std::vector<SocketSearch> searches{{77, 0, true, 0}};
        fresh.find(searches, 0);
        EXPECT_EQ(searches[0].owner, c.owner);
    }
}

TEST_F(Owning, findsEachSocketAndNamesItsProcess)
{
    process(42, {"/dev/null", "socket:[1]"}, "/user", "a,b\nc)");
    process(43, {"socket:[2]", "socket:[3]"});
    std::vector<SocketSearch> searches{{3, 0, true, 0}, {1, 0, true, 0}, {9, 0, true, 0}, {0, 0, true, 0}};
    owners().find(searches, 0);
    EXPECT_EQ(searches[0].owner, 43);
    EXPECT_EQ(searches[1].owner, 42);
    EXPECT_EQ(searches[2].owner, 0);
    EXPECT_EQ(searches[3].owner, 0) << "inode 0 is nobody's";
    EXPECT_EQ(owners().name(42), "a;b?c)");
    EXPECT_EQ(owners().name(44), "");
    proc.link("43/exe", "/opt/x/a,b ");
    proc.link("43/fd/7", "socket:[4]");
    EXPECT_EQ(find(4, 1), 43);
    EXPECT_EQ(owners().name(43), "a;b ") << "the executable's name, where it can be read";
}

TEST_F(Owning, socketOfSeveralProcessesBelongsToTheFirst)
{
    process(43, {"socket:[1]"});
    process(42, {"socket:[1]"});
    EXPECT_EQ(find(1, 0, 1), 42);
}

TEST_F(Owning, aSearchInVainIsNotRepeatedForAWhile)
{
    process(42, {"/dev/null"});
    EXPECT_EQ(find(1, 0), 0);
    proc.link("42/fd/1", "socket:[1]");
    EXPECT_EQ(find(1, 7.9, 0, false), 0) << "within the pause";
    EXPECT_EQ(find(1, 8, 0, false), 42) << "after it";
}

TEST_F(Owning, pausesDoubleUpToALimitAndEndWhenAllIsFound)
{
    process(42, {"socket:[5]"});
    double now = 0;
    for (const double pause : {8.0, 16.0, 32.0, 64.0, 128.0, 256.0, 256.0}) {
        EXPECT_EQ(find(1, now), 0);
        // A socket that is there, but isn't looked for until the pause is over.
        EXPECT_EQ(find(5, now + pause - 0.5, 0, false), 0) << pause;
        now += pause;
    }
    EXPECT_EQ(find(5, now, 0, false), 42);
    EXPECT_EQ(find(5, now + 0.1, 0, false), 42) << "no pause after a search that found everything";
}

TEST_F(Owning, newSocketIsFoundWithoutALookAtAll)
{
    process(42, {"socket:[1]"}, "/user/a");
    process(43, {"/dev/null"}, "/user/b");
    process(44, {"/dev/null"}, "/user/c");
    const auto a = group("/user/a");
    const auto b = group("/user/b");
    EXPECT_EQ(find(1, 0, a), 42);
    EXPECT_EQ(find(99, 1, 1), 0) << "begins the pause";
    proc.link("42/fd/7", "socket:[2]");
    EXPECT_EQ(find(2, 2, a), 42) << "in a process known by a socket of the same group";
    proc.link("43/fd/7", "socket:[3]");
    EXPECT_EQ(find(3, 2, b), 43) << "in a process of the socket's group";
    proc.link("44/fd/7", "socket:[4]");
    EXPECT_EQ(find(4, 2, b), 0) << "a process of another group has to wait";
    process(45, {"socket:[5]"}, "/user/c");
    EXPECT_EQ(find(5, 2, b), 45) << "a process that has just started hasn't";
}

TEST_F(Owning, whereControlGroupsAreUnknownNewSocketsDoNotWait)
{
    process(42, {"/dev/null"}, "/user/a");
    process(43, {"/dev/null"}, "/user/b");
    EXPECT_EQ(find(99, 0, 1), 0) << "begins the pause";
    proc.link("42/fd/7", "socket:[1]");
    EXPECT_EQ(find(1, 1), 42) << "a kernel that doesn't tell a socket's group";
    proc.write("43/cgroup", "1:cpu:/\n");
    proc.link("43/fd/7", "socket:[2]");
    EXPECT_EQ(find(2, 1, group("/user/a")), 43) << "a process whose group can't be told";
}

TEST_F(Owning, presence)
{
    process(42, {"socket:[1]"});
    EXPECT_EQ(owners().presence(42), Owners::Presence::gone) << "not yet asked for";
    EXPECT_EQ(find(1, 0), 42);
    EXPECT_EQ(owners().presence(42), Owners::Presence::same);
    EXPECT_EQ(owners().presence(42), Owners::Presence::same);

    // The same process under a folder that the kernel has made anew, and another one under the same number.
    std::filesystem::rename(proc.path() + "/42", proc.path() + "/old");
    process(42, {"socket:[1]"});
    EXPECT_EQ(owners().presence(42), Owners::Presence::same);
    std::filesystem::rename(proc.path() + "/42", proc.path() + "/older");
    process(42, {"socket:[1]"}, "/user", "other", 501);
    EXPECT_EQ(owners().presence(42), Owners::Presence::replaced);
    proc.remove("42");
    EXPECT_EQ(owners().presence(42), Owners::Presence::gone);
}

TEST_F(Owning, processThatIsDeadButNotReapedIsGone)
{
    process(42, {"socket:[1]"});
    EXPECT_EQ(find(1, 0), 42);
    EXPECT_EQ(owners().presence(42), Owners::Presence::same);
    std::filesystem::rename(proc.path() + "/42", proc.path() + "/old");
    process(42, {}, "/user", "program", 500, "Z");
    EXPECT_EQ(owners().presence(42), Owners::Presence::gone);
}

TEST_F(Owning, processIsSeenAsItWasWhenItWasFoundLast)
{
    process(42, {"socket:[1]"});
    proc.link("42/exe", "/opt/browser/helper (deleted)");
    files.executable("opt/browser/browser");
    process(43, {"socket:[3]"});
    EXPECT_EQ(owners().seen(42), nullptr) << "not found yet";
    EXPECT_EQ(find(1, 0), 42);
    EXPECT_EQ(find(3, 0), 43);
    ASSERT_NE(owners().seen(42), nullptr);
    EXPECT_EQ(*owners().seen(42), (SeenProcess{42, ::geteuid(), 40, "/opt/browser/browser"}));
    ASSERT_NE(owners().seen(43), nullptr);
    EXPECT_EQ(owners().seen(43)->path, "program") << "whose executable can't be read";

    proc.remove("42/exe");
    proc.link("42/exe", "/usr/bin/curl");
    EXPECT_EQ(owners().seen(42)->path, "/opt/browser/browser");
    proc.link("42/fd/7", "socket:[2]");
    EXPECT_EQ(find(2, 1), 42);
    EXPECT_EQ(owners().seen(42)->path, "/usr/bin/curl") << "another program by now";
    proc.remove("42");
    EXPECT_EQ(owners().seen(42)->path, "/usr/bin/curl");
    owners().prune({}, 2);
    EXPECT_EQ(owners().seen(42), nullptr);
}

TEST_F(Owning, pruneForgetsTheDeadAndTheIdle)
{
    process(42, {"socket:[1]"});
    process(43, {"socket:[2]"});
    process(44, {"socket:[3]"});
    for (const std::uint32_t inode : {1U, 2U, 3U}) EXPECT_NE(find(inode, 0), 0);
    proc.remove("43");
    owners().prune({42}, 100);
    EXPECT_EQ(owners().name(42), "program");
    EXPECT_EQ(owners().name(43), "") << "dead";
    EXPECT_EQ(owners().name(44), "program") << "may open another socket";
    owners().prune({42}, 601);
    EXPECT_EQ(owners().name(44), "") << "has had its time";
    EXPECT_EQ(owners().name(42), "program") << "in use";
}

TEST(Owners, findsASocketOfThisVeryProcess)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(descriptor, 0);
    // Far from the others, where guessing doesn't get.
    const int far = ::dup3(descriptor, 300, O_CLOEXEC);
    ASSERT_EQ(far, 300);
    ::close(descriptor);
    struct stat info {};
    ASSERT_EQ(::fstat(far, &info), 0);
    const ProcFolder proc;
    ProcessNames names{proc};
    Owners owners{proc, ControlGroups{proc}, names};
    std::vector<SocketSearch> searches{{static_cast<std::uint32_t>(info.st_ino), 0, true, 0}};
    owners.find(searches, 0);
    ::close(far);
    EXPECT_EQ(searches[0].owner, ::getpid());
    EXPECT_EQ(owners.presence(::getpid()), Owners::Presence::same);
    EXPECT_FALSE(owners.name(::getpid()).empty());
}

} // namespace
} // namespace quellon
