#include "Quellon/ProgramOptions.h"

#include "QuellonCore/Support/Numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace quellon {

int printAnswer(std::string_view text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return written ? ExitStatus::success : ExitStatus::outputFailed;
}

namespace CommandLine {

namespace {

constexpr std::string_view durationOption = "--duration";
constexpr std::string_view durationHint = "--duration takes a positive number of seconds, such as 5 or 2.5";
constexpr std::string_view autoResumeOption = "--auto-resume";
constexpr std::string_view autoResumeHint = "--auto-resume takes a whole number of seconds, 1 to 1800";

constexpr std::string_view autostartOption = "--autostart";
constexpr std::string_view autostartHint = "--autostart takes on, off or status";

constexpr std::string_view redactOption = "--redact";
constexpr std::string_view redactHint = "--redact takes a file, or - for standard input";
constexpr std::string_view supportTexts = "--snapshot and --redact exclude each other";

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Takes over the value of "--duration".
std::optional<std::string> setDuration(ProgramOptions& options, std::string_view value)
{
    options.duration = parseDuration(value);
    if (!options.duration) return fmt::format("{}, not \"{}\"", durationHint, value);
    return std::nullopt;
}

/// Takes over the value of "--auto-resume".
std::optional<std::string> setAutoResume(ProgramOptions& options, std::string_view value)
{
    const bool isSigned = !std::ranges::all_of(value, isDigit);
    const auto seconds = parseWhole<int>(value);
    if (isSigned || !seconds || *seconds < 1 || *seconds > Enforcer::autoResumeSeconds) {
        return fmt::format("{}, not \"{}\"", autoResumeHint, value);
    }
    options.autoResumeSeconds = *seconds;
    return std::nullopt;
}

/// Takes over the value of "--autostart".
std::optional<std::string> setAutostart(ProgramOptions& options, std::string_view value)
{
    if (value == "on")
        options.autostart = AutostartCommand::on;
    else if (value == "off")
        options.autostart = AutostartCommand::off;
    else if (value == "status")
        options.autostart = AutostartCommand::status;
    else
        return fmt::format("{}, not \"{}\"", autostartHint, value);
    return std::nullopt;
}

/// Takes over the value of "--redact".
std::optional<std::string> setRedact(ProgramOptions& options, std::string_view value)
{
    if (value.empty()) return std::string{redactHint};
    if (options.snapshot) return std::string{supportTexts};
    options.redact = value;
    return std::nullopt;
}

std::optional<std::string> setSnapshot(ProgramOptions& options)
{
    if (options.redact) return std::string{supportTexts};
    options.snapshot = true;
    return std::nullopt;
}

/// An option that is followed by a value, in the next word or in its own behind "=".
struct ValueOption {
    std::string_view name;
    std::string_view hint;
    std::optional<std::string> (*set)(ProgramOptions& options, std::string_view value);
};
constexpr ValueOption valueOptions[] = {
    {durationOption, durationHint, setDuration},
    {autoResumeOption, autoResumeHint, setAutoResume},
    {autostartOption, autostartHint, setAutostart},
    {redactOption, redactHint, setRedact},
};

/// The one that `word` begins with; null when none does.
const ValueOption* valueOption(std::string_view word)
{
    const auto* const found = std::ranges::find(valueOptions, word.substr(0, word.find('=')), &ValueOption::name);
    return found == std::end(valueOptions) ? nullptr : found;
}

/// Takes over the value that stands in `word`, or else at the front of `rest`.
std::optional<std::string> setValue(const ValueOption& option, ProgramOptions& options, std::string_view word,
                                    std::span<const std::string_view>& rest)
{
    if (const auto equals = word.find('='); equals != std::string_view::npos) {
        return option.set(options, word.substr(equals + 1));
    }
    if (rest.empty()) return std::string{option.hint};
    const std::string_view value = rest.front();
    rest = rest.subspan(1);
    return option.set(options, value);
}

std::optional<std::string> setView(ProgramOptions& options, ProgramOptions::View view)
{
    if (options.view != ProgramOptions::View::automatic && options.view != view) {
        return "--terminal and --plain exclude each other";
    }
    options.view = view;
    return std::nullopt;
}

/// Takes over the option at the front of `rest`, and its value.
std::optional<std::string> takeOption(ProgramOptions& options, std::span<const std::string_view>& rest)
{
    const std::string_view option = rest.front();
    rest = rest.subspan(1);
    if (option == "--help" || option == "-h") {
        options.help = true;
    } else if (option == "--version") {
        options.version = true;
    } else if (option == "--snapshot") {
        return setSnapshot(options);
    } else if (option == "--terminal") {
        return setView(options, ProgramOptions::View::terminal);
    } else if (option == "--plain") {
        return setView(options, ProgramOptions::View::plain);
    } else if (const ValueOption* const withValue = valueOption(option)) {
        return setValue(*withValue, options, option, rest);
    } else if (option.starts_with('-')) {
        return fmt::format("unknown option \"{}\"", option);
    } else {
        return fmt::format("unexpected argument \"{}\"", option);
    }
    return std::nullopt;
}

} // namespace

Result parse(std::span<const std::string_view> arguments)
{
    Result result;
    while (!arguments.empty() && !result.error) result.error = takeOption(result.options, arguments);
    return result;
}

std::optional<Seconds> parseDuration(std::string_view text)
{
    constexpr double longest = 1e9;
    const auto point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    const std::string_view fraction = point == std::string_view::npos ? "0" : text.substr(point + 1);
    for (const std::string_view digits : {whole, fraction}) {
        if (digits.empty() || !std::all_of(digits.begin(), digits.end(), isDigit)) return std::nullopt;
    }
    double value = 0.0;
    for (const char digit : whole) value = value * 10.0 + (digit - '0');
    double unit = 1.0;
    for (const char digit : fraction) value += (unit /= 10.0) * (digit - '0');
    if (value <= 0.0 || value > longest) return std::nullopt;
    return Seconds{value};
}

std::string_view help()
{
    return "Usage: Quellon [OPTION]...\n"
           "Watches which applications use a metered connection, such as a phone's hotspot.\n"
           "\n"
           "Without options it goes into the tray where there is a display, and opens the terminal view otherwise.\n"
           "Started a second time, it opens the panel of the first.\n"
           "\n"
           "  --terminal             the terminal view; q, Ctrl-C or SIGTERM ends it\n"
           "  --plain                lines: the activity as it comes, and a table after each sample;\n"
           "                         also what --terminal does when standard output is no terminal\n"
           "  --duration SECONDS     end after this time, such as 5 or 2.5\n"
           "  --auto-resume SECONDS  what is frozen thaws after this time, whatever has become of the guard;\n"
           "                         1 to 1800, which is the default\n"
           "  --autostart WHAT       on: start with the session from now on; off: no longer; status: print which;\n"
           "                         then end\n"
           "  --snapshot             print the state of the guard that runs, for somebody who helps, and end:\n"
           "                         no application, no address; without a guard what its files tell\n"
           "  --redact FILE          print the shape of a state file, without names and texts, and end;\n"
           "                         - for standard input\n"
           "  -h, --help             print this and end\n"
           "  --version              print the version and end\n"
           "\n"
           "NO_COLOR, when set, keeps the terminal view free of colours.\n"
           "\n"
           "Exit status: 0 after a normal end, SIGTERM and Ctrl-C included, and when the reader of the lines is gone;\n"
           "1 when standard output or the file of --autostart can't be written; 2 for a mistake in the options;\n"
           "65 when the file of --redact is no JSON text or too large; 66 when it can't be read;\n"
           "70 after an internal error.\n";
}

std::string_view version()
{
    return "Quellon " QUELLON_VERSION "\n";
}

} // namespace CommandLine

ChosenView chooseView(ProgramOptions::View asked, const Surroundings& surroundings)
{
    if (asked == ProgramOptions::View::automatic && surroundings.desktop) return ChosenView::desktop;
    if (asked == ProgramOptions::View::plain || !surroundings.terminal) return ChosenView::plain;
    return ChosenView::terminal;
}

} // namespace quellon
