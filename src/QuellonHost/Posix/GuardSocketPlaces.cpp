#include "QuellonHost/Posix/GuardSocketPlaces.h"

#include "QuellonHost/Posix/GuardSocket.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quellon::GuardSocket {

namespace fs = std::filesystem;

namespace {

/// FNV-1a: the same in every build and every process.
std::uint64_t hash(const std::string& text)
{
    std::uint64_t result = 0xCBF2'9CE4'8422'2325U;
    for (const char c : text) {
        result ^= static_cast<unsigned char>(c);
        result *= 0x0000'0100'0000'01B3U;
    }
    return result;
}

#ifdef __APPLE__
/// Where the system can't make it so in one step. A child started by another thread before may inherit it.
void keepToOneself(const Descriptor& descriptor)
{
    if (!descriptor) return;
    (void)fcntl(descriptor.get(), F_SETFD, FD_CLOEXEC);
    setNonBlocking(descriptor);
}
#endif

std::optional<uid_t> userAt(const Descriptor& connection)
{
#ifdef __APPLE__
    uid_t user = 0;
    gid_t group = 0;
    if (getpeereid(connection.get(), &user, &group) != 0) return std::nullopt;
    return user;
#else
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return std::nullopt;
    return peer.uid;
#endif
}

} // namespace

std::vector<fs::path> places(const ProcessControl& processes, const FileStore& files, const fs::path& stateDirectory)
{
    const std::string name = fmt::format("guard-{:016x}", hash(files.canonical(stateDirectory).native()));
    std::vector<fs::path> result;
    const fs::path runtime = processes.environment("XDG_RUNTIME_DIR").value_or("");
    if (runtime.is_absolute()) result.push_back(runtime / "Quellon" / name);
    result.push_back(files.temporaryDirectory() / fmt::format("Quellon-{}", geteuid()) / name);
    return result;
}

bool isPrivateFolder(const fs::path& folder)
{
    struct stat status {};
    if (lstat(folder.c_str(), &status) != 0) return false;
    return S_ISDIR(status.st_mode) && status.st_uid == geteuid() && (status.st_mode & 077) == 0;
}

std::optional<sockaddr_un> address(const fs::path& path)
{
    sockaddr_un result{};
    result.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof result.sun_path) return std::nullopt;
    std::memcpy(result.sun_path, path.c_str(), path.native().size());
    return result;
}

Descriptor makeSocket()
{
#ifdef __APPLE__
    Descriptor result{socket(AF_UNIX, SOCK_STREAM, 0)};
    keepToOneself(result);
    return result;
#else
    return Descriptor{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
#endif
}

Descriptor accept(const Descriptor& listener)
{
#ifdef __APPLE__
    Descriptor result{::accept(listener.get(), nullptr, nullptr)};
    keepToOneself(result);
    return result;
#else
    return Descriptor{accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)};
#endif
}

bool isSameUser(const Descriptor& connection)
{
    return userAt(connection) == geteuid();
}

Connection connect(const Descriptor& descriptor, const sockaddr_un& address)
{
    const auto* const general = reinterpret_cast<const sockaddr*>(&address);
    if (::connect(descriptor.get(), general, sizeof address) == 0) return Connection::made;
    return errno == EAGAIN || errno == EINPROGRESS ? Connection::busy : Connection::refused;
}

} // namespace quellon::GuardSocket
