#include "SessionBus.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDir>
#include <QFile>
#include <QUuid>

#include <csignal>

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace quellon::testing {

namespace {

constexpr int longEnough = 20'000; ///< milliseconds; what takes longer never comes

const char* const configuration = "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
                                  "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                                  "<busconfig><listen>unix:path=%1/bus</listen><servicedir>%1/services</servicedir>"
                                  "<policy context=\"default\">"
                                  "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow own=\"*\"/>"
                                  "</policy></busconfig>\n";

} // namespace

SessionBus::SessionBus()
{
    QFile file{folder_.filePath(QStringLiteral("bus.conf"))};
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(QString::fromLatin1(configuration).arg(folder_.path()).toUtf8());
    file.close();
#ifdef __linux__
    daemon_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
#endif
    daemon_.setStandardErrorFile(QProcess::nullDevice()); // it tells of limits that don't matter here
    daemon_.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--config-file=") + file.fileName(),
                                                  QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
    // It prints its address once it listens.
    while (daemon_.waitForReadyRead(longEnough) && !daemon_.canReadLine()) {}
    address_ = QString::fromLatin1(daemon_.readLine().trimmed());
}

SessionBus::~SessionBus()
{
    stop();
}

void SessionBus::makeStartable(const QString& name, const QString& command)
{
    const QString services = folder_.filePath(QStringLiteral("services"));
    QDir{}.mkpath(services);
    QFile file{services + QLatin1Char{'/'} + name + QStringLiteral(".service")};
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(QStringLiteral("[D-BUS Service]\nName=%1\nExec=%2\n").arg(name, command).toUtf8());
    file.close();
    BusClient{*this}.call(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                          QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReloadConfig"));
}

void SessionBus::stop()
{
    if (!isRunning()) return;
    daemon_.terminate();
    daemon_.waitForFinished(longEnough);
}

BusClient::BusClient(const SessionBus& bus)
    : name_{QUuid::createUuid().toString()}, bus_{QDBusConnection::connectToBus(bus.address(), name_)}
{
}

BusClient::~BusClient()
{
    QDBusConnection::disconnectFromBus(name_);
}

QDBusMessage BusClient::call(const QString& service, const QString& path, const QString& interface,
                             const QString& method, const QVariantList& arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall pending = bus_.asyncCall(message);
    until([&] { return pending.isFinished(); });
    QCoreApplication::processEvents(); // what came before the answer
    return pending.reply();
}

bool BusClient::own(const QString& name)
{
    return bus_.registerService(name);
}

bool BusClient::disown(const QString& name)
{
    return bus_.unregisterService(name);
}

} // namespace quellon::testing
