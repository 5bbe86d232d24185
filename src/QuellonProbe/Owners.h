#pragma once

#include "QuellonProbe/Proc.h"
#include "QuellonProbe/ProcessNames.h"
#include "QuellonProbe/SeenProcess.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quellon {

/// A socket whose process is looked for.
struct SocketSearch {
    std::uint32_t inode = 0;
    std::uint64_t cgroup = 0; ///< the socket's control group, 0 when unknown
    bool isNew = true;        ///< false: looked for before, in vain
    std::int32_t owner = 0;   ///< the answer: the process that holds the socket, 0 for none found
};

/// Which control group a process is in, as the number that the kernel gives sockets.
class ControlGroups {
public:
    /// `root` is where version 2 of the control groups is mounted; empty: where it is on this machine, if anywhere.
    explicit ControlGroups(const ProcFolder& proc, std::string root = {});

    /// 0 when it can't be told.
    [[nodiscard]] std::uint64_t of(std::int32_t pid);

private:
    const ProcFolder& proc_;
    std::string root_;
    std::unordered_map<std::string, std::uint64_t> ids_; ///< by path below the root
};

/// Finds the processes that hold sockets, and remembers who they are. Reading every descriptor of every process is what
/// costs, so it is the last resort. Not thread-safe. Times are seconds of a clock that doesn't jump.
class Owners {
public:
    enum class Presence {
        same,     ///< the process that was found is still there
        gone,     ///< it has ended
        replaced, ///< it has ended, and its number belongs to another process
    };

    /// `proc` and `names` outlive the object.
    Owners(const ProcFolder& proc, ControlGroups groups, ProcessNames& names);

    /// Fills in the owners of `searches`. It looks in processes that were found before with a socket of the same
    /// control group, those first that have more or fewer descriptors than then; then in those of the socket's control
    /// group and those that have started since all were looked at; then in all, unless that left something unfound a
    /// short while ago (8 s, doubling up to 256 s). A search that is not new takes part in the last step alone. Where
    /// the control group of a socket or a process is unknown, it may be any.
    void find(std::vector<SocketSearch>& searches, double now);

    /// Whether a process that find() has named is still the same one. One that find() never named is gone.
    [[nodiscard]] Presence presence(std::int32_t pid);
    /// The last component of its path when it was found, clean for a row; empty for one that find() never named.
    [[nodiscard]] const std::string& name(std::int32_t pid) const;
    /// What it was when it was found last; null for one that find() never named, and for one that ended in that moment.
    /// Valid until the next call of find() or prune().
    [[nodiscard]] const SeenProcess* seen(std::int32_t pid) const;
    /// Forgets the processes that are not `inUse` when they have ended or had no new socket for ten minutes.
    void prune(const std::unordered_set<std::int32_t>& inUse, double now);

private:
    struct Known {
        std::optional<std::uint64_t> startTicks; ///< read when its presence is first asked for
        SeenProcess process;                     ///< pid 0 when it ended before it could be looked at
        std::uint64_t folder = 0;     ///< inode of the process's folder, cheap proof that it is the same process
        std::uint32_t user = 0;       ///< owner of that folder, which changes when the process dies unreaped
        std::uint64_t cgroup = 0;     ///< of the newest of its sockets
        double found = 0;             ///< when a socket of it was found last
        std::int64_t descriptors = 0; ///< how many it had when they were looked at, 0 where the kernel doesn't say
        std::string name;
    };
    struct Hunt; ///< one run of find()

    void lookInKnown(Hunt& hunt);
    void lookInLikely(Hunt& hunt);
    void lookInAll(Hunt& hunt, double now);
    void scan(Hunt& hunt, std::int32_t pid);
    [[nodiscard]] std::int64_t descriptorCount(int folder, const char* path) const;
    [[nodiscard]] std::optional<SeenProcess> look(std::int32_t pid, std::uint32_t user);
    void remember(std::int32_t pid, std::uint64_t cgroup, double now);

    const ProcFolder& proc_;
    ControlGroups groups_;
    ProcessNames& names_;
    bool isKernels_ = false; ///< the folder of processes is the kernel's own
    std::unordered_map<std::int32_t, Known> known_;
    std::vector<std::int32_t> pids_; ///< all processes when all were looked at last, ascending
    double pause_ = 0;               ///< length of the pause after a look at all, 0 when it found everything
    double nextLookAtAll_ = 0;
};

} // namespace quellon
