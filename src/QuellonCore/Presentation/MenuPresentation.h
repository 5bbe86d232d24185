#pragma once

#include "QuellonCore/Support/EnumTable.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The rules by which the guard's state is put into a few words and numbers. Everything is an argument, nothing is
/// drawn.
namespace quellon::MenuPresentation {

/// How the state is coloured.
enum class Tone {
    off,     ///< The guard is not running.
    active,  ///< It watches.
    standby, ///< It waits for a metered network.
};

inline constexpr EnumTable<Tone, 3> tones{{{
    {Tone::off, "off", "Off"},
    {Tone::active, "active", "Active"},
    {Tone::standby, "standby", "Standby"},
}}};

/// True while traffic is watched: the guard runs, and the network is metered or the guard watches any network.
[[nodiscard]] bool isGuarding(bool isRunning, bool isMetered, bool meteredOnly);

/// `off` when not running, `active` while guarding, otherwise `standby`.
[[nodiscard]] Tone tone(bool isRunning, bool isMetered, bool meteredOnly);

/// The state in words: "Off", "Guarding" or "Idle · not a metered network".
[[nodiscard]] std::string_view statusTitle(bool isRunning, bool isMetered, bool meteredOnly);

/// A count of bytes as people read it everywhere: mebibytes with one decimal ("1.0 MB"), from 1024 of them on gibibytes
/// with two ("1.00 GB"). The unit is chosen before rounding, so one byte below a gibibyte reads "1024.0 MB".
[[nodiscard]] std::string format(std::uint64_t bytes);

} // namespace quellon::MenuPresentation
