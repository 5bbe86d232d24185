#include "PrivateBus.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon::testing {

void PrivateBus::makeStartable(const std::string& name, const std::string& command)
{
    const std::filesystem::path services = folder() + "/services";
    std::filesystem::create_directories(services);
    std::ofstream{services / (name + ".service")} << "[D-BUS Service]\nName=" << name << "\nExec=" << command << '\n';
}

bool PrivateBus::start()
{
    const std::string configuration = folder() + "/bus.conf";
    std::ofstream{configuration} << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\""
                                    " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                                    "<busconfig><listen>"
                                 << address().toStdString() << "</listen><servicedir>" << folder()
                                 << "/services</servicedir><policy context=\"default\"><allow send_destination=\"*\"/>"
                                    "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>\n";
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    const std::string argument = "--config-file=" + configuration;
    pid_ = fork();
    if (pid_ == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO); // it tells of limits that don't matter here
        execlp("dbus-daemon", "dbus-daemon", argument.c_str(), "--nofork", "--print-address=1", nullptr);
        _exit(127);
    }
    close(ends[1]);
    char first = 0;
    const bool isUp = read(ends[0], &first, 1) == 1; // it prints its address once it listens
    close(ends[0]);
    if (!isUp) stop();
    return isUp;
}

void PrivateBus::stop()
{
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
    pid_ = -1;
}

QString PrivateBus::address() const
{
    return QStringLiteral("unix:path=%1/bus").arg(folder_.path());
}

bool eventuallyHolds(bool (*condition)(void*), void* data)
{
    constexpr int mostMilliseconds = 20'000;
    constexpr int turn = 10; // for conditions that no event tells of
    const QDeadlineTimer end{mostMilliseconds};
    QTimer wake;
    wake.start(turn);
    while (!condition(data)) {
        if (end.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace quellon::testing
