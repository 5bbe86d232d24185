#pragma once

#include "QuellonProbe/Proc.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quellon {

/// The role `ps`: all processes. Remembers the names that cost something to find, as long as a process has them: a
/// steady table looks at no file outside /proc. Not thread-safe.
class PsRole {
public:
    /// `proc` outlives the object. Executables are looked up below `root`, "" for the real file system.
    explicit PsRole(const ProcFolder& proc, std::string root = "");

    /// One line a process, ascending by pid, each "pid uid pgid path" with the numbers right-aligned to 5 columns. The
    /// path is ApplicationPath's name of the executable; where the executable can't be read, the comm, in brackets for
    /// a kernel thread. A process that ends meanwhile is left out. Absent, after a complaint, when the table can't be
    /// read.
    [[nodiscard]] std::optional<std::string> answer();

    /// How many names are remembered at present.
    [[nodiscard]] std::size_t remembered() const { return byExecutable_.size() + bySandboxed_.size(); }

private:
    struct Name {
        std::string text;
        std::uint64_t round = 0; ///< the answer that last used it
    };
    struct Sandboxed {
        std::uint64_t startTicks = 0;
        std::string executable;
        std::string hostPath; ///< empty when the process is in no sandbox that is known
        std::uint64_t round = 0;
    };

    void appendRow(std::string& text, std::int32_t pid);
    std::string_view name(std::int32_t pid, const ProcessStat& stat);
    std::string_view applicationName(const std::string& executable);
    const std::string& hostPath(std::int32_t pid, const ProcessStat& stat, const std::string& executable);

    const ProcFolder& proc_;
    std::string root_;
    std::vector<std::int32_t> pids_;
    std::string bare_;
    std::unordered_map<std::string, Name> byExecutable_;
    std::unordered_map<std::int32_t, Sandboxed> bySandboxed_;
    std::uint64_t round_ = 0;
    std::size_t lastSize_ = 0;
};

} // namespace quellon
