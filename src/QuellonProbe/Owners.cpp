#include "QuellonProbe/Owners.h"

#include "QuellonProbe/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <optional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace quellon {

namespace {

constexpr double shortestPause = 8;
constexpr double longestPause = 256;
constexpr double memory = 600;
// Beyond this many searches a look at all processes is cheaper than asking each for its control group first.
constexpr std::size_t fewSearches = 64;
constexpr std::size_t mostGroups = 1024;

/// Path of a file below a process's folder, without the heap.
class ProcessPath {
public:
    ProcessPath(std::int32_t pid, std::string_view rest)
    {
        auto* end = std::to_chars(text_.data(), text_.data() + 16, pid).ptr;
        std::memcpy(end, rest.data(), rest.size());
        end[rest.size()] = '\0';
    }
    [[nodiscard]] const char* text() const { return text_.data(); }

private:
    std::array<char, 32> text_;
};

/// The N of "socket:[N]".
std::optional<std::uint32_t> socketInode(std::string_view target)
{
    constexpr std::string_view prefix = "socket:[";
    if (!target.starts_with(prefix)) return std::nullopt;
    target.remove_prefix(prefix.size());
    std::uint32_t inode = 0;
    const auto [end, error] = std::from_chars(target.data(), target.data() + target.size(), inode);
    if (error != std::errc{} || end == target.data() + target.size() || *end != ']') return std::nullopt;
    return inode;
}

enum class Visited { goOn, absent, stop };

/// Calls `visit` with the name of each entry of an open folder until it says stop. Without opendir(), whose buffer
/// comes from the heap each time.
template <typename Visit>
void forEachEntry(int folder, Visit visit)
{
    alignas(dirent64) static std::array<char, 32 * 1024> buffer;
    for (;;) {
        const auto size = ::syscall(SYS_getdents64, folder, buffer.data(), buffer.size());
        if (size <= 0) return;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            const char* entry = buffer.data() + at;
            unsigned short length = 0;
            std::memcpy(&length, entry + offsetof(dirent64, d_reclen), sizeof length);
            if (visit(entry + offsetof(dirent64, d_name)) == Visited::stop) return;
            at += length;
        }
    }
}

/// Calls `visit` with the `count` descriptors of a process; 0: it isn't known how many. The numbers are guessed from 0
/// up, since a process gets the lowest that is free and listing them costs as much as looking at them. From where
/// guesses go wrong too often they are listed: the kernel lists them in order, and a position in the folder is a number
/// and two.
template <typename Visit>
void forEachDescriptor(int folder, std::int64_t count, Visit visit)
{
    std::int64_t found = 0;
    std::int64_t missing = 0;
    std::int64_t number = 0;
    for (; found < count && missing <= 2 + count / 16; ++number) {
        std::array<char, 24> name{};
        std::to_chars(name.data(), name.data() + name.size() - 1, number);
        const auto result = visit(name.data());
        if (result == Visited::stop) return;
        ++(result == Visited::absent ? missing : found);
    }
    if (count > 0 && found >= count) return;
    if (number > 0 && ::lseek(folder, number + 2, SEEK_SET) < 0) return;
    forEachEntry(folder, visit);
}

bool isGroupFolder(const char* path)
{
    struct statfs info {};
    return ::statfs(path, &info) == 0 && info.f_type == CGROUP2_SUPER_MAGIC;
}

} // namespace

ControlGroups::ControlGroups(const ProcFolder& proc, std::string root) : proc_{proc}, root_{std::move(root)}
{
    if (!root_.empty()) return;
    for (const auto* path : {"/sys/fs/cgroup", "/sys/fs/cgroup/unified"}) {
        if (!isGroupFolder(path)) continue;
        root_ = path;
        return;
    }
}

std::uint64_t ControlGroups::of(std::int32_t pid)
{
    if (root_.empty()) return 0;
    const auto text = proc_.file(pid, "cgroup");
    if (!text) return 0;
    // "0::/path", among the lines of the older hierarchies.
    const auto start = text->starts_with("0::") ? 0 : text->find("\n0::");
    if (start == std::string::npos) return 0;
    const auto path = start + (start == 0 ? 3 : 4);
    const auto below = text->substr(path, text->find('\n', path) - path);
    if (const auto known = ids_.find(below); known != ids_.end()) return known->second;
    struct stat info {};
    if (::stat((root_ + below).c_str(), &info) != 0) return 0;
    if (ids_.size() >= mostGroups) ids_.clear();
    return ids_[below] = info.st_ino;
}

