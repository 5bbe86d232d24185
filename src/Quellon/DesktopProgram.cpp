#include "Quellon/DesktopProgram.h"

#include "Quellon/AppDelegate.h"
#include "Quellon/QtRunLoop.h"
#include "Quellon/QuellonApp.h"
#include "QuellonCore/Presentation/Controls.h"
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

/// The engine in a window, which is where the user is told and asked.
class DesktopView {
public:
    DesktopView(GuardEngine& engine, NotificationFeed& feed)
        : engine_(engine), controls_(engine, feed, [this] { refresh(); }), observation_(engine, [this] { refresh(); })
    {
        QObject::connect(&window_, &OverviewWindow::commanded, &window_,
                         [this](ControlCommand command) { controls_.perform(command); });
        QObject::connect(&window_, &OverviewWindow::answered, &window_,
                         [this](std::size_t button) { controls_.answer(button); });
        QObject::connect(&window_, &OverviewWindow::resumed, &window_,
                         [this](const std::string& id) { controls_.resume(id); });
        refresh();
    }

    void show() { window_.show(); }

private:
    GuardEngine& engine_;
    OverviewWindow window_;
    Controls controls_;
    GuardEngine::Observation observation_;

    void refresh()
    {
        const Date now = engine_.host().clock.now();
        window_.setModel(OverviewModel::of(engine_, now));
        window_.setControls(controls_.model(now));
    }
};

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
    DesktopView view{app.engine(), app.notifications()};
    view.show();
    RunLoop::Handle end;
    if (options.duration) end = app.runLoop().after(*options.duration, [] { QApplication::quit(); });
    const QtRunLoop embedded{app.runLoop()};
    QApplication::exec();
    AppDelegate::applicationWillTerminate();
    return ExitStatus::success;
}

} // namespace quellon::DesktopProgram
