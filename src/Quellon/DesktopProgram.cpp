#include "Quellon/DesktopProgram.h"

#include "Quellon/AppDelegate.h"
#include "Quellon/Desktop.h"
#include "Quellon/QtRunLoop.h"
#include "Quellon/QuellonApp.h"
#include "QuellonHost/SystemHost.h"
#include "QuellonUI/Desktop/ColourScheme.h"
#include "QuellonUI/Desktop/SingleInstance.h"
#include "QuellonUI/Kit/Accessibility.h"
#include "QuellonUI/Kit/Appearance.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>
#include <QSocketNotifier>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

namespace quellon::DesktopProgram {

namespace {

constexpr const char* platformVariable = "QT_QPA_PLATFORM";

/// For the message handler, which is given nothing.
char** startArguments = nullptr;
/// What the toolkit has said on the way to the display.
std::string heard;

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
    const auto self = SystemHost::executable();
    execv(self.empty() ? startArguments[0] : self.c_str(), startArguments);
    std::perror("Quellon");
    std::_Exit(ExitStatus::outputFailed);
}

/// The toolkit ends the process when it can't reach the display; before it does, it says so here. Why not, such as a
/// plugin that is missing, it has said before.
void whileConnecting(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    heard += message.toStdString() + '\n';
    if (type != QtFatalMsg) return;
    std::fputs(heard.c_str(), stderr);
    beginWithoutDisplay();
}

/// Serves those who ask for a snapshot, for as long as what it gives lives.
std::unique_ptr<QSocketNotifier> watch(SnapshotService& snapshots)
{
    const auto descriptor = snapshots.descriptor();
    if (!descriptor) return nullptr;
    auto result = std::make_unique<QSocketNotifier>(*descriptor, QSocketNotifier::Read);
    QObject::connect(result.get(), &QSocketNotifier::activated, result.get(), [&snapshots] { snapshots.serve(); });
    return result;
}

/// What starts the program as it was started.
QStringList command(char** arguments)
{
    QStringList result{QCoreApplication::applicationFilePath()};
    for (char** each = arguments + 1; *each != nullptr; ++each) result << QString::fromLocal8Bit(*each);
    return result;
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

    // The desktop's autostart is what starts the program with a session; a session manager would do so once more. One
    // that does all the same is not to add the toolkit's option, which the command line doesn't know.
    for (const auto request : {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest}) {
        QObject::connect(&application, request, &application, [command = command(arguments)](QSessionManager& manager) {
            manager.setRestartHint(QSessionManager::RestartNever);
            manager.setRestartCommand(command);
        });
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
    const auto asked = watch(app.snapshots());
    const QtRunLoop embedded{app.runLoop()};
    QApplication::exec();
    AppDelegate::applicationWillTerminate();
    return ExitStatus::success;
}

} // namespace quellon::DesktopProgram