namespace {

bool isProcFolder(int folder)
{
    struct statfs info {};
    return ::fstatfs(folder, &info) == 0 && info.f_type == PROC_SUPER_MAGIC;
}

} // namespace

Owners::Owners(const ProcFolder& proc, ControlGroups groups, ProcessNames& names)
    : proc_{proc}, groups_{std::move(groups)}, names_{names}, isKernels_{isProcFolder(proc.descriptor())}
{
}

struct Owners::Hunt {
    std::vector<SocketSearch>& searches;
    std::vector<std::pair<std::uint32_t, std::size_t>> byInode; ///< ascending; second: place in `searches`
    std::vector<std::int32_t> pids;                             ///< all processes, ascending; empty until needed
    std::unordered_set<std::int32_t> scanned;
    std::size_t fresh = 0; ///< new searches without an answer
    std::size_t open = 0;  ///< searches without an answer
    double now = 0;

    Hunt(std::vector<SocketSearch>& all, double time) : searches{all}, now{time}
    {
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (all[i].inode == 0) continue;
            byInode.emplace_back(all[i].inode, i);
            ++open;
            if (all[i].isNew) ++fresh;
        }
        std::ranges::sort(byInode);
    }
    /// Whether a new search without an answer has this control group, or may have it, as far as is known.
    [[nodiscard]] bool wants(std::uint64_t cgroup) const
    {
        return std::ranges::any_of(byInode, [&](const auto& entry) {
            const auto& search = searches[entry.second];
            const bool fits = search.cgroup == cgroup || search.cgroup == 0 || cgroup == 0;
            return search.isNew && search.owner == 0 && fits;
        });
    }
    [[nodiscard]] SocketSearch* find(std::uint32_t inode) const
    {
        const auto place = std::ranges::lower_bound(byInode, inode, {}, [](const auto& e) { return e.first; });
        return place != byInode.end() && place->first == inode ? &searches[place->second] : nullptr;
    }
};

void Owners::find(std::vector<SocketSearch>& searches, double now)
{
    Hunt hunt{searches, now};
    const bool mayLookAtAll = now >= nextLookAtAll_;
    if (hunt.fresh > 0) lookInKnown(hunt);
    if (hunt.fresh > 0 && (hunt.fresh <= fewSearches || !mayLookAtAll)) lookInLikely(hunt);
    if (hunt.open > 0 && mayLookAtAll) lookInAll(hunt, now);
}

void Owners::lookInKnown(Hunt& hunt)
{
    struct Candidate {
        bool hasChanged = false;
        double found = 0;
        std::int32_t pid = 0;

        auto operator<=>(const Candidate&) const = default;
    };
    std::vector<Candidate> candidates;
    for (const auto& [pid, known] : known_) {
        if (!hunt.wants(known.cgroup)) continue;
        const auto count = descriptorCount(proc_.descriptor(), ProcessPath{pid, "/fd"}.text());
        candidates.push_back({count != known.descriptors, known.found, pid});
    }
    std::ranges::sort(candidates, std::ranges::greater{});
    for (const auto& candidate : candidates) {
        if (hunt.fresh == 0) return;
        scan(hunt, candidate.pid);
    }
}

void Owners::lookInLikely(Hunt& hunt)
{
    if (!proc_.list(hunt.pids)) return;
    // The newest processes first: who has just started is who opens connections.
    for (auto pid = hunt.pids.rbegin(); pid != hunt.pids.rend() && hunt.fresh > 0; ++pid) {
        if (hunt.scanned.contains(*pid)) continue;
        const bool isNewcomer = !pids_.empty() && !std::ranges::binary_search(pids_, *pid);
        if (isNewcomer || hunt.wants(groups_.of(*pid))) scan(hunt, *pid);
    }
}

void Owners::lookInAll(Hunt& hunt, double now)
{
    if (hunt.pids.empty() && !proc_.list(hunt.pids)) return;
    for (const auto pid : hunt.pids) {
        if (hunt.open == 0) break;
        if (!hunt.scanned.contains(pid)) scan(hunt, pid);
    }
    pause_ = hunt.open == 0 ? 0 : std::clamp(pause_ * 2, shortestPause, longestPause);
    nextLookAtAll_ = now + pause_;
    pids_ = std::move(hunt.pids);
}

