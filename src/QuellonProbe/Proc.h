#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// What the probe reads from /proc/PID/stat.
struct ProcessStat {
    std::string comm; ///< as the process set it: any bytes
    std::int32_t parent = 0;
    std::int32_t group = 0;
    bool isKernelThread = false;
    std::uint64_t startTicks = 0; ///< clock ticks from boot to the start of the process; fixed for its life
    bool hasEnded = false;        ///< only its parent hasn't taken notice yet

    friend bool operator==(const ProcessStat&, const ProcessStat&) = default;
};

/// The processes, read through one open descriptor of /proc. Not thread-safe. Every question about a process that
/// isn't there, or isn't readable for this user, is answered by absence.
class ProcFolder {
public:
    /// `root` is "/proc", or a folder of the same shape.
    explicit ProcFolder(const std::string& root = "/proc");
    ProcFolder(const ProcFolder&) = delete;
    ProcFolder& operator=(const ProcFolder&) = delete;
    ~ProcFolder();

    /// Descriptor of the folder for openat() and the like, -1 when it couldn't be opened.
    [[nodiscard]] int descriptor() const { return descriptor_; }

    /// Replaces `pids` by all process ids, ascending. False, with errno set, when the folder can't be read.
    bool list(std::vector<std::int32_t>& pids) const;

    /// Effective user id.
    [[nodiscard]] std::optional<std::uint32_t> owner(std::int32_t pid) const;
    [[nodiscard]] std::optional<ProcessStat> stat(std::int32_t pid) const;
    /// Process group; cheaper than stat() where the folder is that of this process's own system.
    [[nodiscard]] std::optional<std::int32_t> group(std::int32_t pid) const;
    /// The executable as the kernel names it, " (deleted)" included, seen from the process's own root folder.
    [[nodiscard]] std::optional<std::string> executable(std::int32_t pid) const;
    /// The first 64 KiB of a file below the folder, as "self/status"; absent when it can't be read.
    [[nodiscard]] std::optional<std::string> file(const std::string& path) const;
    /// file() below the folder of a process, as "cgroup".
    [[nodiscard]] std::optional<std::string> file(std::int32_t pid, std::string_view path) const;

    /// Reads the text of a stat file. The comm ends at the last ")", whatever stands before; absent when a field that
    /// is needed is missing or no number.
    [[nodiscard]] static std::optional<ProcessStat> parseStat(std::string_view text);

    /// A process id: decimal digits only, 1 to 2 147 483 647; anything else is absent.
    [[nodiscard]] static std::optional<std::int32_t> parsePid(std::string_view text);

private:
    int descriptor_ = -1;
    bool isOwn_ = false; ///< its process ids are those of the system calls
};

} // namespace quellon
