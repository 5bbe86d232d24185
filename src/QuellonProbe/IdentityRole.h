#pragma once

#include "QuellonProbe/Proc.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quellon {

/// The roles `start` and `parent`: what tells one process from a later one with the same number, and who started it.
/// The guard answers them to itself, without the helper's process. Any thread.
namespace IdentityRole {

/// "{boot id} {start ticks}" and a line feed; the empty text when there is no such process. Equal for the whole life of
/// a process, different for any other one of this or another boot. Absent when the boot id can't be read.
[[nodiscard]] std::optional<std::string> start(const ProcFolder& proc, std::int32_t pid);

/// The parent's process id in decimal and a line feed; the empty text when there is no such process. Absent when there
/// is no folder of processes.
[[nodiscard]] std::optional<std::string> parent(const ProcFolder& proc, std::int32_t pid);

} // namespace IdentityRole

} // namespace quellon
