#pragma once

#include "QuellonCore/Enforcement/Enforcer.h"
#include "QuellonCore/Support/Time.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quellon {

/// What is to become of the start with the user's session.
enum class AutostartCommand { on, off, status };

/// What the command line asks for.
struct ProgramOptions {
    enum class View { automatic, terminal, plain };

    View view = View::automatic;
    std::optional<Seconds> duration;                          ///< Ends the program; absent: somebody else does.
    int autoResumeSeconds = Enforcer::autoResumeSeconds;      ///< After how long a freeze ends, whatever becomes of us.
    std::optional<AutostartCommand> autostart = std::nullopt; ///< Does this, and nothing else.
    bool snapshot = false;                                    ///< Prints the state of the guard, and nothing else.
    std::optional<std::string> redact = std::nullopt;         ///< Prints the shape of this file, and nothing else.
    bool help = false;
    bool version = false;
    bool operator==(const ProgramOptions&) const = default;
};

/// The statuses that the program ends with.
namespace ExitStatus {
inline constexpr int success = 0;
inline constexpr int outputFailed = 1;
inline constexpr int usage = 2;
inline constexpr int badData = 65; ///< A file holds something else than it should. As sysexits.h has it; so the next.
inline constexpr int noInput = 66; ///< A file can't be read.
} // namespace ExitStatus

/// Prints a whole answer of the program's to standard output. Gives the exit status.
[[nodiscard]] int printAnswer(std::string_view text);

/// Reading the command line, and what is printed about it.
namespace CommandLine {

/// The options, or what is wrong with them in a sentence for the user.
struct Result {
    ProgramOptions options;
    std::optional<std::string> error;
    bool operator==(const Result&) const = default;
};

/// Reads the arguments, the program's own name not among them. The first mistake ends it; "--help" and "--version"
/// hold only where the rest is right.
[[nodiscard]] Result parse(std::span<const std::string_view> arguments);

/// A positive decimal number of seconds such as "5" or "2.5": digits, at most one point between digits, up to a
/// thousand million. Absent for everything else.
[[nodiscard]] std::optional<Seconds> parseDuration(std::string_view text);

/// The answer to "--help".
[[nodiscard]] std::string_view help();
/// The answer to "--version".
[[nodiscard]] std::string_view version();

} // namespace CommandLine

/// What the program finds around it.
struct Surroundings {
    bool desktop = false;  ///< The desktop program is built in, and a display is announced.
    bool terminal = false; ///< Standard output is a terminal.
};

/// What is shown in the end.
enum class ChosenView { desktop, terminal, plain };

/// The view for what was asked for where we are.
[[nodiscard]] ChosenView chooseView(ProgramOptions::View asked, const Surroundings& surroundings);

} // namespace quellon
