#pragma once

#include "QuellonCore/Support/EnumTable.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// How close something came to its limit.
enum class Level { safe, caution, danger };

inline constexpr EnumTable<Level, 3> levels{{{
    {Level::safe, "safe", "Safe"},
    {Level::caution, "caution", "Caution"},
    {Level::danger, "danger", "Danger"},
}}};

/// What sits in the menu bar.
struct MenuBar {
    std::string title;  ///< Beside the symbol; may be empty. Names an application as it is: see `plainText`.
    std::string symbol; ///< A name in the system's symbol set.
    bool operator==(const MenuBar&) const = default;
};

/// The newest warning.
struct AlertBadge {
    std::string app;         ///< Its label.
    std::uint64_t bytes = 0; ///< What it had used at that moment.
    Date firedAt;
    bool unread = true; ///< Until the panel is opened.

    /// How long a warning takes the title over.
    static constexpr Seconds takeoverSeconds{30.0};

    /// True while the warning is younger than that, also when it lies in the future.
    [[nodiscard]] bool isActive(Date now) const { return now - firedAt < takeoverSeconds; }

    bool operator==(const AlertBadge&) const = default;
};

/// All that the menu bar depends on, apart from the time.
struct MenuBarState {
    bool isRunning = false;
    bool isMetered = false;
    bool meteredOnly = true;
    std::size_t suspendedCount = 0; ///< How many applications are held frozen.
    std::optional<AlertBadge> alert;
    std::optional<double> budgetFraction; ///< What of the plan is used, 1.0 for all; absent without a budget.
    bool idleTether = false;              ///< A phone is tethered but not used, and the user wants to know.
};

/// True while traffic is watched: the guard runs, and the network is metered or the guard watches any network.
[[nodiscard]] bool isGuarding(bool isRunning, bool isMetered, bool meteredOnly);

/// `off` when not running, `active` while guarding, otherwise `standby`.
[[nodiscard]] Tone tone(bool isRunning, bool isMetered, bool meteredOnly);

/// The state in words: "Off", "Guarding" or "Idle · not a metered network".
[[nodiscard]] std::string_view statusTitle(bool isRunning, bool isMetered, bool meteredOnly);

/// Title and symbol. The off state outranks frozen applications, which outrank waiting for a metered network, where no
/// warning shows; otherwise a fresh warning takes the title, and an unread one marks the symbol, over the plan's use in
/// whole percent ("—" without a budget). The program ends for a `budgetFraction` that is not finite.
[[nodiscard]] MenuBar menuBar(const MenuBarState& state, Date now);

/// A count of bytes as people read it everywhere: mebibytes with one decimal ("1.0 MB"), from 1024 of them on gibibytes
/// with two ("1.00 GB"). The unit is chosen before rounding, so one byte below a gibibyte reads "1024.0 MB".
[[nodiscard]] std::string format(std::uint64_t bytes);

/// `bytes` / `thresholdBytes`, at most 1.0; 0.0 for a threshold of 0.
[[nodiscard]] double ratio(std::uint64_t bytes, std::uint64_t thresholdBytes);

/// `safe` below 0.5, `caution` below 0.85, from there on `danger`.
[[nodiscard]] Level level(double ratio);

/// The names in a text with commas between them, blanks and tabs around them trimmed, in their order. Empty ones are
/// dropped, repeated ones stay.
[[nodiscard]] std::vector<std::string> parseNameList(std::string_view text);

} // namespace quellon::MenuPresentation
