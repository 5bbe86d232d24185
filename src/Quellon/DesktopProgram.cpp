#include "Quellon/DesktopProgram.h"

#include "Quellon/AppDelegate.h"
#include "Quellon/Desktop.h"
#include "Quellon/QtRunLoop.h"
#include "Quellon/QuellonApp.h"
#include "QuellonUI/Desktop/ColourScheme.h"
#include "QuellonUI/Desktop/SingleInstance.h"
#include "QuellonUI/Kit/Accessibility.h"
#include "QuellonUI/Kit/Appearance.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace quellon::DesktopProgram {

namespace {

constexpr const char* platformVariable = "QT_QPA_PLATFORM";

/// For the message handler, which is given nothing.
char** startArguments = nullptr;

bool isSet(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): before any other thread
    return value != nullptr && *value != '\0';
}

/// On Wayland a program can't say where its panel and its toasts stand; by way of its X server it can. Only for this
/// process: programs that are started from here choose for themselves.
class PlatformChoice {
public:
    PlatformChoice()
    {
        if (isSet(platformVariable) || !isSet("WAYLAND_DISPLAY") || !isSet("DISPLAY")) return;
        isOurs_ = true;
        setenv(platformVariable, "xcb;wayland", 1); // NOLINT(concurrency-mt-unsafe): before any other thread
    }
    void made() const
    {
        if (isOurs_) unsetenv(platformVariable); // NOLINT(concurrency-mt-unsafe): nobody else reads it
    }

private:
    bool isOurs_ = false;
};

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
void whileConnecting(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type != QtFatalMsg) return;
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    beginWithoutDisplay();
}

} // namespace

bool isAvailable()
{
    return isSet("WAYLAND_DISPLAY") || isSet("DISPLAY");
}

int run(char** arguments, const ProgramOptions& options)
{
    const PlatformChoice platform;
    // The toolkit takes options of its own out of the list that it is given.
    std::array<char*, 2> ownName{arguments[0], nullptr};
    int ownCount = 1;
    startArguments = arguments;
    const auto usualHandler = qInstallMessageHandler(whileConnecting);
    QApplication application{ownCount, ownName.data()};
    qInstallMessageHandler(usualHandler);
    platform.made();
    // A display name would be put behind the titles of windows.
    QApplication::setApplicationName(QStringLiteral("Quellon"));
    QApplication::setDesktopFileName(QStringLiteral("org.quellon.Quellon"));
    QApplication::setWindowIcon(QIcon{QStringLiteral(":/icons/quellon.svg")});
    Accessibility::install();
    // There need not be a window: the guard goes on in the tray.
    QApplication::setQuitOnLastWindowClosed(false);

    // The desktop's autostart is what starts the program with a session; a session manager would do so once more, with
    // options of its own.
    for (const auto request : {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest}) {
        QObject::connect(&application, request, &application,
                         [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); });
    }

    const SingleInstance instance;
    if (instance.isAlreadyRunning()) return ExitStatus::success;
    const ColourScheme colours;
    Appearance::applyColours(colours.isDark());
    QObject::connect(&colours, &ColourScheme::changed, &application, &Appearance::applyColours);

    QuellonApp app{options};
    Desktop desktop{app.engine(), app.notifications(), app.build(), [] { QApplication::quit(); }};
    QObject::connect(&instance, &SingleInstance::activated, &application, [&desktop] { desktop.showPanel(); });
    RunLoop::Handle end;
    if (options.duration) end = app.runLoop().after(*options.duration, [] { QApplication::quit(); });
    const QtRunLoop embedded{app.runLoop()};
    QApplication::exec();
    AppDelegate::applicationWillTerminate();
    return ExitStatus::success;
}

} // namespace quellon::DesktopProgram
