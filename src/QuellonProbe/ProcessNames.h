#pragma once

#include "QuellonProbe/Proc.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quellon {

/// What processes are called. Remembers the names that cost something to find for as long as they are asked for: a name
/// that is known needs no look at a file outside /proc. Not thread-safe.
class ProcessNames {
public:
    /// `proc` outlives the object. Executables are looked up below `root`, "" for the real file system.
    explicit ProcessNames(const ProcFolder& proc, std::string root = "");

    /// ApplicationPath's name of the executable; where the executable can't be read, the comm, in brackets for a kernel
    /// thread. Clean for a row and never blank. A view that holds until the next call of any function.
    [[nodiscard]] std::string_view of(std::int32_t pid, const ProcessStat& stat);

    /// The same, as far as it comes from the executable; absent where that can't be read. Cheaper, without the stat.
    [[nodiscard]] std::optional<std::string_view> ofExecutable(std::int32_t pid, const ProcessStat* stat = nullptr);

    /// Forgets the names that nobody has asked for since the last call.
    void forgetUnused();

    /// How many names are remembered at present.
    [[nodiscard]] std::size_t remembered() const { return byExecutable_.size() + bySandboxed_.size(); }

private:
    struct Name {
        std::string text;
        std::uint64_t round = 0; ///< in which it was used last; 0: it is new
    };
    struct Sandboxed {
        std::uint64_t startTicks = 0;
        std::string executable;
        std::string hostPath; ///< empty when the process is in no sandbox that is known
        std::uint64_t round = 0;
    };

    std::string_view applicationName(const std::string& executable);
    const std::string& hostPath(std::int32_t pid, std::uint64_t startTicks, const std::string& executable);

    const ProcFolder& proc_;
    std::string root_;
    std::string bare_;
    std::unordered_map<std::string, Name> byExecutable_;
    std::unordered_map<std::int32_t, Sandboxed> bySandboxed_;
    std::uint64_t round_ = 1; ///< counts the calls of forgetUnused()
};

} // namespace quellon
