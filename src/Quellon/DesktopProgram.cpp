#include "Quellon/DesktopProgram.h"

#include "Quellon/AppDelegate.h"
#include "Quellon/QtRunLoop.h"
#include "Quellon/QuellonApp.h"
#include "QuellonUI/OverviewWindow.h"

#include <QApplication>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace quellon::DesktopProgram {

namespace {

/// For the message handler, which is given nothing.
char** startArguments = nullptr;

bool isSet(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): before any other thread
    return value != nullptr && *value != '\0';
}

/// Begins anew without the display.
[[noreturn]] void beginWithoutDisplay()
{
    std::fputs("Quellon: the display can't be reached; going on without a window.\n", stderr);
    unsetenv("DISPLAY");         // NOLINT(concurrency-mt-unsafe): before any other thread
    unsetenv("WAYLAND_DISPLAY"); // NOLINT(concurrency-mt-unsafe)
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    execv(error ? startArguments[0] : self.c_str(), startArguments);
    std::perror("Quellon");
    std::_Exit(ExitStatus::outputFailed);
}

/// The toolkit ends the process when it can't reach the display; before it does, it says so here.
void whileConnecting(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*message*/)
{
    if (type == QtFatalMsg) beginWithoutDisplay();
}

} // namespace

bool isAvailable()
{
    return isSet("WAYLAND_DISPLAY") || isSet("DISPLAY");
}

int run(char** arguments, const ProgramOptions& options)
{
    // The toolkit takes options of its own out of the list that it is given.
    std::array<char*, 2> ownName{arguments[0], nullptr};
    int ownCount = 1;
    startArguments = arguments;
    const auto usualHandler = qInstallMessageHandler(whileConnecting);
    QApplication application{ownCount, ownName.data()};
    qInstallMessageHandler(usualHandler);
    QApplication::setApplicationDisplayName(QStringLiteral("Quellon"));
    QApplication::setDesktopFileName(QStringLiteral("org.quellon.Quellon"));

    QuellonApp app{options};
    OverviewWindow window;
    const auto refresh = [&app, &window] {
        window.setModel(OverviewModel::of(app.engine(), app.engine().host().clock.now()));
    };
    const GuardEngine::Observation observation{app.engine(), refresh};
    refresh();
    window.show();
    RunLoop::Handle end;
    if (options.duration) end = app.runLoop().after(*options.duration, [] { QApplication::quit(); });
    const QtRunLoop embedded{app.runLoop()};
    QApplication::exec();
    AppDelegate::applicationWillTerminate();
    return ExitStatus::success;
}

} // namespace quellon::DesktopProgram
