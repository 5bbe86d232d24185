#include "QuellonProbe/Proc.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quellon {
namespace {

constexpr std::uint64_t kernelThreadFlag = 0x00200000; ///< PF_KTHREAD of the kernel's process flags
constexpr std::size_t listBuffer = 32'768;
constexpr std::size_t fileLimit = 65'536;

/// "PID/name" without an allocation, since it is made several times per process.
class ProcessPath {
public:
    ProcessPath(std::int32_t pid, std::string_view name)
    {
        char* end = std::to_chars(text_.data(), text_.data() + text_.size(), pid).ptr;
        const auto left = static_cast<std::size_t>(text_.data() + text_.size() - end);
        if (name.size() + 2 > left)
            end = text_.data(); // the empty path, which nothing has
        else if (!name.empty()) {
            *end++ = '/';
            end = std::copy(name.begin(), name.end(), end);
        }
        *end = '\0';
    }
    [[nodiscard]] const char* text() const { return text_.data(); }

private:
    std::array<char, 96> text_{};
};

/// Fills `buffer` from the file; the number of bytes, or -1.
ssize_t readInto(int folder, const char* path, char* buffer, std::size_t size)
{
    const int descriptor = openat(folder, path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return -1;
    std::size_t filled = 0;
    ssize_t got = 0;
    while (filled < size) {
        got = read(descriptor, buffer + filled, size - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        filled += static_cast<std::size_t>(got);
    }
    close(descriptor);
    return got < 0 ? -1 : static_cast<ssize_t>(filled);
}

template <typename T>
bool readNumber(std::string_view text, T& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size();
}

std::string_view takeField(std::string_view& rest)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(" \n"), rest.size()));
    const auto field = rest.substr(0, rest.find_first_of(" \n"));
    rest.remove_prefix(field.size());
    return field;
}

} // namespace

ProcFolder::ProcFolder(const std::string& root) : descriptor_{open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)}
{
    std::array<char, 16> self;
    const auto size = readlinkat(descriptor_, "self", self.data(), self.size());
    isOwn_ = size > 0 && parsePid({self.data(), static_cast<std::size_t>(size)}) == getpid();
}

ProcFolder::~ProcFolder()
{
    if (descriptor_ >= 0) close(descriptor_);
}

bool ProcFolder::list(std::vector<std::int32_t>& pids) const
{
    pids.clear();
    if (lseek(descriptor_, 0, SEEK_SET) < 0) return false;
    alignas(dirent64) std::array<char, listBuffer> buffer;
    for (;;) {
        const long size = syscall(SYS_getdents64, descriptor_, buffer.data(), buffer.size());
        if (size < 0) return false;
        if (size == 0) break;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const char* entry = buffer.data() + at;
            unsigned short length = 0;
            std::memcpy(&length, entry + offsetof(dirent64, d_reclen), sizeof length);
            if (const auto pid = parsePid(entry + offsetof(dirent64, d_name))) pids.push_back(*pid);
            at += length;
        }
    }
    if (!std::is_sorted(pids.begin(), pids.end())) std::sort(pids.begin(), pids.end());
    return true;
}

std::optional<std::uint32_t> ProcFolder::owner(std::int32_t pid) const
{
    struct stat status;
    if (fstatat(descriptor_, ProcessPath{pid, ""}.text(), &status, 0) != 0) return std::nullopt;
    return status.st_uid;
}

std::optional<ProcessStat> ProcFolder::stat(std::int32_t pid) const
{
    std::array<char, 2048> buffer;
    const auto size = readInto(descriptor_, ProcessPath{pid, "stat"}.text(), buffer.data(), buffer.size());
    if (size <= 0) return std::nullopt;
    return parseStat({buffer.data(), static_cast<std::size_t>(size)});
}

std::optional<std::int32_t> ProcFolder::group(std::int32_t pid) const
{
    if (isOwn_) {
        const auto group = getpgid(pid);
        return group < 0 ? std::nullopt : std::optional{group};
    }
    const auto read = stat(pid);
    return read ? std::optional{read->group} : std::nullopt;
}

std::optional<std::string> ProcFolder::executable(std::int32_t pid) const
{
    std::array<char, PATH_MAX> buffer;
    const auto size = readlinkat(descriptor_, ProcessPath{pid, "exe"}.text(), buffer.data(), buffer.size());
    if (size <= 0) return std::nullopt;
    return std::string{buffer.data(), static_cast<std::size_t>(size)};
}

std::optional<std::string> ProcFolder::file(const std::string& path) const
{
    std::string text(fileLimit, '\0');
    const auto size = readInto(descriptor_, path.c_str(), text.data(), text.size());
    if (size < 0) return std::nullopt;
    text.resize(static_cast<std::size_t>(size));
    text.shrink_to_fit();
    return text;
}

std::optional<std::string> ProcFolder::file(std::int32_t pid, std::string_view path) const
{
    return file(ProcessPath{pid, path}.text());
}

std::optional<ProcessStat> ProcFolder::parseStat(std::string_view text)
{
    const auto open = text.find('(');
    const auto close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;
    ProcessStat stat;
    stat.comm = text.substr(open + 1, close - open - 1);
    std::string_view rest = text.substr(close + 1);
    std::uint64_t flags = 0;
    // Numbered as the kernel's documentation does: 1 is the pid, 2 the comm.
    for (int field = 3; field <= 22; ++field) {
        const auto value = takeField(rest);
        if (field == 3) stat.hasEnded = value == "Z" || value == "X";
        const bool good = field == 4    ? readNumber(value, stat.parent)
                          : field == 5  ? readNumber(value, stat.group)
                          : field == 9  ? readNumber(value, flags)
                          : field == 22 ? readNumber(value, stat.startTicks)
                                        : !value.empty();
        if (!good) return std::nullopt;
    }
    stat.isKernelThread = (flags & kernelThreadFlag) != 0;
    return stat;
}

std::optional<std::int32_t> ProcFolder::parsePid(std::string_view text)
{
    std::int32_t pid = 0;
    if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;
    if (!readNumber(text, pid) || pid == 0) return std::nullopt;
    return pid;
}

} // namespace quellon
