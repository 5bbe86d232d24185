#include "QuellonHost/Posix/GuardSocket.h"
#include "QuellonHost/Posix/GuardSocketPlaces.h"
#include "QuellonHost/Posix/PipeSignalBlock.h"

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quellon::GuardSocket {

namespace fs = std::filesystem;

namespace {

constexpr mode_t userOnlyFolder = 0700;
constexpr mode_t userOnlyFile = 0600;

Descriptor makeSpare()
{
    return Descriptor{open("/dev/null", O_RDONLY | O_CLOEXEC)};
}

bool isAnswered(const sockaddr_un& place)
{
    const Descriptor descriptor = makeSocket();
    return descriptor && connect(descriptor, place) != Connection::refused;
}

/// Whether it is certain that nobody listens there. Who can't be asked for another reason may be alive.
bool isDead(const sockaddr_un& place)
{
    const Descriptor descriptor = makeSocket();
    return descriptor && connect(descriptor, place) == Connection::refused && errno == ECONNREFUSED;
}

/// A socket that listens at `path`, whose folder may be missing; whatever lies there is replaced in one step.
Descriptor listenAt(const fs::path& path)
{
    const fs::path fresh = path.native() + "." + std::to_string(getpid());
    const auto place = address(fresh);
    Descriptor descriptor = makeSocket();
    (void)mkdir(path.parent_path().c_str(), userOnlyFolder);
    if (!place || !descriptor || !isPrivateFolder(path.parent_path())) return {};
    (void)unlink(fresh.c_str());
    const auto* const general = reinterpret_cast<const sockaddr*>(&*place);
    if (bind(descriptor.get(), general, sizeof *place) != 0) return {};
    const bool listens = chmod(fresh.c_str(), userOnlyFile) == 0 && listen(descriptor.get(), SOMAXCONN) == 0;
    if (listens && rename(fresh.c_str(), path.c_str()) == 0) return descriptor;
    (void)unlink(fresh.c_str());
    return {};
}

/// Removes what guards on other state that were killed have left beside `own`. Sockets that do not listen yet have a
/// full stop in their names.
void sweepBeside(const fs::path& own)
{
    std::error_code error;
    for (fs::directory_iterator each{own.parent_path(), error}, end; !error && each != end; each.increment(error)) {
        const fs::path& path = each->path();
        if (path == own) continue;
        const auto place = address(path);
        struct stat status {};
        const bool isSocket = lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
        if (isSocket && place && path.extension().empty() && isDead(*place)) (void)unlink(path.c_str());
    }
}

/// Sends what fits, at once.
void sendAtOnce(const Descriptor& connection, std::string_view text)
{
    const PipeSignalBlock block; // the other end may have gone
    while (!text.empty()) {
        const ssize_t count = send(connection.get(), text.data(), text.size(), MSG_DONTWAIT);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace

/// Which file a path leads to.
struct Server::Identity {
    dev_t device;
    ino_t file;
    bool operator==(const Identity&) const = default;

    [[nodiscard]] static std::unique_ptr<const Identity> of(const fs::path& path)
    {
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0) return nullptr;
        return std::make_unique<const Identity>(Identity{status.st_dev, status.st_ino});
    }
};

std::unique_ptr<Server> Server::open(const std::vector<fs::path>& places, Answer answer)
{
    for (const fs::path& path : places) {
        const auto place = address(path);
        if (place && isPrivateFolder(path.parent_path()) && isAnswered(*place)) return nullptr;
    }
    for (const fs::path& path : places) {
        Descriptor listener = listenAt(path);
        if (!listener) continue;
        sweepBeside(path);
        return std::unique_ptr<Server>{new Server{path, std::move(listener), std::move(answer)}};
    }
    return nullptr;
}

Server::Server(fs::path path, Descriptor listener, Answer answer)
    : path_{std::move(path)},
      identity_{Identity::of(path_)},
      listener_{std::move(listener)},
      spare_{makeSpare()},
      answer_{std::move(answer)}
{
}

Server::~Server()
{
    const auto there = Identity::of(path_);
    if (!identity_ || !there || *there != *identity_) return;
    (void)unlink(path_.c_str());
    (void)rmdir(path_.parent_path().c_str());
}

Descriptor Server::next()
{
    Descriptor connection = accept(listener_);
    // Who waits is sent away, or the listener would stay readable and the guard would do nothing else.
    if (!connection && (errno == EMFILE || errno == ENFILE)) {
        spare_.close();
        const Descriptor unwanted = accept(listener_);
        spare_ = makeSpare();
    }
    return connection;
}

void Server::serve()
{
    std::optional<std::string> text;
    for (int i = 0; i < mostAtOnce; ++i) {
        const Descriptor connection = next();
        if (!connection) return;
        if (!isSameUser(connection)) continue;
        if (!text) text = answer_() + endMark;
        sendAtOnce(connection, *text);
    }
}

} // namespace quellon::GuardSocket
