#include "Quellon/AutostartProgram.h"
#include "Quellon/DesktopProgram.h"
#include "Quellon/ProgramOptions.h"
#include "Quellon/QuellonApp.h"
#include "Quellon/SupportProgram.h"
#include "QuellonCore/Support/Fatal.h"
#include "QuellonTerminal/Utf8Locale.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using namespace quellon;

int refuse(const std::string& error)
{
    std::fprintf(stderr, "Quellon: %s\nTry \"Quellon --help\".\n", error.c_str());
    return ExitStatus::usage;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    std::set_terminate([] { fatal("an error that nobody expected"); });
    std::signal(SIGPIPE, SIG_IGN); // a reader that is gone is an error of the write
    std::signal(SIGCHLD, SIG_DFL); // ignored by whoever started us, a child's id would be free again at its end
    std::signal(SIGTSTP, SIG_IGN); // Ctrl-Z: a guard that is stopped itself lets nobody go on
    useUtf8Locale();
    const std::vector<std::string_view> words(arguments + (argumentCount > 0 ? 1 : 0), arguments + argumentCount);
    const auto [options, error] = CommandLine::parse(words);
    if (error) return refuse(*error);
    if (options.help) return printAnswer(CommandLine::help());
    if (options.version) return printAnswer(CommandLine::version());
    if (options.snapshot) return SupportProgram::printSnapshot();
    if (options.redact) return SupportProgram::printRedacted(*options.redact);
    if (options.autostart) return AutostartProgram::run(*options.autostart);

    const Surroundings surroundings{.desktop = DesktopProgram::isAvailable(), .terminal = isatty(STDOUT_FILENO) == 1};
    switch (chooseView(options.view, surroundings)) {
    case ChosenView::desktop:
        return DesktopProgram::run(arguments, options);
    case ChosenView::terminal:
        return QuellonApp{options}.runTerminal(options);
    case ChosenView::plain:
        break;
    }
    return QuellonApp{options}.runPlain(options);
}
