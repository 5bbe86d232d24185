#pragma once

#include "QuellonProbe/Proc.h"
#include "QuellonProbe/ProcessNames.h"
#include "QuellonProbe/SeenProcess.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quellon {

/// The role `ps`: all processes, and those of the last sample that have ended since. Not thread-safe.
class PsRole {
public:
    /// Both outlive the object.
    PsRole(const ProcFolder& proc, ProcessNames& names);

    /// One line a process, ascending by pid, each "pid uid pgid path" with the numbers right-aligned to 5 columns and
    /// the path as ProcessNames has it. Of the processes in `seen` (ascending by pid, each id once) those that have
    /// ended are listed as they were seen, unless their id is another process's by now; any other process that ends
    /// meanwhile is left out. Absent, after a complaint, when the table can't be read.
    [[nodiscard]] std::optional<std::string> answer(std::span<const SeenProcess> seen = {});

private:
    void appendRow(std::string& text, std::int32_t pid, const SeenProcess* seen);

    const ProcFolder& proc_;
    ProcessNames& names_;
    std::vector<std::int32_t> pids_;
    std::size_t lastSize_ = 0;
};

} // namespace quellon
