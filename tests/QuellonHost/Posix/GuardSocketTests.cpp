#include "QuellonHost/Posix/GuardSocket.h"

#include "QuellonHost/Posix/PosixFileStore.h"
#include "QuellonHost/Posix/PosixProcessControl.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "ScriptedHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace quellon {
namespace {

namespace fs = std::filesystem;
using GuardSocket::Reply;
using GuardSocket::Server;
using Outcome = GuardSocket::Reply::Outcome;

constexpr Seconds plenty{20.0};

class GuardSocketTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
    const fs::path socket = folder / "Quellon/guard";
    const std::vector<fs::path> places{socket};
    int answers = 0;

    std::unique_ptr<Server> serving(const std::string& text)
    {
        return Server::open(places, [this, text] {
            ++answers;
            return text;
        });
    }

    /// What a process hears that asks while the guard goes about its work.
    Reply ask(Server& server, Seconds limit = plenty) const
    {
        std::atomic<bool> isOver{false};
        Reply reply;
        std::thread asker{[&] {
            reply = GuardSocket::ask(places, limit);
            isOver = true;
        }};
        while (!isOver) {
            pollfd waited{server.descriptor(), POLLIN, 0};
            if (poll(&waited, 1, 10) > 0) server.serve();
        }
        asker.join();
        return reply;
    }

