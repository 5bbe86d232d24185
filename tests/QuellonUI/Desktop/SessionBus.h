#pragma once

#include "../Until.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace quellon::testing {

/// A message bus of the test's own, run by the real dbus-daemon.
class SessionBus {
public:
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// False when this machine has no dbus-daemon.
    [[nodiscard]] bool isRunning() const { return daemon_.state() == QProcess::Running; }
    [[nodiscard]] const QString& address() const { return address_; }
    /// From now on the bus starts `command` for whoever owns this name. `command` is a line of a service file.
    void makeStartable(const QString& name, const QString& command);
    /// A folder for the test.
    [[nodiscard]] QString folder() const { return folder_.path(); }
    /// Ends the bus; every connection is cut.
    void stop();

private:
    QTemporaryDir folder_;
    QProcess daemon_;
    QString address_;
};

/// A connection of its own to a bus, closed with it. Stands for another process.
class BusClient {
public:
    explicit BusClient(const SessionBus& bus);
    ~BusClient();
    BusClient(const BusClient&) = delete;
    BusClient& operator=(const BusClient&) = delete;

    [[nodiscard]] const QDBusConnection& bus() const { return bus_; }
    QDBusConnection& bus() { return bus_; }
    /// Calls a method and lets events happen until the answer, and all that came before it, was taken.
    QDBusMessage call(const QString& service, const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments = {}) const;
    bool own(const QString& name);
    bool disown(const QString& name);

private:
    QString name_;
    QDBusConnection bus_;
};

} // namespace quellon::testing