void Owners::scan(Hunt& hunt, std::int32_t pid)
{
    hunt.scanned.insert(pid);
    const int folder = ::openat(proc_.descriptor(), ProcessPath{pid, "/fd"}.text(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    std::uint64_t cgroup = 0;
    bool found = false;
    const auto count = descriptorCount(folder, "");
    forEachDescriptor(folder, count, [&](const char* name) {
        std::array<char, 64> target;
        const auto length = ::readlinkat(folder, name, target.data(), target.size());
        if (length <= 0) return Visited::absent;
        const auto inode = socketInode({target.data(), static_cast<std::size_t>(length)});
        auto* search = inode ? hunt.find(*inode) : nullptr;
        if (!search || search->owner != 0) return Visited::goOn;
        search->owner = pid;
        cgroup = search->cgroup;
        found = true;
        --hunt.open;
        if (search->isNew) --hunt.fresh;
        return hunt.open > 0 ? Visited::goOn : Visited::stop;
    });
    ::close(folder);
    if (found) remember(pid, cgroup, hunt.now);
    if (const auto known = known_.find(pid); known != known_.end()) known->second.descriptors = count;
}

/// How many descriptors a process has, by its folder of them, `path` below `folder` or "" for that folder itself. The
/// kernel tells it as the folder's size since Linux 6.2, before that 0.
std::int64_t Owners::descriptorCount(int folder, const char* path) const
{
    struct stat info {};
    return isKernels_ && ::fstatat(folder, path, &info, AT_EMPTY_PATH) == 0 ? info.st_size : 0;
}

void Owners::remember(std::int32_t pid, std::uint64_t cgroup, double now)
{
    auto& known = known_[pid];
    known.cgroup = cgroup;
    known.found = now;
    struct stat info {};
    if (::fstatat(proc_.descriptor(), ProcessPath{pid, ""}.text(), &info, 0) != 0) return;
    // Anew each time, since a process may have become another program.
    auto process = look(pid, info.st_uid);
    if (!process) return;
    if (info.st_ino != known.folder || info.st_uid != known.user) known.startTicks.reset();
    known.folder = info.st_ino;
    known.user = info.st_uid;
    known.name = cleanName(std::string_view{process->path}.substr(process->path.rfind('/') + 1), Commas::replaced);
    known.process = std::move(*process);
}

/// Absent when the process has ended.
std::optional<SeenProcess> Owners::look(std::int32_t pid, std::uint32_t user)
{
    const auto group = proc_.group(pid);
    if (!group) return std::nullopt;
    if (const auto path = names_.ofExecutable(pid)) return SeenProcess{pid, user, *group, std::string{*path}};
    const auto stat = proc_.stat(pid);
    if (!stat || stat->hasEnded) return std::nullopt;
    return SeenProcess{pid, user, *group, std::string{names_.of(pid, *stat)}};
}

Owners::Presence Owners::presence(std::int32_t pid)
{
    const auto place = known_.find(pid);
    if (place == known_.end()) return Presence::gone;
    auto& known = place->second;
    struct stat info {};
    if (::fstatat(proc_.descriptor(), ProcessPath{pid, ""}.text(), &info, 0) != 0) return Presence::gone;
    const bool isSameFolder = info.st_ino == known.folder && info.st_uid == known.user;
    if (isSameFolder && known.startTicks) return Presence::same;
    const auto stat = proc_.stat(pid);
    if (!stat) return Presence::gone;
    if (isSameFolder) {
        known.startTicks = stat->startTicks;
        return Presence::same;
    }
    // The kernel may have given the folder a new inode, or the process may have changed its user.
    if (stat->startTicks != known.startTicks) return Presence::replaced;
    if (stat->hasEnded) return Presence::gone;
    known.folder = info.st_ino;
    known.user = info.st_uid;
    return Presence::same;
}

const std::string& Owners::name(std::int32_t pid) const
{
    static const std::string none;
    const auto place = known_.find(pid);
    return place == known_.end() ? none : place->second.name;
}

const SeenProcess* Owners::seen(std::int32_t pid) const
{
    const auto place = known_.find(pid);
    return place == known_.end() || place->second.process.pid == 0 ? nullptr : &place->second.process;
}

void Owners::prune(const std::unordered_set<std::int32_t>& inUse, double now)
{
    std::erase_if(known_, [&](const auto& entry) {
        if (inUse.contains(entry.first)) return false;
        return now - entry.second.found > memory || presence(entry.first) != Presence::same;
    });
}

} // namespace quellon