    /// A connection that nobody has taken yet.
    [[nodiscard]] Descriptor connected() const
    {
        Descriptor descriptor{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        std::strncpy(place.sun_path, socket.c_str(), sizeof place.sun_path - 1);
        if (connect(descriptor.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) return {};
        return descriptor;
    }

    /// Everything that comes up to the end of the connection.
    [[nodiscard]] static std::string heardFrom(const Descriptor& connection)
    {
        std::string heard;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = read(connection.get(), buffer.data(), buffer.size())) > 0;) {
            heard.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return heard;
    }

    [[nodiscard]] static mode_t modeOf(const fs::path& path)
    {
        struct stat status {};
        return lstat(path.c_str(), &status) == 0 ? status.st_mode : 0;
    }
};

TEST_F(GuardSocketTest, tellsWhatTheGuardSays)
{
    const auto server = serving("first line\nÜber alles 云盘\n");
    ASSERT_TRUE(server);
    EXPECT_EQ(ask(*server), (Reply{Outcome::answered, "first line\nÜber alles 云盘\n"}));
    EXPECT_EQ(ask(*server).outcome, Outcome::answered) << "again";
    EXPECT_EQ(answers, 2);
}

TEST_F(GuardSocketTest, anEmptyTextIsAnAnswer)
{
    const auto server = serving("");
    ASSERT_TRUE(server);
    EXPECT_EQ(ask(*server), (Reply{Outcome::answered, ""}));
}

TEST_F(GuardSocketTest, nobodyElseHasRightsOnIt)
{
    const auto server = serving("x");
    ASSERT_TRUE(server);
    EXPECT_EQ(modeOf(socket), static_cast<mode_t>(S_IFSOCK | 0600));
    EXPECT_EQ(modeOf(socket.parent_path()), static_cast<mode_t>(S_IFDIR | 0700));
    EXPECT_NE(fcntl(server->descriptor(), F_GETFD) & FD_CLOEXEC, 0) << "no child gets it";
}

TEST_F(GuardSocketTest, isGoneAtTheEnd)
{
    serving("x").reset();
    EXPECT_FALSE(fs::exists(socket.parent_path()));
    const auto server = serving("x");
    std::ofstream{socket.parent_path() / "other"} << "x";
    ASSERT_TRUE(server);
}

TEST_F(GuardSocketTest, aFolderThatHoldsMoreStays)
{
    auto server = serving("x");
    std::ofstream{socket.parent_path() / "other"} << "x";
    server.reset();
    EXPECT_FALSE(fs::exists(socket));
    EXPECT_TRUE(fs::exists(socket.parent_path() / "other"));
}

TEST_F(GuardSocketTest, nobodyIsThere)
{
    EXPECT_EQ(GuardSocket::ask(places, plenty), Reply{}) << "no folder";
    fs::create_directory(socket.parent_path());
    fs::permissions(socket.parent_path(), fs::perms::owner_all);
    EXPECT_EQ(GuardSocket::ask(places, plenty), Reply{}) << "no socket";
    std::ofstream{socket} << "x";
    EXPECT_EQ(GuardSocket::ask(places, plenty), Reply{}) << "no socket but a file";
    EXPECT_EQ(GuardSocket::ask({}, plenty), Reply{}) << "no place";
}

/// What a guard leaves that is killed.
void leaveSocket(const fs::path& at)
{
    fs::create_directory(at.parent_path());
    fs::permissions(at.parent_path(), fs::perms::owner_all);
    const Descriptor dead{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    std::strncpy(place.sun_path, at.c_str(), sizeof place.sun_path - 1);
    ASSERT_EQ(bind(dead.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    ASSERT_EQ(listen(dead.get(), 1), 0);
}

TEST_F(GuardSocketTest, whatADeadOneLeftIsReplaced)
{
    leaveSocket(socket);
    EXPECT_EQ(GuardSocket::ask(places, plenty), Reply{});
    const auto server = serving("new");
    ASSERT_TRUE(server);
    EXPECT_EQ(ask(*server), (Reply{Outcome::answered, "new"}));
}

TEST_F(GuardSocketTest, whatOtherDeadOnesLeftIsRemoved)
{
    const fs::path dead = socket.parent_path() / "guard-dead";
    const fs::path beginning = socket.parent_path() / "guard-young.17";
    const fs::path file = socket.parent_path() / "file";
    leaveSocket(dead);
    leaveSocket(beginning);
    std::ofstream{file} << "x";
    const fs::path alive = socket.parent_path() / "guard-alive";
    const auto other = Server::open({alive}, [] { return "other"; });
    ASSERT_TRUE(other);
    EXPECT_FALSE(fs::exists(dead));
    EXPECT_TRUE(fs::exists(beginning)) << "it may be about to listen";
    leaveSocket(dead);
    const auto server = serving("x");
    ASSERT_TRUE(server);
    EXPECT_FALSE(fs::exists(dead));
    EXPECT_TRUE(fs::exists(alive));
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(ask(*server), (Reply{Outcome::answered, "x"}));
}

TEST_F(GuardSocketTest, nothingIsRemovedThatCouldNotBeAsked)
{
    const fs::path alive = socket.parent_path() / "guard-alive";
    const auto other = Server::open({alive}, [] { return "other"; });
    ASSERT_TRUE(other);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const int free = fcntl(other->descriptor(), F_DUPFD_CLOEXEC, 0);
    ASSERT_EQ(close(free), 0);
    // Enough for the socket and for looking round, and for nothing more.
    const rlimit few{static_cast<rlim_t>(free) + 2, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    const auto server = serving("x");
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_TRUE(server);
    EXPECT_TRUE(fs::exists(alive));
}

TEST_F(GuardSocketTest, aFileInItsPlaceIsReplaced)
{
    fs::create_directory(socket.parent_path());
    fs::permissions(socket.parent_path(), fs::perms::owner_all);
    std::ofstream{folder / "elsewhere"} << "keep";
    fs::create_symlink(folder / "elsewhere", socket);
    const auto server = serving("new");
    ASSERT_TRUE(server);
    EXPECT_EQ(ask(*server), (Reply{Outcome::answered, "new"}));
    EXPECT_EQ(fs::file_size(folder / "elsewhere"), 4U);
}

TEST_F(GuardSocketTest, theFirstOfTwoGuardsAnswers)
{
    const auto first = serving("first");
    ASSERT_TRUE(first);
    EXPECT_FALSE(serving("second"));
    EXPECT_EQ(ask(*first), (Reply{Outcome::answered, "first"}));
}

TEST_F(GuardSocketTest, anotherOnesSocketIsLeftAlone)
{
    auto server = serving("x");
    ASSERT_TRUE(server);
    fs::remove(socket);
    leaveSocket(socket);
    server.reset();
    EXPECT_TRUE(fs::exists(socket));
}

TEST_F(GuardSocketTest, aFolderThatOthersMayUseIsNone)
{
    fs::create_directory(socket.parent_path());
    for (const auto mode : {0755, 0770, 0701}) {
        fs::permissions(socket.parent_path(), static_cast<fs::perms>(mode));
        EXPECT_FALSE(serving("x"));
        EXPECT_EQ(GuardSocket::ask(places, plenty), Reply{});
    }
    fs::remove(socket.parent_path());
    fs::create_directory(folder / "real");
    fs::permissions(folder / "real", fs::perms::owner_all);
    fs::create_symlink(folder / "real", socket.parent_path());
    EXPECT_FALSE(serving("x")) << "a link";
    EXPECT_TRUE(fs::is_empty(folder / "real"));
}

TEST_F(GuardSocketTest, theNextPlaceIsTakenWhereTheFirstCannotBe)
{
    const std::vector<fs::path> two{folder / "missing/Quellon/guard", socket};
    const auto server = Server::open(two, [] { return "x"; });
    ASSERT_TRUE(server);
    EXPECT_TRUE(fs::exists(socket));
    const std::vector<fs::path> tooLong{folder / std::string(200, 'x') / "guard"};
    EXPECT_FALSE(Server::open(tooLong, [] { return "x"; }));
    EXPECT_EQ(GuardSocket::ask(tooLong, plenty), Reply{});
}

TEST_F(GuardSocketTest, aGuardThatIsBusyIsWaitedForNoLongerThanToldTo)
{
    const auto server = serving("late");
    ASSERT_TRUE(server);
    EXPECT_EQ(GuardSocket::ask(places, Seconds{0.05}), (Reply{Outcome::silent, ""}));
    EXPECT_EQ(answers, 0);
}

TEST_F(GuardSocketTest, manyWhoNeverReadCostOneTextEachRound)
{
    const auto server = serving(std::string(20'000, 'x'));
    ASSERT_TRUE(server);
    std::vector<Descriptor> crowd;
    for (int i = 0; i < 100; ++i) crowd.push_back(connected());
    const Reply expected{Outcome::answered, std::string(20'000, 'x')};
    EXPECT_EQ(ask(*server), expected) << "it waits for none of them";
    EXPECT_LE(answers, 2 + 101 / Server::mostAtOnce);
    for (const Descriptor& each : crowd) {
        ASSERT_TRUE(each);
        EXPECT_EQ(heardFrom(each).size(), 20'001U) << "and each can still read it";
    }
}

TEST_F(GuardSocketTest, whoHasGoneAgainDoesNoHarm)
{
    const auto server = serving(std::string(50'000, 'x'));
    ASSERT_TRUE(server);
    for (int i = 0; i < 5; ++i) (void)connected();
    ASSERT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_DFL) << "it would end the process";
    EXPECT_EQ(ask(*server).outcome, Outcome::answered);
}

TEST_F(GuardSocketTest, whoTalksIsNotListenedTo)
{
    const auto server = serving("x");
    ASSERT_TRUE(server);
    const Descriptor talker = connected();
    ASSERT_EQ(send(talker.get(), "hello", 5, MSG_NOSIGNAL), 5);
    EXPECT_EQ(ask(*server), (Reply{Outcome::answered, "x"}));
}

TEST_F(GuardSocketTest, aTextThatDoesNotFitIsNoAnswer)
{
    const auto server = serving(std::string(std::size_t{3} * 1024 * 1024, 'x'));
    ASSERT_TRUE(server);
    const Descriptor reader = connected();
    server->serve();
    EXPECT_EQ(answers, 1);
    const std::string heard = heardFrom(reader);
    EXPECT_LT(heard.size(), std::size_t{3} * 1024 * 1024) << "what the system holds for somebody who does not read";
    EXPECT_EQ(heard.find('\0'), std::string::npos) << "it has no end";
}

/// Somebody who listens there and says this.
class Impostor {
public:
    Impostor(const fs::path& at, std::string text) : text_{std::move(text)}
    {
        fs::create_directory(at.parent_path());
        fs::permissions(at.parent_path(), fs::perms::owner_all);
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        std::strncpy(place.sun_path, at.c_str(), sizeof place.sun_path - 1);
        if (bind(listener_.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) return;
        if (listen(listener_.get(), 1) != 0) return;
        thread_ = std::thread{[this] {
            const Descriptor one{accept(listener_.get(), nullptr, nullptr)};
            for (std::string_view rest = text_; !rest.empty();) {
                const ssize_t count = send(one.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
                if (count <= 0) return;
                rest.remove_prefix(static_cast<std::size_t>(count));
            }
        }};
    }
    ~Impostor() { thread_.join(); }
    Impostor(const Impostor&) = delete;
    Impostor& operator=(const Impostor&) = delete;

private:
    Descriptor listener_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    std::string text_;
    std::thread thread_;
};

TEST_F(GuardSocketTest, whatIsNoWholeTextIsNoAnswer)
{
    struct Case {
        const char* name;
        std::string sent;
    };
    const Case cases[] = {
        {"nothing", ""},
        {"no end", "text"},
        {"without an end", std::string(GuardSocket::largestText + 100'000, 'x')},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove(socket);
        const Impostor impostor{socket, c.sent};
        EXPECT_EQ(GuardSocket::ask(places, plenty), (Reply{Outcome::silent, ""}));
    }
}

TEST_F(GuardSocketTest, withoutADescriptorLeftWhoAsksIsSentAway)
{
    const auto server = Server::open(places, [] { return "x"; });
    ASSERT_TRUE(server);
    const Descriptor first = connected();
    const Descriptor second = connected();
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const int free = fcntl(first.get(), F_DUPFD_CLOEXEC, 0);
    ASSERT_EQ(close(free), 0);
    const rlimit none{static_cast<rlim_t>(free), before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    pollfd waited{server->descriptor(), POLLIN, 0};
    for (int i = 0; i < 10 && poll(&waited, 1, 0) > 0; ++i) server->serve();
    EXPECT_EQ(poll(&waited, 1, 0), 0) << "nobody waits any more";
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(ask(*server), (Reply{Outcome::answered, "x"})) << "later it answers again";
}

TEST_F(GuardSocketTest, places)
{
    ScriptedHost host;
    const auto at = [&host](const char* state) {
        return GuardSocket::places(host.host().processes, host.files(), state);
    };
    const auto home = at("/home/user/.local/share/Quellon");
    ASSERT_EQ(home.size(), 1U);
    EXPECT_EQ(home[0].parent_path(), "/tmp/Quellon-" + std::to_string(geteuid()));
    EXPECT_THAT(home[0].filename().native(), ::testing::MatchesRegex("guard-[0-9a-f]{16}"));
    EXPECT_EQ(at("/home/user/./x/../.local/share/Quellon/"), home) << "the same folder";
    EXPECT_NE(at("/copy"), home) << "another folder";
    host.environment("XDG_RUNTIME_DIR", "/run/user/7");
    const auto both = at("/home/user/.local/share/Quellon");
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(both[0], "/run/user/7/Quellon" / home[0].filename());
    EXPECT_EQ(both[1], home[0]);
    host.environment("XDG_RUNTIME_DIR", "relative");
    EXPECT_EQ(at("/home/user/.local/share/Quellon"), home);
}

} // namespace
} // namespace quellon
