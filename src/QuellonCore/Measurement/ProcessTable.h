#pragma once

#include "QuellonCore/Measurement/ProcessEntry.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// Which processes run, and which application each belongs to.
namespace quellon::ProcessTable {

/// The running processes by their id.
class Entries {
public:
    Entries() = default;
    /// Of several entries with the same id the last one stays.
    explicit Entries(std::vector<ProcessEntry> entries);

    /// The entry of a process; null when the table does not hold it. Valid for as long as the table.
    [[nodiscard]] const ProcessEntry* find(std::int32_t pid) const;

    [[nodiscard]] std::size_t size() const { return entries_.size(); }
    [[nodiscard]] bool empty() const { return entries_.empty(); }
    /// In ascending order of the process ids.
    [[nodiscard]] auto begin() const { return entries_.begin(); }
    [[nodiscard]] auto end() const { return entries_.end(); }

    bool operator==(const Entries&) const = default;

private:
    std::vector<ProcessEntry> entries_;
};

/// Reads the output of `ps -axo pid=,uid=,pgid=,comm=`. A line that does not give the three numbers and a command is
/// skipped.
[[nodiscard]] Entries parse(std::string_view psOutput);

/// The application that a command belongs to; the one rule for this in the whole program. The last path component of
/// what stands before the first ".app/", so that every helper inside a bundle counts for the outer application; of the
/// whole command where there is no bundle. A view into `command`, without slashes; empty when there is no component.
[[nodiscard]] std::string_view appLabel(std::string_view command);

} // namespace quellon::ProcessTable
