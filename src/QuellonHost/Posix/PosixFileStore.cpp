#include "QuellonHost/Posix/PosixFileStore.h"

#include "QuellonHost/Posix/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace quellon {

namespace {

namespace fs = std::filesystem;

constexpr mode_t userOnlyFile = 0600;
constexpr mode_t userOnlyFolder = 0700;

/// An environment variable that holds an absolute path; a relative one is as good as none.
std::optional<fs::path> absolutePath(const ProcessControl& processes, std::string_view name)
{
    const auto value = processes.environment(name);
    if (!value || !fs::path{*value}.is_absolute()) return std::nullopt;
    return fs::path{*value};
}

std::optional<fs::path> homeInUserDatabase()
{
    constexpr std::size_t roomForEntry = 16'384;
    std::vector<char> room(roomForEntry);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, room.data(), room.size(), &found) != 0 || found == nullptr) return std::nullopt;
    const fs::path home{entry.pw_dir};
    if (!home.is_absolute()) return std::nullopt;
    return home;
}

bool writeAll(int descriptor, std::string_view content)
{
    while (!content.empty()) {
        const ssize_t count = ::write(descriptor, content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// A regular file with nobody else's rights on it, whatever it had before. Devices keep theirs.
bool makePrivate(int descriptor)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return false;
    if (!S_ISREG(status.st_mode) || (status.st_mode & 0777) == userOnlyFile) return true;
    return fchmod(descriptor, userOnlyFile) == 0;
}

bool isDirectory(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

Date lastChange(const struct stat& status)
{
#ifdef __APPLE__
    const timespec& at = status.st_mtimespec;
#else
    const timespec& at = status.st_mtim;
#endif
    const Seconds since1970 = std::chrono::seconds{at.tv_sec} + Seconds{static_cast<double>(at.tv_nsec) / 1e9};
    return Date{since1970 - referenceDateSince1970};
}

} // namespace

PosixFileStore::PosixFileStore(const ProcessControl& processes, DataFolder dataFolder)
    : temporary_{absolutePath(processes, "TMPDIR").value_or("/tmp")}
{
    auto home = absolutePath(processes, "HOME");
    if (!home) home = homeInUserDatabase();
    home_ = home.value_or("/");
    if (dataFolder == DataFolder::xdg) applicationSupport_ = absolutePath(processes, "XDG_DATA_HOME");
    if (applicationSupport_ || !home) return;
    applicationSupport_ = *home / (dataFolder == DataFolder::xdg ? ".local/share" : "Library/Application Support");
}

std::optional<std::string> PosixFileStore::read(const fs::path& file) const
{
    const Descriptor descriptor{open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)}; // a named pipe must not block
    struct stat status {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    if (status.st_size > static_cast<off_t>(largestFile)) return std::nullopt;
    std::string content;
    content.reserve(static_cast<std::size_t>(status.st_size));
    std::array<char, 65'536> buffer{};
    while (true) {
        const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) return content;
        if (content.size() + static_cast<std::size_t>(count) > largestFile) return std::nullopt; // it grows
        content.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

bool PosixFileStore::write(const fs::path& file, std::string_view content)
{
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW;
    Descriptor descriptor{open(file.c_str(), flags, userOnlyFile)};
    if (!descriptor || !makePrivate(descriptor.get()) || !writeAll(descriptor.get(), content)) return false;
    return descriptor.close(); // where the disk is far away, it tells only now that it is full
}

bool PosixFileStore::append(const fs::path& file, std::string_view content)
{
    constexpr int flags = O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW;
    Descriptor descriptor{open(file.c_str(), flags)};
    if (!descriptor || !makePrivate(descriptor.get()) || !writeAll(descriptor.get(), content)) return false;
    return descriptor.close();
}

std::vector<FileFacts> PosixFileStore::regularFiles(const fs::path& directory) const
{
    std::vector<FileFacts> result;
    std::error_code error;
    for (fs::directory_iterator each{directory, error}, end; !error && each != end; each.increment(error)) {
        struct stat status {};
        if (lstat(each->path().c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        result.push_back({each->path().filename().native(),
                          static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0)), lastChange(status)});
    }
    std::ranges::sort(result, {}, &FileFacts::name);
    return result;
}

bool PosixFileStore::replace(const fs::path& from, const fs::path& to)
{
    return std::rename(from.c_str(), to.c_str()) == 0;
}

bool PosixFileStore::remove(const fs::path& file)
{
    return unlink(file.c_str()) == 0;
}

bool PosixFileStore::createDirectories(const fs::path& directory)
{
    fs::path path; // as it stands: behind a link, ".." is another folder than the text suggests
    for (const auto& part : directory) {
        path /= part;
        if (mkdir(path.c_str(), userOnlyFolder) != 0 && !isDirectory(path)) return false;
    }
    return isDirectory(path);
}

fs::path PosixFileStore::canonical(const fs::path& path) const
{
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    fs::path result = fs::weakly_canonical(error ? path : absolute, error);
    if (error) result = absolute.lexically_normal();
    return result.has_filename() ? result : result.parent_path();
}

std::optional<fs::path> PosixFileStore::applicationSupportDirectory() const
{
    return applicationSupport_;
}

} // namespace quellon
